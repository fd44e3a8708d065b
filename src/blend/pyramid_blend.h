// SPDX-License-Identifier: Apache-2.0
// The multi-band blend of two rectangles.
#ifndef IMAGEBLEND_BLEND_PYRAMID_BLEND_H
#define IMAGEBLEND_BLEND_PYRAMID_BLEND_H

#include "blend/patch.h"
#include "blend/side_work.h"
#include "blend/workspace.h"

// Work besides the blend itself.
typedef struct blend_extras {
    const row_work* prepare;  // fills the source; null where there is nothing to fill
    const side_work* beside;  // null where there is none
    int64_t turned_pixels;    // of a source that is turned where it is read
} blend_extras;

// Blends `src` over `dst` under `mask` into `result`, rectangles of ws->width x ws->height pixels;
// the mask has one byte a pixel (255: source only). `result` may be the rectangle of `dst` in one
// frame; otherwise nothing may overlap. `extras` may be null.
//
// The Laplacian pyramids of both rectangles are `ws->levels` deep, or as deep as both sides of
// every level stay 2 or more; each level is blended under the mask reduced to its size and the sum
// is collapsed again. With ws->levels 0 the pictures are mixed by the mask alone.
//
// The preparing work comes first. The way down then reduces both pictures and the mask level by
// level; the way up makes, row by row, both Laplacian levels, their blend and its sum with the
// coarser result. The work beside is done before the first row of the result is written. Large
// stages are cut into pieces of rows, which the caller and as many threads as there are free cores,
// four in all, take one after the other; the threads exist during the call. Where the work is small
// or no thread can be started the caller does everything, with the same result.
//
// Returns 0, or -1 with nothing done when scratch memory cannot be had.
int32_t pyramid_blend(const patch* src, const patch* dst, const uint8_t* mask, const patch* result,
                      blend_workspace* ws, const blend_extras* extras);

#endif
