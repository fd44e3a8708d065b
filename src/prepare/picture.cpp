// SPDX-License-Identifier: Apache-2.0
#include "prepare/picture.h"

#include "memory.h"

bool picture_is_valid(const blend_image* picture) {
    size_t bytes;
    return picture != NULL && picture->data != NULL && picture->width >= 1 &&
           picture->height >= 1 && buffer_size(picture->width, picture->height, 4, &bytes);
}

bool has_size(const blend_image* picture, int32_t width, int32_t height) {
    return picture_is_valid(picture) && picture->width == width && picture->height == height;
}
