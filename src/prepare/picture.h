// SPDX-License-Identifier: Apache-2.0
// Pictures that a caller hands in.
#ifndef IMAGEBLEND_PREPARE_PICTURE_H
#define IMAGEBLEND_PREPARE_PICTURE_H

#include "imageblend.h"
#include "memory.h"

// Whether the record can be read: no null, sides from 1 on, and no more colour pixels than a buffer
// can have.
static inline bool picture_is_valid(const blend_image* picture) {
    size_t bytes;
    return picture != NULL && picture->data != NULL && picture->width >= 1 &&
           picture->height >= 1 && buffer_size(picture->width, picture->height, 4, &bytes);
}

static inline bool has_size(const blend_image* picture, int32_t width, int32_t height) {
    return picture_is_valid(picture) && picture->width == width && picture->height == height;
}

#endif
