#include "blend/pyramid_blend.h"

#include <string.h>

#include "blend/pyramid_stages.h"
#include "blend/row_conversion.h"
#include "kernels/row_ops.h"
#include "memory.h"

// The depth at which the next level would have a side below 2, at most the workspace's.
static int32_t buildable_levels(const blend_workspace* ws) {
    int32_t levels = 0;
    while (levels < (int32_t)ws->levels && ws->level_width[levels + 1] >= 2 &&
           ws->level_height[levels + 1] >= 2) {
        levels++;
    }
    return levels;
}

// A band's kernels need scratch for at most the finest level's rows at half its width.
static bool alloc_band_scratch(pyramid_run* run) {
    const blend_workspace* ws = run->ws;
    if (run->levels < 1) return true;
    for (int32_t k = 0; k < BAND_COUNT; k++) {
        run->band_scratch[k] = (uint8_t*)alloc_plane(ws->level_width[1], ws->level_height[0], 3);
        if (run->band_scratch[k] == NULL) return false;
    }
    return true;
}

// Builds one Laplacian pyramid; the reduced images alternate between two planes.
static bool build_pyramid(pyramid_run* run, const uint8_t* patch, int16_t* const* lap,
                          bool with_mask) {
    const uint8_t* image = patch;
    for (int32_t l = 0; l < run->levels; l++) {
        uint8_t* reduced = l % 2 == 0 ? run->ws->down_plane : run->ws->down_plane2;
        if (!build_level(run, l, image, reduced, lap, with_mask)) return false;
        image = reduced;
    }
    return true;
}

static bool blend_pyramids(pyramid_run* run, const uint8_t* src_patch, const uint8_t* dst_patch,
                           const uint8_t* mask, uint8_t* result_patch, uint8_t* scratch_patch,
                           size_t patch_bytes) {
    blend_workspace* ws = run->ws;
    const int32_t top = run->levels;
    if (!build_pyramid(run, src_patch, ws->lap_src, false)) return false;
    memcpy(ws->mask_levels[0], mask, patch_bytes / 3);
    if (!build_pyramid(run, dst_patch, ws->lap_dst, true)) return false;
    for (int32_t l = 0; l <= top; l++)
        blend_level(run, l);
    narrow_plane_c3(ws->lap_dst[top], ws->level_width[top], (int32_t)ws->level_height[top],
                    result_patch);
    for (int32_t l = top; l >= 1; l--) {
        if (!collapse_level(run, l, result_patch, scratch_patch)) return false;
        memcpy(result_patch, scratch_patch, patch_bytes);
    }
    return true;
}

int32_t pyramid_blend(const uint8_t* src_patch, const uint8_t* dst_patch, const uint8_t* mask,
                      uint8_t* result_patch, uint8_t* scratch_patch, size_t patch_bytes,
                      blend_workspace* ws) {
    pyramid_run run = pyramid_run();
    run.ws = ws;
    run.levels = buildable_levels(ws);
    run.layout_mask.step = 1;
    run.layout_c3.step = 3;
    if (ws->levels > 0 && run.levels == 0) {
        active_rows()->widen(src_patch, ws->lap_src[0], patch_bytes);
        active_rows()->widen(dst_patch, ws->lap_dst[0], patch_bytes);
    }
    int32_t status = -1;
    if (alloc_band_scratch(&run)) {
        thread_pool* pool = NULL;
        if (pool_init(&pool, BAND_COUNT) == 0) run.pool = pool;
        if (blend_pyramids(&run, src_patch, dst_patch, mask, result_patch, scratch_patch,
                           patch_bytes)) {
            status = 0;
        }
        if (run.pool != NULL) pool_destroy(run.pool);
    }
    for (int32_t k = 0; k < BAND_COUNT; k++)
        free(run.band_scratch[k]);
    return status;
}
