// The object's box in its mask: bounding box, pyramid level, margins and seams.
#ifndef IMAGEBLEND_API_MASK_BOX_H
#define IMAGEBLEND_API_MASK_BOX_H

#include "api/mask_view.h"
#include "numeric.h"

static inline int64_t extent_width(const mask_extent* e) {
    return e->xmax - e->xmin + 1;
}
static inline int64_t extent_height(const mask_extent* e) {
    return e->ymax - e->ymin + 1;
}

// Margins of at most `margin` pixels around an extent, as far as the frame allows.
typedef struct box_margins {
    int64_t left, top, right, bottom;
} box_margins;

// Where along one axis the bare box, scaled by `zoom`, starts when it is centred on `center`.
// Single precision, size times zoom first.
static inline int32_t zoomed_corner(int32_t center, int32_t bare_size, float zoom) {
    return float_to_i32((float)center - (float)bare_size * zoom * 0.5f);
}

box_margins margins_in_frame(const mask_extent* extent, int32_t width, int32_t height,
                             int32_t margin);

// Finds the box of the non-zero samples of a `width` x `height` mask, its level, and with `margins`
// widens it by 4 * 2^level pixels on each side as far as the frame allows. `clamp` caps the level
// at 4. The bare size, before margins, is written unless its pointers are null.
// Returns 0, 2 when a margin was cut short (one line in the log for each such side), or -1 when the
// bare box is larger than the frame, which only a frame with a side below 1 has.
int32_t find_mask_box(const uint8_t* samples, int32_t width, int32_t height, int32_t* x0,
                      int32_t* y0, int32_t* crop_mask_width, int32_t* crop_mask_height,
                      int32_t* bare_width, int32_t* bare_height, int32_t base, bool clamp,
                      const pixel_layout* layout, bool margins, int32_t* level);

// The same for samples that are seen through a window of the frame.
int32_t find_view_box(const mask_view* mask, int32_t width, int32_t height, int32_t* x0,
                      int32_t* y0, int32_t* crop_mask_width, int32_t* crop_mask_height,
                      int32_t* bare_width, int32_t* bare_height, int32_t base, bool clamp,
                      bool margins, int32_t* level);

// Finds the box as find_mask_box does, logs its size, computes the level of the zoomed box and
// copies the box into `crop`, packed rows of `crop_mask_width` bytes. Samples outside the frame
// read as 0. What does not fit into `crop_bytes` is left out; with 0 bytes the box is only measured
// and `crop` may be null.
void crop_mask(const uint8_t* samples, int32_t width, int32_t height, uint8_t* crop,
               int32_t* crop_mask_width, int32_t* crop_mask_height, int32_t* bare_width,
               int32_t* bare_height, int32_t* x0, int32_t* y0, int32_t* level_zoom, int32_t base,
               bool clamp, const pixel_layout* layout, bool margins, int32_t* level_box, float zoom,
               size_t crop_bytes);

// Measures the box of a rotated mask, without the log line: when the corner differs from the one
// passed in x0 and y0, the box is centred on (center_x, center_y) instead.
void crop_rotated_mask(const mask_view* mask, int32_t width, int32_t height,
                       int32_t* crop_mask_width, int32_t* crop_mask_height, int32_t* bare_width,
                       int32_t* bare_height, int32_t* x0, int32_t* y0, int32_t center_x,
                       int32_t center_y, int32_t* level_zoom, int32_t base, bool clamp,
                       bool margins, int32_t* level_box, float zoom);

#endif
