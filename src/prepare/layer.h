// SPDX-License-Identifier: Apache-2.0
// An object that is laid over a destination: where it can be seen, and the frames that it is laid
// into.
#ifndef IMAGEBLEND_PREPARE_LAYER_H
#define IMAGEBLEND_PREPARE_LAYER_H

#include "imageblend_prepare.h"

// Half-open, with room for any place and size.
typedef struct span_box {
    int64_t left, top, right, bottom;
} span_box;

span_box span_of(const imageblend_box* box);
span_box cut_span(const span_box* a, const span_box* b);
span_box grow_span(const span_box* box, int64_t by);
bool is_empty(const span_box* box);

bool layer_is_valid(const imageblend_layer* layer);

// The most pixels of surroundings that may come along.
int32_t layer_reach(const imageblend_layer* layer);

// imageblend_place, which also gives the part of the destination that the object and its
// surroundings can change: `inner` lies in the destination, in the layer's pictures and in the
// frames, and is empty if the object cannot be seen. 0 or -1.
int32_t place_layer(const imageblend_layer* layer, int32_t width, int32_t height,
                    imageblend_frames* frames, span_box* inner);

// imageblend_lay for what place_layer has found, with the pixels of the frames: 0, or -1 without
// memory.
int32_t lay_frames(const imageblend_layer* layer, const blend_image* destination,
                   const imageblend_frames* frames, const span_box* inner, int32_t* reach);

#endif
