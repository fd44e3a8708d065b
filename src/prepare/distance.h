// SPDX-License-Identifier: Apache-2.0
// Distance of every pixel to an outline.
#ifndef IMAGEBLEND_PREPARE_DISTANCE_H
#define IMAGEBLEND_PREPARE_DISTANCE_H

#include <stdint.h>

// Distances are in 1/16 pixel and saturate at a reach of DISTANCE_LONGEST pixels at most.
enum { DISTANCE_ONE = 16, DISTANCE_LONGEST = 32 };

// Signed distance of the middle of each pixel to the outline that passes half a pixel outside of
// the pixels with alpha of 128 and more: positive inside. The stairs of pixels are smoothed: the
// filter 1 4 6 4 1 along rows and columns, edge values repeated. Beyond the plane the picture is
// taken to go on as it ends, without an outline. Distances of `reach` pixels and more are `reach`.
// `distance` has the plane's size. False without memory.
bool signed_distance(const uint8_t* alpha, int32_t width, int32_t height, int32_t reach,
                     int16_t* distance);

#endif
