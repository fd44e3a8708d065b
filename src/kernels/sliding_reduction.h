// SPDX-License-Identifier: Apache-2.0
// 2:1 reduction of a level, two finer rows at a time: what is read is filtered once, and no more is
// kept than the next rows of the coarser level need.
#ifndef IMAGEBLEND_KERNELS_SLIDING_REDUCTION_H
#define IMAGEBLEND_KERNELS_SLIDING_REDUCTION_H

#include <stddef.h>
#include <stdint.h>

typedef struct sliding_reduction {
    int32_t channels;              // 1 or 3
    int32_t src_width, dst_width;  // 2 <= dst_width <= src_width / 2
    uint8_t* ring;  // sliding_bytes of scratch at a multiple of 64; as it is at the start
} sliding_reduction;

// Bytes of scratch for a coarser level of `dst_width` pixels, a multiple of 64.
size_t sliding_bytes(int32_t dst_width, int32_t channels);

// Takes finer rows 2 row and 2 row + 1, clamped to the level, and writes coarser row `row` - 1 to
// `dst`. Rows follow one another. The first two of a walk, the first of which is one above the
// first row that is wanted and at least -1, finish none: `dst` is null then. Behind the last one
// only the even row counts, and `odd` may be any row.
//   filtered rows h and dst, both rounded, as filter_row and filter_column of row_ops.h
void slide_rows(const sliding_reduction* slide, int32_t row, const uint8_t* even,
                const uint8_t* odd, uint8_t* dst);

#endif
