// SPDX-License-Identifier: Apache-2.0
#include "prepare/surroundings.h"

#include <string.h>

#include "memory.h"
#include "numeric.h"
#include "prepare/steps.h"

// Ratios are in 1/256, up to 8.
enum { RATIO_ONE = 256, RATIOS = 8 * RATIO_ONE };

// Squares of the ring whose mean colours are compared.
enum { PATCH = 8, FEWEST_PIXELS = 16 };
static const float largest_mismatch = 5.0f;

typedef struct ring {
    const imageblend_layer* layer;
    const imageblend_frames* frames;
    const surroundings* around;
} ring;

// A row of the area before distances are spread: 0 on the object, and where the surroundings end.
// Says whether they do.
static bool mark_row(const ring* r, int64_t y, int16_t* to_object, int16_t* to_end) {
    const span_box* area = &r->around->area;
    const blend_image* object = r->layer->object;
    const int64_t width = area->right - area->left, v = y - r->layer->top;
    const int64_t left = area->left - r->layer->left;
    const bool has_row = v >= 0 && v < object->height;
    const int64_t begin = has_row ? clamp_i64(-left, 0, width) : width;
    const int64_t end = has_row ? clamp_i64(object->width - left, begin, width) : width;
    for (int64_t x = 0; x < width; x++) {
        to_object[x] = STEPS_NONE;
        to_end[x] = 0;
    }
    bool ends = end - begin < width;
    const int64_t first = 4 * (v * object->width + left);
    for (int64_t x = begin; x < end; x++) {
        if (object->data[first + 4 * x] != 0) to_object[x] = 0;
        const bool seen = r->layer->surroundings->data[first + 4 * x] == 255;
        to_end[x] = seen ? STEPS_NONE : 0;
        ends = ends || !seen;
    }
    return ends;
}

static void measure_ring(const ring* r) {
    const span_box* area = &r->around->area;
    const int64_t width = area->right - area->left, height = area->bottom - area->top;
    bool ends = false;
    for (int64_t y = 0; y < height; y++) {
        ends = mark_row(r, area->top + y, r->around->to_object + y * width,
                        r->around->to_end + y * width) ||
               ends;
    }
    spread_steps(r->around->to_object, width, height);
    if (ends) spread_steps(r->around->to_end, width, height);
}

// Whether a pixel of the inner part lies in the ring and has surroundings.
static bool in_ring(const surroundings* around, int64_t x, int64_t y, int32_t reach) {
    const int64_t i = area_index(around, x, y);
    return around->to_object[i] > 0 && around->to_object[i] <= STEPS_STRAIGHT * reach &&
           around->to_end[i] > 0;
}

// The colours of a pixel in the ring.
static const uint8_t* surroundings_pixel(const ring* r, int64_t x, int64_t y) {
    const blend_image* picture = r->layer->surroundings;
    return picture->data + 4 * ((y - r->layer->top) * picture->width + x - r->layer->left);
}

static const uint8_t* destination_pixel(const ring* r, int64_t x, int64_t y) {
    const imageblend_box* box = &r->frames->box;
    return r->frames->destination.data + 4 * ((y - box->top) * box->width + x - box->left);
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
    const span_box* inner = &r->around->inner;
    for (int64_t y = inner->top; y < inner->bottom; y++) {
        for (int64_t x = inner->left; x < inner->right; x++) {
            if (!in_ring(r->around, x, y, reach)) continue;
            const uint8_t* around = surroundings_pixel(r, x, y);
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
    const span_box square = {left, top, left + PATCH, top + PATCH};
    const span_box part = cut_span(&square, &r->around->inner);
    *pixels = 0;
    for (int64_t y = part.top; y < part.bottom; y++) {
        for (int64_t x = part.left; x < part.right; x++) {
            if (!in_ring(r->around, x, y, reach)) continue;
            const uint8_t* around = surroundings_pixel(r, x, y);
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
    const span_box* inner = &r->around->inner;
    // Squares begin at the frames' corner.
    const int64_t top = inner->top - (inner->top - r->frames->box.top) % PATCH;
    const int64_t left = inner->left - (inner->left - r->frames->box.left) % PATCH;
    float sum = 0.0f, weight = 0.0f;
    for (int64_t y = top; y < inner->bottom; y += PATCH) {
        for (int64_t x = left; x < inner->right; x += PATCH) {
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

// The fades towards the reach and towards the end of the surroundings, by steps.
static void set_fades(int32_t reach, surroundings* around) {
    const float far = (float)(STEPS_STRAIGHT * reach), near = far / 3.0f;
    for (int steps = 0; steps <= STEPS_NONE; steps++) {
        around->object_fade[steps] = fade(((float)steps - near) / (far - near));
        around->end_fade[steps] = fade(1.0f - (float)steps / (far - near));
    }
}

bool alloc_surroundings(const imageblend_layer* layer, const imageblend_frames* frames,
                        const span_box* inner, surroundings* around) {
    around->reach = 0;
    around->to_object = NULL;
    around->ratios = NULL;
    if (layer_reach(layer) == 0) return true;
    around->inner = *inner;
    // What is beyond the border may be near enough, too.
    const span_box near = grow_span(inner, layer_reach(layer)), whole = span_of(&frames->box);
    around->area = cut_span(&near, &whole);
    const int64_t width = around->area.right - around->area.left;
    const int64_t pixels = width * (around->area.bottom - around->area.top);
    around->to_object = (int16_t*)alloc_plane(pixels, 2, sizeof(int16_t));
    around->ratios = (int32_t*)malloc(3 * RATIOS * sizeof(int32_t));
    if (around->to_object != NULL) around->to_end = around->to_object + pixels;
    if (around->to_object != NULL && around->ratios != NULL) return true;
    free_surroundings(around);
    return false;
}

void free_surroundings(surroundings* around) {
    free(around->ratios);
    free(around->to_object);
}

void find_surroundings(const imageblend_layer* layer, const imageblend_frames* frames,
                       surroundings* around) {
    if (layer_reach(layer) == 0) return;
    const ring r = {layer, frames, around};
    measure_ring(&r);
    choose_reach(&r, around);
    if (around->reach > 0) set_fades(around->reach, around);
}
