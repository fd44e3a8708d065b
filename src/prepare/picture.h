// SPDX-License-Identifier: Apache-2.0
// Pictures that a caller hands in.
#ifndef IMAGEBLEND_PREPARE_PICTURE_H
#define IMAGEBLEND_PREPARE_PICTURE_H

#include "imageblend.h"

// Whether the record can be read: no null, sides from 1 on, and no more colour pixels than a buffer
// can have.
bool picture_is_valid(const blend_image* picture);

// The same for a picture of that size.
bool has_size(const blend_image* picture, int32_t width, int32_t height);

#endif
