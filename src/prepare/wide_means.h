// SPDX-License-Identifier: Apache-2.0
// Mean colours over wide squares, at a quarter of the size.
#ifndef IMAGEBLEND_PREPARE_WIDE_MEANS_H
#define IMAGEBLEND_PREPARE_WIDE_MEANS_H

#include "prepare/colours.h"

// Sums of weighed colours and of the weights: of the object, and of what is behind it.
enum { SUM_OBJECT = 0, SUM_BEHIND = 4, SUM_WEIGHT = 3, SUMS = 8 };

typedef struct wide_means {
    int32_t width, height;  // a quarter of the planes', rounded up
    uint32_t* sums;         // SUMS for each square of 4 x 4 pixels, over 23 x 23 squares
} wide_means;

// False without memory.
bool make_wide_means(const colour_planes* planes, wide_means* means);
void free_wide_means(wide_means* means);

// The sums around a pixel of the planes.
static inline const uint32_t* wide_sums(const wide_means* means, int64_t x, int64_t y) {
    return means->sums + ((y / 4) * means->width + x / 4) * SUMS;
}

#endif
