// SPDX-License-Identifier: Apache-2.0
// How deep a pyramid is, and how wide a margin that depth needs.
#ifndef IMAGEBLEND_BLEND_DEPTH_H
#define IMAGEBLEND_BLEND_DEPTH_H

#include "numeric.h"

// Every pyramid of the library is floor(log2(shorter side)) minus this deep, at most 4.
enum { BASE_LEVEL = 4 };

// d = floor(log2(side)) - base, with 1 in place of 0 and, when `cap` is set, 4 in place of anything
// above. Negative for sides below 2^base; a side below 1 counts as 1.
int32_t depth_of_side(int32_t side, int32_t base, bool cap);

// The depth for a picture of `width` x `height` pixels scaled by `zoom`: that of the shorter side,
// the product in single precision and truncated. A negative depth is returned as its bit pattern.
uint32_t margin_level(int32_t width, int32_t height, uint32_t subtract, bool cap, float zoom);

// Pixels of context that a pyramid of `level` levels needs on each side: 4 * 2^level, 0 below level
// 0.
int32_t margin_of_level(int32_t level);

#endif
