// SPDX-License-Identifier: Apache-2.0
// Where one blend reads and where it writes.
#ifndef IMAGEBLEND_BLEND_BLEND_BOX_H
#define IMAGEBLEND_BLEND_BLEND_BOX_H

#include "imageblend.h"
#include "numeric.h"

// The length of a side at a zoom: the product in single precision, cut to an integer.
static inline int32_t zoomed_side(int32_t side, float zoom) {
    return float_to_i32((float)side * zoom);
}

typedef struct blend_box {
    // What is asked for.
    int32_t x, y;                     // where the top left corner of the zoomed object, without
                                      // margins, is to stand in the destination
    int32_t crop_width, crop_height;  // the object's box with its margins, before zooming
    int32_t center_x, center_y;       // the centre of that box in the source
    int32_t levels;                   // depth of the pyramids; below 1 the pictures are mixed by
                                      // the mask alone
    int32_t margin_levels;            // depth from which the margin is computed
    float zoom;
    // What follows; place_blend_box fills it.
    int32_t zoom_width, zoom_height;  // size after zooming
    int32_t zoom_left, zoom_top;      // of the zoomed box around the centre, in the source
    int32_t crop_left, crop_top;      // of the box before zooming, in the source
    int64_t wanted_left, wanted_top;  // of the zoomed box in a destination without borders
    int32_t left, top;                // where it stands instead, a pixel away from the borders
} blend_box;

// Places the box around its centre in the source, clamped at 0, and in the destination, of which
// only the size is used. A zoomed box that exceeds `dst` falls back to the size before zooming,
// with a line on standard output. With `trace` the numbers are printed.
void place_blend_box(const blend_image* dst, bool trace, blend_box* box);

#endif
