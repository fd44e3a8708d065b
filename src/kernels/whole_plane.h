// SPDX-License-Identifier: Apache-2.0
// 2:1 reduction and 1:2 expansion of whole 8-bit planes, on the calling thread.
//
// Planes are packed, `width` x `height` pixels of 1 (NC) or 3 interleaved (C3) channels. Each axis
// is filtered as row_ops.h says, rows first, with rounding to 8 bits between the passes. A coarser
// side of exactly 1 is refused; where one is below 1 there is nothing to do. Nothing beyond the
// planes is read or written.
//
// All return 0, or -1 with one line in the log and `dst` untouched: a null plane, sizes that break
// the rule (2 dst <= src for a reduction, 2 src <= dst for an expansion), or no memory for the
// scratch plane of dst_width x src_height pixels.
#ifndef IMAGEBLEND_KERNELS_WHOLE_PLANE_H
#define IMAGEBLEND_KERNELS_WHOLE_PLANE_H

#include <stdint.h>

int32_t ImageDown_ByteNC(const uint8_t* src, int32_t src_width, int32_t src_height, uint8_t* dst,
                         int32_t dst_width, int32_t dst_height);

int32_t ImageDown_ByteC3(const uint8_t* src, int32_t src_width, int32_t src_height, uint8_t* dst,
                         int32_t dst_width, int32_t dst_height);

// Columns beyond 2 src_width + 1 become 0; rows beyond 2 src_height + 1 are left as they were.
int32_t ImageUp_ByteC3(const uint8_t* src, int32_t src_width, int32_t src_height, uint8_t* dst,
                       int32_t dst_width, int32_t dst_height);

#endif
