// The multi-band blend of two rectangles.
#ifndef IMAGEBLEND_BLEND_PYRAMID_BLEND_H
#define IMAGEBLEND_BLEND_PYRAMID_BLEND_H

#include <stddef.h>

#include "blend/picture.h"
#include "blend/pyramid_run.h"
#include "blend/workspace.h"

// Blends `src_patch` over `dst_patch` under `mask` into `result_patch`. The rectangles have
// ws->width x ws->height pixels of three interleaved channels, the mask one byte a pixel (255:
// source only), `patch_bytes` is the size of a rectangle. The planes must not overlap.
// `scratch_patch` may be null; it is working space that the call does without.
//
// The Laplacian pyramids of both rectangles are `ws->levels` deep, or as deep as both sides of
// every level stay 2 or more; each level is blended under the mask reduced to its size and the sum
// is collapsed again. With ws->levels 0 the planes lap_src[0] and lap_dst[0], which the caller has
// filled, are blended and nothing else is done.
//
// The way down reduces both pictures and the mask level by level. The way up makes, row by row,
// both Laplacian levels, their blend and its sum with the coarser result. Every stage cuts a level
// into four bands of rows, which run on a pool of four threads that exists during the call, or in
// the caller where the picture is small or no thread can be started, with the same result.
//
// Returns 0, or -1 when scratch memory cannot be had.
int32_t pyramid_blend(const uint8_t* src_patch, const uint8_t* dst_patch, const uint8_t* mask,
                      uint8_t* result_patch, uint8_t* scratch_patch, size_t patch_bytes,
                      blend_workspace* ws);

// Work besides the blend itself.
typedef struct pyramid_extras {
    const row_work* prepare[2];  // fills the source, one after the other; null where there is none
    side_work* beside;           // null where there is none
} pyramid_extras;

// The same between rectangles of frames, for a depth at which every level that is built has
// 16 rows and more.
// `result` may be the rectangle of `dst` itself. The preparing work comes first. The work
// beside is done by all threads together before the first row of the result is written, when the
// call gets that far.
int32_t blend_pictures(const picture* src, const picture* dst, const uint8_t* mask,
                       const picture* result, blend_workspace* ws, const pyramid_extras* extras);

// For tests: uses threads from work of this many pixels up; a negative number restores the
// library's own choice. Not while a blend is running.
void use_pool_from(int64_t pixels);

#endif
