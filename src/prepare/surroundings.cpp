// SPDX-License-Identifier: Apache-2.0
#include "prepare/surroundings.h"

#include <string.h>

#include "memory.h"
#include "numeric.h"

// Distances in thirds of a pixel: 3 to a neighbour in the row or column, 4 across.
enum { STRAIGHT = 3, ACROSS = 4, NO_DISTANCE = 3 * (IMAGEBLEND_LARGEST_REACH + 1) };

// Ratios are in 1/256, up to 8.
enum { RATIO_ONE = 256, RATIOS = 8 * RATIO_ONE };

// Squares of the ring whose mean colours are compared.
enum { PATCH = 8, FEWEST_PIXELS = 16 };
static const float largest_mismatch = 5.0f;

static uint16_t least(uint16_t a, int b) {
    return a < b ? a : (uint16_t)b;
}

// Passes distances on along a row, from the row before it (null if none) and from pixel to pixel:
// forwards with a step of 1, backwards with -1.
static void spread_row(const uint16_t* before, int64_t width, int64_t step, uint16_t* row) {
    const int64_t first = step > 0 ? 0 : width - 1;
    for (int64_t i = 0, x = first; i < width; i++, x += step) {
        uint16_t d = row[x];
        if (i > 0) d = least(d, row[x - step] + STRAIGHT);
        if (before != NULL) {
            d = least(d, before[x] + STRAIGHT);
            if (x > 0) d = least(d, before[x - 1] + ACROSS);
            if (x + 1 < width) d = least(d, before[x + 1] + ACROSS);
        }
        row[x] = d;
    }
}

// Distances to the pixels that hold 0, in two passes over the plane.
static void spread_distances(uint16_t* plane, int64_t width, int64_t height) {
    for (int64_t y = 0; y < height; y++) {
        uint16_t* row = plane + y * width;
        spread_row(y > 0 ? row - width : NULL, width, 1, row);
    }
    for (int64_t y = height - 1; y >= 0; y--) {
        uint16_t* row = plane + y * width;
        spread_row(y + 1 < height ? row + width : NULL, width, -1, row);
    }
}

typedef struct ring {
    const imageblend_layer* layer;
    const imageblend_frames* frames;
    const surroundings* around;
} ring;

static void measure_ring(const ring* r) {
    const int64_t width = r->frames->box.width, height = r->frames->box.height;
    for (int64_t y = 0; y < height; y++) {
        for (int64_t x = 0; x < width; x++) {
            const uint8_t* object = layer_pixel(r->layer, r->layer->object, r->frames, x, y);
            const uint8_t* around = layer_pixel(r->layer, r->layer->surroundings, r->frames, x, y);
            const int64_t i = y * width + x;
            r->around->to_object[i] = object != NULL && object[0] != 0 ? 0 : NO_DISTANCE;
            r->around->to_end[i] = around == NULL || around[0] < 255 ? 0 : NO_DISTANCE;
        }
    }
    spread_distances(r->around->to_object, width, height);
    spread_distances(r->around->to_end, width, height);
}

// Whether a frame's pixel lies in the ring and has surroundings.
static bool in_ring(const ring* r, int64_t x, int64_t y, int32_t reach) {
    const int64_t i = y * r->frames->box.width + x;
    return r->around->to_object[i] > 0 && r->around->to_object[i] <= STRAIGHT * reach &&
           r->around->to_end[i] > 0;
}

static const uint8_t* destination_pixel(const ring* r, int64_t x, int64_t y) {
    return r->frames->destination.data + 4 * (y * r->frames->box.width + x);
}

static float middle_ratio(const int32_t* counts) {
    int64_t all = 0, below = 0;
    for (int i = 0; i < RATIOS; i++)
        all += counts[i];
    if (all == 0) return 1.0f;
    int at = 0;
    while (2 * (below + counts[at]) < all)
        below += counts[at++];
    return ((float)at + 0.5f) / (float)RATIO_ONE;
}

static void find_gains(const ring* r, int32_t reach, int32_t* counts, float* gain) {
    memset(counts, 0, 3 * RATIOS * sizeof *counts);
    for (int64_t y = 0; y < r->frames->box.height; y++) {
        for (int64_t x = 0; x < r->frames->box.width; x++) {
            if (!in_ring(r, x, y, reach)) continue;
            const uint8_t* around = layer_pixel(r->layer, r->layer->surroundings, r->frames, x, y);
            const uint8_t* under = destination_pixel(r, x, y);
            for (int c = 0; c < 3; c++) {
                // The 4 keeps the noise of dark colours out.
                const int ratio = RATIO_ONE * (under[1 + c] + 4) / (around[1 + c] + 4);
                counts[c * RATIOS + (ratio < RATIOS ? ratio : RATIOS - 1)]++;
            }
        }
    }
    for (int c = 0; c < 3; c++)
        gain[c] = middle_ratio(counts + c * RATIOS);
}

// The mean difference of one square's mean colours; its pixels of the ring are counted.
static float patch_mismatch(const ring* r, int64_t left, int64_t top, int32_t reach,
                            const float* gain, int32_t* pixels) {
    float sum[3] = {0.0f, 0.0f, 0.0f};
    const int64_t right = min_i64(left + PATCH, r->frames->box.width);
    const int64_t bottom = min_i64(top + PATCH, r->frames->box.height);
    *pixels = 0;
    for (int64_t y = top; y < bottom; y++) {
        for (int64_t x = left; x < right; x++) {
            if (!in_ring(r, x, y, reach)) continue;
            const uint8_t* around = layer_pixel(r->layer, r->layer->surroundings, r->frames, x, y);
            const uint8_t* under = destination_pixel(r, x, y);
            for (int c = 0; c < 3; c++)
                sum[c] += gain[c] * (float)around[1 + c] - (float)under[1 + c];
            (*pixels)++;
        }
    }
    float mismatch = 0.0f;
    for (int c = 0; c < 3; c++)
        mismatch += (sum[c] < 0.0f ? -sum[c] : sum[c]) / 3.0f;
    return *pixels > 0 ? mismatch / (float)*pixels : 0.0f;
}

static bool matches(const ring* r, int32_t reach, const float* gain) {
    for (int c = 0; c < 3; c++) {
        if (gain[c] < 0.7f || gain[c] > 1.4f) return false;
    }
    float sum = 0.0f, weight = 0.0f;
    for (int64_t y = 0; y < r->frames->box.height; y += PATCH) {
        for (int64_t x = 0; x < r->frames->box.width; x += PATCH) {
            int32_t pixels;
            const float mismatch = patch_mismatch(r, x, y, reach, gain, &pixels);
            if (pixels < FEWEST_PIXELS) continue;
            sum += mismatch * (float)pixels;
            weight += (float)pixels;
        }
    }
    return weight > 0.0f && sum <= largest_mismatch * weight;
}

static void choose_reach(const ring* r, surroundings* found) {
    const int32_t asked = r->layer->reach;
    found->reach = asked;
    if (asked >= 0) {
        find_gains(r, asked, found->ratios, found->gain);
        return;
    }
    for (int32_t reach = IMAGEBLEND_SURROUNDINGS_WIDEST; reach >= 16; reach -= 8) {
        find_gains(r, reach, found->ratios, found->gain);
        found->reach = reach;
        if (matches(r, reach, found->gain)) return;
    }
    found->reach = 0;
}

// 1 down to 0 while `part` goes from 0 to 1, without a bend at either end.
static float fade(float part) {
    if (part <= 0.0f) return 1.0f;
    return part >= 1.0f ? 0.0f : 1.0f - part * part * (3.0f - 2.0f * part);
}

static void weigh_ring(const ring* r, int32_t reach, uint8_t* weight) {
    const int64_t pixels = (int64_t)r->frames->box.width * r->frames->box.height;
    const float far = (float)(STRAIGHT * reach), near = far / 3.0f;
    for (int64_t i = 0; i < pixels; i++) {
        const float from_object = fade(((float)r->around->to_object[i] - near) / (far - near));
        const float to_end = fade(1.0f - (float)r->around->to_end[i] / (far - near));
        weight[i] = (uint8_t)float_to_i32(255.0f * from_object * to_end + 0.5f);
    }
}

bool alloc_surroundings(const imageblend_layer* layer, const imageblend_frames* frames,
                        surroundings* around) {
    *around = surroundings{0, {1.0f, 1.0f, 1.0f}, NULL, NULL, NULL, NULL};
    if (layer_reach(layer) == 0) return true;
    const int64_t pixels = (int64_t)frames->box.width * frames->box.height;
    around->to_object = (uint16_t*)alloc_plane(pixels, 2, sizeof(uint16_t));
    around->ratios = (int32_t*)malloc(3 * RATIOS * sizeof(int32_t));
    around->weight = (uint8_t*)alloc_plane(pixels, 1, 1);
    if (around->to_object != NULL) around->to_end = around->to_object + pixels;
    if (around->to_object != NULL && around->ratios != NULL && around->weight != NULL) return true;
    free_surroundings(around);
    return false;
}

void free_surroundings(surroundings* around) {
    free(around->weight);
    free(around->ratios);
    free(around->to_object);
}

void find_surroundings(const imageblend_layer* layer, const imageblend_frames* frames,
                       surroundings* around) {
    if (layer_reach(layer) == 0) return;
    const ring r = {layer, frames, around};
    measure_ring(&r);
    choose_reach(&r, around);
    if (around->reach > 0) weigh_ring(&r, around->reach, around->weight);
}
