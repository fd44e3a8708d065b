// SPDX-License-Identifier: Apache-2.0
// What the vector paths share: the walk over a row and the edges of the filters.
#ifndef IMAGEBLEND_KERNELS_VECTOR_ROWS_H
#define IMAGEBLEND_KERNELS_VECTOR_ROWS_H

#include <string.h>

#include "kernels/row_ops.h"

// Calls step(i) for runs of `size` elements that cover 0 .. count - 1, count >= size. The last run
// overlaps the one before it, so a step must not read what a step has written.
template <class Step>
static inline void for_each_vector(size_t count, size_t size, Step step) {
    size_t i = 0;
    for (; i + size <= count; i += size)
        step(i);
    if (i < count) step(count - size);
}

// The same for a long step, which stands in the code once.
template <class Step>
static inline void for_each_block(size_t count, size_t size, Step step) {
    const size_t last = count - size;
    for (size_t i = 0;;) {
        step(i);
        if (i == last) return;
        i = i + size < last ? i + size : last;
    }
}

// What a reduction leaves to the edges: the first output and those from `begin` on, begin >= 1 and
// dst_width >= 2. One function each, as calls are few.
void reduce_ends_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                    int32_t dst_width, int32_t begin);
void reduce_ends_c1(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                    int32_t dst_width, int32_t begin);

// The pixel that an expanded row has beyond twice the source's, if it has one.
static inline void expand_surplus_c3(const uint8_t* __restrict src, int32_t src_width,
                                     uint8_t* __restrict dst, int32_t dst_width) {
    const ptrdiff_t width = src_width;
    if (dst_width > 2 * width) memcpy(dst + 6 * width, src + 3 * (width - 1), 3);
}

#endif
