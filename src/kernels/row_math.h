// SPDX-License-Identifier: Apache-2.0
// The formulas of the pyramids, for one value each. The plain paths are made of them; vector paths
// give the same results.
#ifndef IMAGEBLEND_KERNELS_ROW_MATH_H
#define IMAGEBLEND_KERNELS_ROW_MATH_H

#include <stdint.h>

static inline uint8_t reduce5(int a, int b, int c, int d, int e) {
    return (uint8_t)((a + 4 * b + 6 * c + 4 * d + e + 8) >> 4);
}

static inline uint8_t expand3(int a, int b, int c) {
    return (uint8_t)((a + 6 * b + c + 4) >> 3);
}

static inline uint8_t expand2(int b, int c) {
    return (uint8_t)((4 * (b + c) + 4) >> 3);
}

// Weights sum to 255 under a divisor of 256, so a full mask shrinks a value slightly; this is part
// of the design. Rounds down.
static inline int32_t blended(int32_t mask, int32_t a, int32_t b) {
    return (mask * a + (255 - mask) * b + 128) >> 8;
}

static inline uint8_t clamp_to_byte(int32_t value) {
    return (uint8_t)(value < 0 ? 0 : (value > 255 ? 255 : value));
}

#endif
