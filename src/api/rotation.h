// SPDX-License-Identifier: Apache-2.0
// Rotation of a frame and its mask about the object's centre.
#ifndef IMAGEBLEND_API_ROTATION_H
#define IMAGEBLEND_API_ROTATION_H

#include "api/mask_view.h"

// Inverse mapping without interpolation: the output pixel (x, y), with dx and dy its distance from
// the centre, takes the source pixel
//   (trunc((center_x + sine dy) + cosine dx), trunc((center_y + cosine dy) - sine dx))
// in single precision, or 0 where that lies outside the frame of width x height pixels. Since
// truncation is toward zero, positions between -1 and 0 read row or column 0.
typedef struct rotation {
    float cosine, sine;
    int32_t center_x, center_y;
    int32_t width, height;
} rotation;

// The angle in degrees is converted with the constant -3.1415926 / 180 in double precision, rounded
// to single; cosine and sine are the double functions of that, rounded again.
rotation make_rotation(float angle, int32_t center_x, int32_t center_y, int32_t width,
                       int32_t height);

// Rotates a mask whose non-zero samples lie within `extent`. The view shows the pixels that the
// object can reach; everything else is zero. Returns the samples, which the caller frees, or null
// without memory.
uint8_t* make_rotated_mask(const rotation* turn, const uint8_t* mask, const mask_extent* extent,
                           mask_view* rotated);

// The rotated colours of a window.
typedef struct colour_rotation {
    rotation turn;
    const uint8_t* frame;  // 4-byte pixels, turn.width x turn.height
    pixel_window window;
    uint8_t* rotated;  // packed rows of the window's 4-byte pixels; byte 0 holds nothing of use
} colour_rotation;

// Fills rows [begin, end) of the window. `work` is a colour_rotation; the band does not matter.
void rotate_colours(void* work, int32_t band, int32_t begin, int32_t end);

#endif
