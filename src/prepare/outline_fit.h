// SPDX-License-Identifier: Apache-2.0
// The distance by which an outline as a whole lies beside the edge that the picture shows.
#ifndef IMAGEBLEND_PREPARE_OUTLINE_FIT_H
#define IMAGEBLEND_PREPARE_OUTLINE_FIT_H

#include "imageblend_prepare.h"

// The edge is looked for up to so many pixels on both sides of the outline.
enum { FIT_REACH = 11 };

typedef struct outline_fit {
    int32_t status;  // IMAGEBLEND_FIT_UNCLEAR, _BEYOND or _KEPT
    float inwards;   // pixels from the outline to the edge; 0 unless _KEPT
} outline_fit;

// Tries every whole distance t. For each square of 32 x 32 pixels that the outline passes, the mean
// colours of the two pixels on either side of t differ by some length; the sum of these lengths
// over all squares, weighed by their pixels, says how much of an edge there is at t. The largest is
// taken, and a parabola through its neighbours gives the fraction.
//   picture   colour; the pixels of `box` are read
//   distance  signed_distance of the outline in the box
// False without memory.
bool fit_outline(const blend_image* picture, const imageblend_box* box, const int16_t* distance,
                 outline_fit* fit);

#endif
