// SPDX-License-Identifier: Apache-2.0
// The element-wise arithmetic of the Laplacian pyramids, one band at a time: the steps that the way
// up of a blend takes in one (merge_even and merge_odd of row_ops.h), for who wants to see them.
//
// A band is `src_rows` rows of `src_width` pixels with three interleaved channels and no gaps;
// 16-bit planes hold signed values. Below, i is an element and p a pixel of the band. Nothing
// beyond the band is read or written. With `src_rows` below 1 or a `src_width` of 0 nothing is
// written.
//
// All return 0 (null for those with the signature of a pool task).
#ifndef IMAGEBLEND_KERNELS_BAND_KERNELS_H
#define IMAGEBLEND_KERNELS_BAND_KERNELS_H

#include "kernels/band_task.h"

// dst_lap[i] = src[i] - src2[i], in -255..255: the level minus the expanded coarser level.
int32_t ImageLaplace_Byte3C(const band_task* task);

// dst_lap[i] = src[i]: the top of a Laplacian pyramid is the coarsest level itself.
int32_t ImageWiden_Byte3C(const band_task* task);

// dst[i] = min(max(lap[i] + src[i], 0), 255), the sum wrapping at 16 bits: one step of the
// collapse.
int32_t ImageCollapse_Short3C(const band_task* task);

// For each channel of pixel p, with m = src[p]:
//   dst_lap = (m lap + (255 - m) lap2 + 128) >> 8, rounding down, in 32 bits and cut to 16
// The weights sum to 255 under a divisor of 256, so a full mask shrinks a value slightly; this is
// part of the design. dst_lap may be lap2. The steps of src_geom (lap), src2_geom (lap2), mask_geom
// and dst_geom are honoured. A pool task: takes a band_task and ends with pool_signal_done, also
// when there is nothing to do.
void* ImageBlend_Short3C(void* task);

// dst[i] = the low 8 bits of lap[i]. A pool task like ImageBlend_Short3C.
void* ImageNarrow_Short3C(void* task);

#endif
