// SPDX-License-Identifier: Apache-2.0
// Objects before textured backgrounds, drawn so that their alpha is known.
#ifndef IMAGEBLEND_TESTS_PREPARE_SCENES_H
#define IMAGEBLEND_TESTS_PREPARE_SCENES_H

#include <stdint.h>

#include <functional>
#include <vector>

#include "imageblend_prepare.h"
#include "support/scene.h"

namespace prepare {

// A picture of 4 or 1 bytes a pixel, with the record that the functions take.
struct picture {
    picture() = default;
    picture(int32_t width, int32_t height, int32_t pixel_bytes = 4, uint8_t value = 0);

    blend_image record();
    uint8_t* at(int32_t x, int32_t y);
    const uint8_t* at(int32_t x, int32_t y) const;
    bool operator==(const picture& other) const { return data == other.data; }

    int32_t width = 0, height = 0, pixel_bytes = 4;
    std::vector<uint8_t> data;
};

// Null beyond the picture.
const uint8_t* pixel_at(const picture& of, int32_t x, int32_t y);

struct rgb {
    int32_t channel[3];
};

// A colour with noise of the given strength, smooth over a few pixels, in all four bytes; byte 0 is
// noise too.
picture texture(int32_t width, int32_t height, rgb colour, int32_t noise, uint64_t seed);

// How far a point lies inside a shape, in pixels; negative outside.
using shape = std::function<double(double x, double y)>;
shape disc(double x, double y, double radius);
shape box(double left, double top, double right, double bottom);
shape bar(double x0, double y0, double x1, double y1, double width);
shape both(const shape& a, const shape& b);

// Share of each pixel that lies in the shape grown by so many pixels, 0 .. 255.
picture coverage(int32_t width, int32_t height, const shape& drawn, double grown = 0);
// 255 where that is at least a half.
picture hard(picture coverage);

// The object over what is behind it, by alpha. Byte 0 is behind's.
picture composite(const picture& object, const picture& alpha, const picture& behind);

// Calls imageblend_clean_box and imageblend_clean; expects success. `mask` may be null.
struct cleaned {
    picture object;
    imageblend_box box;
    imageblend_findings findings;
};
cleaned clean(picture source, picture* mask, imageblend_clean_options options = {1, 0.0f});

// The frames of one blend with memory for them; expects success.
struct frame_buffers {
    imageblend_frames frames;
    picture icon, mask, destination;
};
frame_buffers place(const imageblend_layer& layer, const picture& destination);

// A cut-out of a random size, place and softness around and across all of the destination's
// borders.
struct random_layer {
    explicit random_layer(uint64_t seed);
    imageblend_layer layer(blend_image* object, blend_image* surroundings);

    picture object, surroundings, destination;
    int32_t left, top, reach;
};

uint64_t hash(const std::vector<uint8_t>& bytes, uint64_t start = 0xCBF29CE484222325U);

}  // namespace prepare

#endif
