// SPDX-License-Identifier: Apache-2.0
// The object's box in its mask: bounding box, pyramid level, margins and seams.
#ifndef IMAGEBLEND_API_MASK_BOX_H
#define IMAGEBLEND_API_MASK_BOX_H

#include "api/mask_view.h"

// Sides of a frame or of a box, as bits.
enum { SIDE_LEFT = 1, SIDE_RIGHT = 2, SIDE_TOP = 4, SIDE_BOTTOM = 8 };

// The box of a mask's non-zero samples, widened on each side by a margin of 4 * 2^level pixels as
// far as the frame allows.
typedef struct mask_box {
    mask_extent extent;               // of the samples
    int32_t bare_width, bare_height;  // of that extent
    int32_t level;                    // depth of a pyramid of the bare size; negative below 16
    int32_t margin;                   // wanted on each side
    bool fits;                        // false without margins: larger than the frame, as only that
                                      // of a frame without pixels is
    int32_t x0, y0;                   // corner, with margins
    int32_t crop_mask_width, crop_mask_height;  // size, with margins
    int32_t seams;                              // sides at which the frame cut the margin short
} mask_box;

// The box around an extent in the frame of a mask. `clamp` caps the level at 4; without `margins`
// the box is left bare.
mask_box box_around(const mask_extent* extent, const mask_view* mask, bool clamp, bool margins);

// One error line for a box that does not fit its frame, or one line for each seam. Returns -1, 2
// when there is a seam, or 0.
int32_t log_mask_box(const mask_box* box);

// Scans the mask for its box and logs what is short.
int32_t find_mask_box(const mask_view* mask, bool clamp, bool margins, mask_box* box);

// The size of a box, as the callers of the library see it in their log.
void log_crop_size(const mask_box* box);

// Finds the box, logs its size and copies it into `crop`, packed rows of `crop_mask_width` bytes.
// Samples outside the frame read as 0; what does not fit into `crop_bytes` is left out.
void crop_mask(const mask_view* mask, bool margins, uint8_t* crop, size_t crop_bytes,
               mask_box* box);

// The box around the extent of a mask that was turned about (center_x, center_y), its level capped.
// Unless its corner is that of the box before, it is moved so that it is centred there.
mask_box box_around_turned(const mask_extent* extent, const mask_view* mask,
                           const mask_box* upright, int32_t center_x, int32_t center_y);

#endif
