// Where an object that is laid over a destination can be seen.
#ifndef IMAGEBLEND_PREPARE_LAYER_H
#define IMAGEBLEND_PREPARE_LAYER_H

#include "imageblend_prepare.h"

enum { LARGEST_REACH = 256 };

// The blend keeps a pixel away from the frame's border.
enum { FRAME_SPARE = 2 };

// Half-open, with room for any place and size.
typedef struct span_box {
    int64_t left, top, right, bottom;
} span_box;

span_box span_of(const imageblend_box* box);
span_box cut_span(const span_box* a, const span_box* b);

bool layer_is_valid(const imageblend_layer* layer);

// The most pixels of surroundings that may come along.
int32_t layer_reach(const imageblend_layer* layer);

// The part of a destination that the object and its surroundings can change; empty if none.
span_box new_box(const imageblend_layer* layer, int64_t width, int64_t height);

// By how many pixels on each side the mask in these frames is larger than that part.
int64_t frame_growth(const imageblend_frames* frames, const span_box* inner);

#endif
