// SPDX-License-Identifier: Apache-2.0
// The object's own colours in pixels that show something else too.
#ifndef IMAGEBLEND_PREPARE_COLOURS_H
#define IMAGEBLEND_PREPARE_COLOURS_H

#include "imageblend_prepare.h"

// How far the colours of a soft pixel can be believed.
enum {
    COLOURS_THROUGH = 0,  // alpha is exact: what is behind shines through by 255 - alpha
    COLOURS_OUTLINE = 1,  // alpha is a guess along an outline, what is behind is known
    COLOURS_CUT_OUT = 2   // what is behind is not known
};

// Planes of one byte for each of `width` x `height` pixels.
typedef struct colour_planes {
    int32_t width, height;
    uint8_t* seen[3];        // the picture
    uint8_t* alpha;          // of the object that is to come out
    uint8_t* object_weight;  // how well a pixel serves as an example of the object's colours
    uint8_t* behind_weight;  // and of what lies around and behind it; 255 is best
    uint8_t* soft;           // other than 0: the pixel's colours are to be cleaned
} colour_planes;

// Writes colours and alpha of the object into pixels of 4 bytes: the picture's colours, cleaned
// where `soft` says so, and 0 in all bytes where alpha is 0.
//
// Means of the examples over 91 x 91 pixels (at a quarter of the size, of whole squares of 4 x 4)
// give colours F of the object and B of what is behind at each soft pixel, and so better examples
// there:
//   F + a (I - a F - (1 - a) B) / (a^2 + (1 - a)^2), and the same with 1 - a for B.
// Means of these over 11 x 11 pixels give the F and B from which the result is made:
//   COLOURS_THROUGH  the same formula where alpha changes quickly, (I - (1 - a) B) / a where it
//                    changes slowly, as in shadows
//   COLOURS_OUTLINE  I + b (F - B), b the part of B that I shows, where I is nearer to F; else F
//   COLOURS_CUT_OUT  F, or I where the pixels along the edge are found to be clean
// False without memory.
bool clean_colours(const colour_planes* planes, int32_t how, uint8_t* object);

#endif
