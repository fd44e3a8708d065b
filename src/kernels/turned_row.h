// SPDX-License-Identifier: Apache-2.0
// What the operations on turned rows share.
#ifndef IMAGEBLEND_KERNELS_TURNED_ROW_H
#define IMAGEBLEND_KERNELS_TURNED_ROW_H

#include "kernels/row_ops.h"

// The address may lie outside of everything, which a fetch ignores.
static inline void fetch_from(const uint8_t* p, ptrdiff_t distance) {
    __builtin_prefetch((const void*)((uintptr_t)p + (uintptr_t)distance));
}

// Whether the places of a frame's pixels fit 32 bits, as they must in vectors.
static inline bool is_small_frame(const turned_row* row) {
    return (int64_t)row->frame_width * row->frame_height <= INT32_MAX;
}

#endif
