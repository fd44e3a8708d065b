// Rectangles between 4-byte frames and packed 3-byte patches.
//
// A rectangle may reach outside its frame. Pixels are addressed linearly, (y * width + x), so a
// column beyond the left edge is the end of the row above. Where that index leaves the frame, reads
// take the nearest pixel of the frame instead and writes are dropped.
#ifndef IMAGEBLEND_BLEND_RECTANGLE_H
#define IMAGEBLEND_BLEND_RECTANGLE_H

#include "pixel_layout.h"

// Copies bytes 1, 2, 3 of the `width` x `height` pixels at (x0, y0) of `src`, a frame of
// `src_width` x `src_height` pixels of src_layout->step bytes, to packed pixels of dst_layout->step
// bytes. Only the steps of the layouts are used. A frame without pixels reads as 0.
void crop_to_rgb(const uint8_t* src, int32_t src_width, uint8_t* dst, int32_t x0, int32_t y0,
                 int32_t width, int32_t height, const pixel_layout* src_layout,
                 const pixel_layout* dst_layout, int32_t src_height);

// Writes the packed `width` x `height` pixels of `patch` to (x, y) of a frame of `row_width` x
// `frame_height` 4-byte pixels, with byte 0 set to 255.
void write_region_argb(uint8_t* out_pixels, int32_t row_width, const uint8_t* patch, int32_t x,
                       int32_t y, int32_t width, int32_t height, int32_t frame_height);

#endif
