// SPDX-License-Identifier: Apache-2.0
#include "blend/workspace.h"

#include "log.h"
#include "memory.h"

static size_t round_up_even(size_t bytes) {
    return (bytes + 1) & ~(size_t)1;
}

// Pixels of one level. Sides are 32 bits each, so the product fits.
static size_t level_pixels(uint32_t width, uint32_t height, uint32_t level) {
    return (size_t)((uint64_t)width >> level) * (size_t)((uint64_t)height >> level);
}

// Bytes of one 8-bit colour plane that holds all levels but the finest.
static size_t coarse_bytes(uint32_t width, uint32_t height, uint32_t levels) {
    size_t pixels = 0;
    for (uint32_t l = 1; l <= levels; l++)
        pixels += level_pixels(width, height, l);
    return round_up_even(3 * pixels);
}

// Bytes of the entries of one level in the three arrays.
enum { ENTRY_BYTES = 2 * sizeof(uint32_t) + sizeof(uint8_t*) };

// Total size of the block, or false when it is more than an address can hold.
static bool workspace_size(int32_t width, int32_t height, uint32_t levels, size_t* size) {
    size_t level0;
    if (levels > MAX_LEVELS || width < 0 || height < 0) return false;
    // All levels and roundings together stay far below 64 bytes a pixel and a few hundred more.
    if (!buffer_size(width, height, 64, &level0)) return false;
    const uint32_t w = (uint32_t)width, h = (uint32_t)height;
    *size = sizeof(blend_workspace) + ENTRY_BYTES * ((size_t)levels + 1) +
            3 * coarse_bytes(w, h, levels);
    for (uint32_t l = 1; l <= levels; l++)
        *size += round_up_even(level_pixels(w, h, l));
    return true;
}

static void* take(uint8_t** cursor, size_t bytes) {
    uint8_t* start = *cursor;
    *cursor += bytes;
    return start;
}

static void lay_out(blend_workspace* ws) {
    uint8_t* cursor = (uint8_t*)(ws + 1);
    const size_t entries = (size_t)ws->levels + 1;
    ws->level_width = (uint32_t*)take(&cursor, sizeof(uint32_t) * entries);
    ws->level_height = (uint32_t*)take(&cursor, sizeof(uint32_t) * entries);
    ws->mask_levels = (uint8_t**)take(&cursor, sizeof(uint8_t*) * entries);
    const size_t plane = coarse_bytes(ws->width, ws->height, ws->levels);
    ws->down_plane = (uint8_t*)take(&cursor, plane);
    ws->down_plane2 = (uint8_t*)take(&cursor, plane);
    ws->up_plane = (uint8_t*)take(&cursor, plane);
    for (uint32_t l = 0; l < entries; l++) {
        const size_t pixels = level_pixels(ws->width, ws->height, l);
        ws->level_width[l] = (uint32_t)((uint64_t)ws->width >> l);
        ws->level_height[l] = (uint32_t)((uint64_t)ws->height >> l);
        ws->mask_levels[l] = l > 0 ? (uint8_t*)take(&cursor, round_up_even(pixels)) : NULL;
    }
}

blend_workspace* alloc_blend_workspace(int32_t width, int32_t height, uint32_t levels) {
    size_t size = 0;
    blend_workspace* ws = NULL;
    if (workspace_size(width, height, levels, &size)) ws = (blend_workspace*)malloc(size);
    if (ws == NULL) {
        LOG_LINE(LOG_ERROR, "Alloc Blending memory error size:%x", (unsigned)size);
        return NULL;
    }
    *ws = blend_workspace();
    ws->levels = levels;
    ws->width = (uint32_t)width;
    ws->height = (uint32_t)height;
    lay_out(ws);
    return ws;
}

void free_blend_workspace(blend_workspace* ws) {
    free(ws);
}
