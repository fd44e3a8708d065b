// SPDX-License-Identifier: Apache-2.0
// The walk along a resized line in 1/128 pixel, shared by the mask's and the colours' resampling.
#ifndef IMAGEBLEND_FIXED_STEP_H
#define IMAGEBLEND_FIXED_STEP_H

#include <stdint.h>

// Distance between two output samples when n_in samples become n_out: the first and the last of
// both lines coincide. The rounding term is half of n_out. Truncates toward zero; 0 when n_out
// is 1.
static inline int64_t fixed_step(int32_t n_in, int32_t n_out) {
    if (n_out == 1) return 0;
    return ((int64_t)n_in * 128 + (n_out >> 1) - 128) / ((int64_t)n_out - 1);
}

// The sample nearest to a position.
static inline int64_t fixed_nearest(int64_t position) {
    return (position + 64) >> 7;
}

#endif
