// SPDX-License-Identifier: Apache-2.0
// How an angle turns a frame about the object's centre, and the mask when it is turned.
#ifndef IMAGEBLEND_API_ROTATION_H
#define IMAGEBLEND_API_ROTATION_H

#include "api/mask_view.h"
#include "blend/turned_frame.h"

// The angle in degrees is converted with the constant -3.1415926 / 180 in double precision, rounded
// to single; cosine and sine are the double functions of that, rounded again.
rotation make_rotation(float angle, int32_t center_x, int32_t center_y, int32_t width,
                       int32_t height);

// A mask when it is turned, never whole in memory.
typedef struct turned_mask {
    rotation turn;
    const uint8_t* samples;  // of the upright mask, packed
    mask_extent object;      // holds all of its non-zero samples
} turned_mask;

// As scan_mask and copy_mask_box do it.
mask_extent scan_turned_mask(const turned_mask* mask);
void copy_turned_box(const turned_mask* mask, const pixel_box* box, uint8_t* crop,
                     size_t crop_bytes);

#endif
