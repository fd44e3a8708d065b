// SPDX-License-Identifier: Apache-2.0
// Where the pixels and samples of a plane lie.
#ifndef IMAGEBLEND_PIXEL_LAYOUT_H
#define IMAGEBLEND_PIXEL_LAYOUT_H

#include <stdint.h>

// {0, 1} for masks and {0, 3} for packed colour planes.
typedef struct pixel_layout {
    int32_t offset;  // element of the first sample
    int32_t step;    // elements of one pixel
} pixel_layout;

// A box of a frame, which it may reach beyond.
typedef struct pixel_box {
    int32_t x, y, width, height;
} pixel_box;

#endif
