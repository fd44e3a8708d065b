// SPDX-License-Identifier: Apache-2.0
// What stood around an object, brought along into a destination.
#ifndef IMAGEBLEND_PREPARE_SURROUNDINGS_H
#define IMAGEBLEND_PREPARE_SURROUNDINGS_H

#include "numeric.h"
#include "prepare/layer.h"
#include "prepare/steps.h"

typedef struct surroundings {
    int32_t reach;                // pixels that come along; 0: none
    float gain[3];                // makes their colours those of the destination
    span_box inner;               // the part of the destination in which they can be seen
    span_box area;                // that and what is near enough to matter, of the frames
    int16_t *to_object, *to_end;  // steps from the area's pixels, rows without a gap
    float object_fade[STEPS_NONE + 1], end_fade[STEPS_NONE + 1];
    int32_t* ratios;  // work: counts
} surroundings;

// All that can fail; `inner` is from place_layer. Without surroundings nothing is allocated.
bool alloc_surroundings(const imageblend_layer* layer, const imageblend_frames* frames,
                        const span_box* inner, surroundings* around);
void free_surroundings(surroundings* around);

// Weights are 255 on the object and up to a third of the reach around it, fall to 0 at the reach,
// and in the same way towards the end of the picture that the surroundings come from. The gain of a
// channel is the median of destination to surroundings over the ring, as far as it is seen. With
// IMAGEBLEND_SURROUNDINGS_AUTO the reach is the widest of 32, 24 and 16 at which the ring, so lit,
// matches the destination, else 0, and 0 where too little of the ring is seen to compare. The
// frames' destination must be filled.
void find_surroundings(const imageblend_layer* layer, const imageblend_frames* frames,
                       surroundings* around);

// Of a pixel in the destination, among those of the area.
static inline int64_t area_index(const surroundings* around, int64_t x, int64_t y) {
    const span_box* area = &around->area;
    return (y - area->top) * (area->right - area->left) + x - area->left;
}

// Of the surroundings over the destination.
static inline uint8_t surroundings_weight(const surroundings* around, int64_t index) {
    const float fade = around->object_fade[around->to_object[index]];
    return (uint8_t)float_to_i32(255.0f * fade * around->end_fade[around->to_end[index]] + 0.5f);
}

#endif
