// SPDX-License-Identifier: Apache-2.0
// What stood around an object, brought along into a destination.
#ifndef IMAGEBLEND_PREPARE_SURROUNDINGS_H
#define IMAGEBLEND_PREPARE_SURROUNDINGS_H

#include <stddef.h>

#include "prepare/layer.h"

typedef struct surroundings {
    int32_t reach;    // pixels that come along; 0: none
    float gain[3];    // makes their colours those of the destination
    uint8_t* weight;  // of the surroundings over the destination, one byte for each frame pixel
    uint16_t *to_object, *to_end;  // work: distances of the frame's pixels
    int32_t* ratios;               // work: counts
} surroundings;

// All that can fail. Without surroundings nothing is allocated.
bool alloc_surroundings(const imageblend_layer* layer, const imageblend_frames* frames,
                        surroundings* around);
void free_surroundings(surroundings* around);

// Weights are 255 on the object and up to a third of the reach around it, fall to 0 at the reach,
// and in the same way towards the end of the picture that the surroundings come from. The gain of a
// channel is the median of destination to surroundings over the ring. With
// IMAGEBLEND_SURROUNDINGS_AUTO the reach is the widest of 32, 24 and 16 at which the ring, so lit,
// matches the destination, else 0. The frames' destination must be filled.
void find_surroundings(const imageblend_layer* layer, const imageblend_frames* frames,
                       surroundings* around);

// The pixel of a layer's picture at a frame's pixel; null outside of the picture.
static inline const uint8_t* layer_pixel(const imageblend_layer* layer, const blend_image* picture,
                                         const imageblend_frames* frames, int64_t x, int64_t y) {
    const int64_t u = x + frames->box.left - layer->left, v = y + frames->box.top - layer->top;
    if (u < 0 || v < 0 || u >= picture->width || v >= picture->height) return NULL;
    return picture->data + 4 * ((size_t)v * (size_t)picture->width + (size_t)u);
}

#endif
