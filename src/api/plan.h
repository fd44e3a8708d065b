// SPDX-License-Identifier: Apache-2.0
// What a call is about, found once and before anything is blended: the object in its mask, whether
// it fits where it is asked for, and where a blend reads and writes. Nothing here logs.
#ifndef IMAGEBLEND_API_PLAN_H
#define IMAGEBLEND_API_PLAN_H

#include "api/mask_box.h"
#include "api/rotation.h"
#include "blend/blend_box.h"

// Where the object's centre is to stand in the destination, and how the object is scaled.
typedef struct placement {
    int32_t center_x, center_y;
    float zoom;
} placement;

// The object in the mask of a frame, as large as the destination.
typedef struct object_plan {
    mask_view mask;              // as it is given
    mask_box upright;            // of the mask as it is given, with margins
    mask_box box;                // of what is blended, the mask or what it is when turned, with
                                 // margins; may be centred anew, beyond the frame
    int32_t center_x, center_y;  // of the upright box, which the object is turned about
    bool turned;                 // by an angle that is not exactly 0
    rotation turn;               // what it is turned by
} object_plan;

// Measures the object as it lies in its mask, whose samples must outlive the plan.
void measure_object(const uint8_t* samples, int32_t width, int32_t height, object_plan* object);

// Turns a measured object by an angle in degrees, about the centre of its box; 0 leaves it alone.
void turn_object(float angle, object_plan* object);

// Copies a box of the mask, or of what it is when turned, into packed rows, as copy_mask_box does.
void copy_object_mask(const object_plan* object, const pixel_box* box, uint8_t* crop,
                      size_t crop_bytes);

// The answer of vorn_verify_icon_pos in full. A turned object's level is not capped here, so that
// the box of one whose shorter side is 512 and more is larger than in a blend.
typedef struct placement_check {
    mask_box box;                     // of the object that is checked
    int32_t zoom_width, zoom_height;  // of that box with its margins
    bool fits;               // false where the zoomed box is larger than the frame; nothing
                             // of the following is set then
    int32_t overflows;       // sides of the frame that the zoomed object leaves
    int32_t seams;           // sides of the frame at which the margin is missing
    int64_t xl, xr, yu, yd;  // pixels beyond the full margin; below 0 (left and top) or 1
                             // there is a seam
} placement_check;

// For an object that fits its own frame.
placement_check check_placement(const object_plan* object, const placement* place);

// What vorn_imageBlending does.
typedef struct blend_plan {
    bool fits;  // false where the zoomed box is larger than the destination; of the box only the
                // zoomed size is set then
    blend_box box;
} blend_plan;

// For a destination whose pixels are not used.
blend_plan plan_blend(const object_plan* object, const placement* place,
                      const blend_image* destination);

#endif
