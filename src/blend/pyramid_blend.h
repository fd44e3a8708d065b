// The multi-band blend of two packed rectangles.
#ifndef IMAGEBLEND_BLEND_PYRAMID_BLEND_H
#define IMAGEBLEND_BLEND_PYRAMID_BLEND_H

#include <stddef.h>

#include "blend/workspace.h"

// Blends `src_patch` over `dst_patch` under `mask` into `result_patch`. The rectangles have
// ws->width x ws->height pixels of three interleaved channels, the mask one byte a pixel (255:
// source only); `scratch_patch` is working space of the same size and `patch_bytes` that size in
// bytes. The planes must not overlap. Afterwards ws->lap_dst holds the blended levels.
//
// The Laplacian pyramids of both rectangles are built `ws->levels` deep, or as deep as both sides
// of every level stay 2 or more; each level is blended under the mask reduced to its size and the
// sum is collapsed again. With no level below the first, the planes lap_src[0] and lap_dst[0],
// which the caller has filled, are blended and nothing else is done.
//
// Every stage cuts a level into four bands of rows, which run on a pool of four threads that exists
// during the call. Threads that cannot be started are done without, with the same result. Returns
// 0, or -1 when the bands' scratch memory cannot be had; `result_patch` is not written then.
int32_t pyramid_blend(const uint8_t* src_patch, const uint8_t* dst_patch, const uint8_t* mask,
                      uint8_t* result_patch, uint8_t* scratch_patch, size_t patch_bytes,
                      blend_workspace* ws);

#endif
