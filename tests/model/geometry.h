// SPDX-License-Identifier: Apache-2.0
// Boxes, margins, rotation and rectangles of the model.
#ifndef IMAGEBLEND_TESTS_MODEL_GEOMETRY_H
#define IMAGEBLEND_TESTS_MODEL_GEOMETRY_H

#include "model.h"

namespace model {

int32_t saturate(int64_t value);

// Toward zero, saturated to 32 bits; not-a-number is 0.
int32_t truncate(float value);

// floor(log2(side)) - 4, where 0 becomes 1 and, with `clamp`, 5 and more become 4. A side below 1
// has level -4.
int32_t pyramid_level(int32_t side, bool clamp);

// 4 * 2^level, and 0 for a negative level.
int32_t level_margin(int32_t level);

struct mask_box {
    int32_t x0 = 0;
    int32_t y0 = 0;
    int32_t width = 0;  // with margins when they were asked for
    int32_t height = 0;
    int32_t bare_width = 0;
    int32_t bare_height = 0;
    int32_t level = 0;
    bool fits = true;  // false where margins were asked for and the bare box exceeds the frame
};

// The box of the non-zero bytes; only a search for margins logs.
mask_box find_mask_box(const frame& mask, bool clamp, bool margins, log_lines& log);

// The box cut out of the mask, 0 outside the frame. Empty when a side is below 1.
bytes crop_mask(const frame& mask, const mask_box& box);

struct rotation {
    float center_x = 0;
    float center_y = 0;
    float cosine = 1;
    float sine = 0;
};
rotation make_rotation(int32_t center_x, int32_t center_y, float angle);

// Inverse mapping of a frame with `channels` bytes a pixel; samples from outside are 0.
frame rotate(const frame& source, int channels, const rotation& turn);

// Packed 3-byte pixels (bytes 1..3) of a rectangle that is addressed linearly, so that columns
// outside the frame wrap into the neighbouring rows; where that leaves the picture the pixel at the
// clamped coordinates is read.
bytes read_rectangle(const frame& colour, int64_t x0, int64_t y0, int32_t width, int32_t height);

// Writes packed pixels with alpha 255, addressed likewise; pixels outside the picture are dropped.
void write_rectangle(frame& colour, int64_t x0, int64_t y0, int32_t width, int32_t height,
                     const bytes& packed);

void log(log_lines& lines, int priority, const char* format, ...)
    __attribute__((format(printf, 3, 4)));

}  // namespace model

#endif  // IMAGEBLEND_TESTS_MODEL_GEOMETRY_H
