// The single entry of the blending engine.
#ifndef IMAGEBLEND_BLEND_BLEND_REGION_H
#define IMAGEBLEND_BLEND_BLEND_REGION_H

#include "blend/side_work.h"
#include "imageblend.h"

// Rectangles of one blend in source coordinates.
typedef struct blend_box {
    int32_t zoom_width, zoom_height;  // size after zooming
    int32_t zoom_left, zoom_top;      // top left of the zoomed box around the centre
    int32_t crop_left, crop_top;      // top left of the box before zooming
} blend_box;

// Places the object's box around its centre, clamped at 0. A zoomed box that exceeds `dst` falls
// back to the size before zooming, with a line on standard output. With `trace` the numbers are
// printed.
void place_blend_box(const blend_image* dst, int32_t center_x, int32_t center_y, int32_t crop_width,
                     int32_t crop_height, int32_t trace, float zoom, blend_box* box);

// Blends the object's box of `src` into `dst` and writes the whole picture to `out`.
//
//   src, dst       4-byte frames, read only
//   mask           trunc(crop_width zoom) x trunc(crop_height zoom) bytes
//   out            a frame of the same size; only `data` is used, which may be that of src or dst
//   x, y           where the top left corner of the zoomed box without margins is to stand in `dst`
//   crop_width, crop_height   the object's box with its margins, before zooming
//   center_x, center_y        the centre of that box in `src`
//   levels         depth of the pyramids; below 1 the pictures are mixed by the mask alone
//   margin_levels  depth from which the margin is computed
//   trace          whether place_blend_box prints
//   fill           fills the rows of `src` before they are read, or null when they are there
//
// A box of no size leaves a copy of `dst`. At its end the call frees the rotated icon, if there is
// one. Returns 0, or -1 with `out` untouched when memory runs out.
int32_t blend_region(const blend_image* src, const blend_image* dst, const uint8_t* mask,
                     const blend_image* out, int32_t x, int32_t y, int32_t crop_width,
                     int32_t crop_height, int32_t center_x, int32_t center_y, int32_t levels,
                     int32_t margin_levels, int32_t trace, float zoom, const row_work* fill);

#endif
