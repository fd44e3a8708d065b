// The finest level of a pyramid: a packed patch, or a rectangle of a frame that is packed row by
// row where it is needed.
#ifndef IMAGEBLEND_BLEND_PICTURE_H
#define IMAGEBLEND_BLEND_PICTURE_H

#include <stdint.h>

// A frame has 4-byte pixels; the rectangle starts at (x, y) and may reach outside (rectangle.h). A
// patch has 3-byte pixels and is its own rectangle.
typedef struct picture {
    uint8_t* pixels;
    int32_t frame_width, frame_height;
    int32_t x, y;
    bool packed;
} picture;

picture packed_picture(uint8_t* pixels, int32_t width, int32_t height);
picture frame_picture(uint8_t* pixels, int32_t frame_width, int32_t frame_height, int32_t x,
                      int32_t y);

// `rows` packed rows of `width` pixels from row `row` of the rectangle: within a patch, or cut from
// the frame into `buffer`, which holds rows * width * 3 bytes.
const uint8_t* read_rows(const picture* from, int32_t row, int32_t rows, int32_t width,
                         uint8_t* buffer);

// Where to put the packed row `row` of the result: within a patch, or in `buffer`. store_row then
// stamps a buffered row into the frame, opaque.
uint8_t* result_row(const picture* to, int32_t row, int32_t width, uint8_t* buffer);
void store_row(const picture* to, int32_t row, int32_t width, const uint8_t* packed);

#endif
