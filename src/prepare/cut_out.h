// SPDX-License-Identifier: Apache-2.0
// What a picture with an alpha channel of its own holds where it is transparent.
#ifndef IMAGEBLEND_PREPARE_CUT_OUT_H
#define IMAGEBLEND_PREPARE_CUT_OUT_H

#include "imageblend_prepare.h"

// Whether the transparent pixels of the box show a picture. In a cut-out nearly all of them have
// one colour, or there are none.
bool shows_surroundings(const blend_image* picture, const imageblend_box* box);

// Whether colours are multiplied by alpha: hardly any channel is above alpha, and the pixels of the
// edge are more like the opaque ones near them when they are divided by it.
bool is_premultiplied(const blend_image* picture, const imageblend_box* box);

// The colour of a channel that was multiplied by alpha.
static inline uint8_t divide_by_alpha(int channel, int alpha) {
    const int whole = alpha > 0 ? (channel * 255 + alpha / 2) / alpha : 0;
    return (uint8_t)(whole < 255 ? whole : 255);
}

#endif
