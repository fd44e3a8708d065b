// SPDX-License-Identifier: Apache-2.0
// A mask as the scans and copies see it: one sample of each pixel of a frame.
#ifndef IMAGEBLEND_API_MASK_VIEW_H
#define IMAGEBLEND_API_MASK_VIEW_H

#include <stddef.h>

#include "pixel_layout.h"

// Half-open ranges of columns and rows.
typedef struct pixel_window {
    int32_t x_begin, y_begin, x_end, y_end;
} pixel_window;

// `samples` is the first pixel's; each pixel has `step` bytes.
typedef struct mask_view {
    const uint8_t* samples;
    int32_t step;
    int32_t frame_width, frame_height;
} mask_view;

mask_view view_of_mask(const uint8_t* samples, int32_t width, int32_t height,
                       const pixel_layout* layout);

// The extreme columns and rows that hold a non-zero sample. Without one, xmin = frame_width - 1,
// ymin = frame_height - 1 and xmax = ymax = 0. 64 bits, because frame_width - 1 may not fit into
// 32.
typedef struct mask_extent {
    int64_t xmin, ymin, xmax, ymax;
} mask_extent;

mask_extent scan_mask(const mask_view* mask);

// Copies a box into packed rows, samples outside the frame as 0. Rows that do not fit into
// `crop_bytes` are left out.
void copy_mask_box(const mask_view* mask, const pixel_box* box, uint8_t* crop, size_t crop_bytes);

#endif
