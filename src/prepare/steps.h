// SPDX-License-Identifier: Apache-2.0
// Distances on a plane that are made of steps from pixel to pixel.
#ifndef IMAGEBLEND_PREPARE_STEPS_H
#define IMAGEBLEND_PREPARE_STEPS_H

#include "imageblend_prepare.h"

// In thirds of a pixel: 3 to a neighbour in the row or column, 4 across. STEPS_NONE is more than
// the longest reach.
enum { STEPS_STRAIGHT = 3, STEPS_ACROSS = 4, STEPS_NONE = 3 * (IMAGEBLEND_LARGEST_REACH + 1) };

// A plane of 0 and STEPS_NONE becomes that of the least sum of steps to a pixel with 0, STEPS_NONE
// at most.
void spread_steps(int16_t* plane, int64_t width, int64_t height);

#endif
