// SPDX-License-Identifier: Apache-2.0
// What a level's rows are read from and written to: a packed patch, or a rectangle of a frame that
// is packed, and turned, row by row where it is needed.
#ifndef IMAGEBLEND_BLEND_PATCH_H
#define IMAGEBLEND_BLEND_PATCH_H

#include "blend/turned_frame.h"

typedef struct patch {
    blend_image
        frame;     // of 4-byte pixels; where packed, of 3-byte pixels and nothing but the patch
    int32_t x, y;  // where the patch starts in its frame, which it may reach beyond
    bool packed;
    const rotation* turn;  // what the frame is turned by before it is cut; null where it is not
} patch;

// Of pixels that are written only where the patch is a result.
patch packed_patch(const uint8_t* pixels, int32_t width, int32_t height);
patch frame_patch(const blend_image* frame, const rotation* turn, int32_t x, int32_t y);

// `rows` packed rows of `width` pixels from row `row` on: within a packed patch, or cut from the
// frame into `buffer`, which holds rows * width * 3 bytes.
const uint8_t* read_rows(const patch* from, int32_t row, int32_t rows, int32_t width,
                         uint8_t* buffer);

// One such row, of which only the pixels count whose mask is not 0; the others are 0 or themselves.
const uint8_t* read_masked_row(const patch* from, int32_t row, int32_t width, const uint8_t* mask,
                               uint8_t* buffer);

// Where to put packed rows of a result from row `row` on: within a packed patch, or in `buffer`.
// store_rows then stamps buffered rows into the frame, opaque.
uint8_t* result_rows(const patch* to, int32_t row, uint8_t* buffer);
void store_rows(const patch* to, int32_t row, int32_t rows, int32_t width, const uint8_t* packed);

#endif
