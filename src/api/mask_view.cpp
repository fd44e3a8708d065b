// SPDX-License-Identifier: Apache-2.0
#include "api/mask_view.h"

#include <string.h>

#include "api/mask_scan.h"
#include "kernels/set_bytes.h"
#include "numeric.h"

mask_view view_of_mask(const uint8_t* samples, int32_t width, int32_t height,
                       const pixel_layout* layout) {
    return {samples + layout->offset, layout->step, width, height};
}

static const uint8_t* sample_at(const mask_view* mask, int64_t x, int64_t y) {
    return mask->samples + (y * mask->frame_width + x) * mask->step;
}

mask_extent scan_mask(const mask_view* mask) {
    const auto first = [=](int64_t y, int64_t begin, int64_t end) {
        return begin + first_set(sample_at(mask, begin, y), end - begin, mask->step);
    };
    const auto last = [=](int64_t y, int64_t begin, int64_t end) {
        return begin + last_set(sample_at(mask, begin, y), end - begin, mask->step);
    };
    const pixel_window frame = {0, 0, mask->frame_width, mask->frame_height};
    return scan_window(mask->frame_width, mask->frame_height, frame, first, last);
}

void copy_mask_box(const mask_view* mask, const pixel_box* box, uint8_t* crop, size_t crop_bytes) {
    if (box->width < 1 || box->height < 1) return;
    const int64_t begin = clamp_i64(-(int64_t)box->x, 0, box->width);
    const int64_t end = clamp_i64((int64_t)mask->frame_width - box->x, begin, box->width);
    const size_t row_bytes = (size_t)box->width;
    for (size_t r = 0; r < (size_t)box->height && (r + 1) * row_bytes <= crop_bytes; r++) {
        uint8_t* out = crop + r * row_bytes;
        const int64_t y = (int64_t)box->y + (int64_t)r;
        if (y < 0 || y >= mask->frame_height || begin == end) {
            memset(out, 0, row_bytes);
            continue;
        }
        const uint8_t* in = sample_at(mask, box->x + begin, y);
        memset(out, 0, (size_t)begin);
        if (mask->step == 1) {
            memcpy(out + begin, in, (size_t)(end - begin));
        } else {
            for (int64_t c = begin; c < end; c++)
                out[c] = in[(c - begin) * mask->step];
        }
        memset(out + end, 0, row_bytes - (size_t)end);
    }
}
