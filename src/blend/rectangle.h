// SPDX-License-Identifier: Apache-2.0
// Rectangles between 4-byte frames and packed 3-byte pixels.
//
// A rectangle may reach outside its frame. Pixels are addressed linearly, (y * width + x), so a
// column beyond the left edge is the end of the row above. Where that index leaves the frame, reads
// take the nearest pixel of the frame instead and writes are dropped.
#ifndef IMAGEBLEND_BLEND_RECTANGLE_H
#define IMAGEBLEND_BLEND_RECTANGLE_H

#include "imageblend.h"
#include "pixel_layout.h"

// Copies bytes 1, 2, 3 of the pixels of `box` to packed rows. A frame without pixels reads as 0.
void crop_to_rgb(const blend_image* src, const pixel_box* box, uint8_t* dst);

// Writes the packed pixels of `patch` to the box of a frame, with byte 0 set to 255.
void write_region_argb(const blend_image* out, const pixel_box* box, const uint8_t* patch);

#endif
