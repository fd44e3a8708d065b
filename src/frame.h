// SPDX-License-Identifier: Apache-2.0
// Memory of whole colour frames.
#ifndef IMAGEBLEND_FRAME_H
#define IMAGEBLEND_FRAME_H

#include <stddef.h>

#include "imageblend.h"

// Bytes of a frame of 4-byte pixels; 0 for a side below 1.
static inline size_t frame_bytes(const blend_image* frame) {
    if (frame->width < 1 || frame->height < 1) return 0;
    return (size_t)frame->width * (size_t)frame->height * 4;
}

// Whether the pixels of `frame` share a byte with the `bytes` bytes at `pixels`.
static inline bool frame_overlaps(const blend_image* frame, const uint8_t* pixels, size_t bytes) {
    return (uintptr_t)frame->data < (uintptr_t)pixels + bytes &&
           (uintptr_t)pixels < (uintptr_t)frame->data + frame_bytes(frame);
}

#endif
