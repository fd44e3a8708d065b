// SPDX-License-Identifier: Apache-2.0
#include "prepare/alpha.h"

#include <string.h>

#include "prepare/picture.h"

bool source_is_valid(const imageblend_source* source) {
    if (source == NULL || !picture_is_valid(source->picture)) return false;
    const blend_image* picture = source->picture;
    return source->mask == NULL || has_size(source->mask, picture->width, picture->height);
}

// Pixels that are looked at together, a multiple of 4.
enum { RUN = 64 };

// Whether one of RUN alphas is above 0. What lies between them is read, too, and left out at the
// end.
static bool any_seen(const uint8_t* alphas, int64_t step) {
    const uint8_t first_byte[4] = {255, 0, 0, 0};
    uint32_t kept = UINT32_MAX, any = 0;
    if (step == 4) memcpy(&kept, first_byte, 4);
    for (int64_t i = 0; i < RUN * step; i += 4) {
        uint32_t bytes;
        memcpy(&bytes, alphas + i, 4);
        any |= bytes;
    }
    return (any & kept) != 0;
}

void find_seen(const uint8_t* alphas, int64_t count, int64_t step, int64_t* begin, int64_t* end) {
    int64_t first = 0, last = count;
    while (first + RUN <= count && !any_seen(alphas + first * step, step))
        first += RUN;
    while (first < count && alphas[first * step] == 0)
        first++;
    while (last - RUN > first && !any_seen(alphas + (last - RUN) * step, step))
        last -= RUN;
    while (last > first && alphas[(last - 1) * step] == 0)
        last--;
    *begin = first;
    *end = last;
}

void copy_alpha(const imageblend_source* source, const imageblend_box* box, uint8_t* alpha) {
    const size_t row_pixels = (size_t)source->picture->width, width = (size_t)box->width;
    for (int32_t y = 0; y < box->height; y++, alpha += width) {
        const size_t first = (size_t)(box->top + y) * row_pixels + (size_t)box->left;
        if (source->mask != NULL) {
            memcpy(alpha, source->mask->data + first, width);
            continue;
        }
        const uint8_t* pixels = source->picture->data + 4 * first;
        for (size_t x = 0; x < width; x++)
            alpha[x] = pixels[4 * x];
    }
}

int32_t find_alpha_kind(const uint8_t* alpha, int32_t width, int32_t height) {
    int64_t between = 0, steps = 0;
    for (int64_t y = 0; y < height; y++) {
        const uint8_t* row = alpha + y * width;
        const uint8_t* below = y + 1 < height ? row + width : row;
        for (int64_t x = 0; x < width; x++) {
            between += row[x] != 0 && row[x] != 255;
            const bool inside = row[x] >= ALPHA_INSIDE;
            steps += inside != (below[x] >= ALPHA_INSIDE);
            if (x + 1 < width) steps += inside != (row[x + 1] >= ALPHA_INSIDE);
        }
    }
    // A step of a slanted outline crosses one to one and a half soft pixels for each pixel of
    // width.
    if (between * 20 <= steps) return IMAGEBLEND_ALPHA_HARD;
    return between <= steps * 3 ? IMAGEBLEND_ALPHA_OUTLINE : IMAGEBLEND_ALPHA_SOFT;
}
