// What the vector paths share: the walk over a row, the edges of the filters, and the ways in.
#ifndef IMAGEBLEND_KERNELS_VECTOR_ROWS_H
#define IMAGEBLEND_KERNELS_VECTOR_ROWS_H

#include "kernels/row_ops.h"

// The operations for one kind of vectors, or null where the machine or the build has none.
const row_ops* avx2_rows(void);
const row_ops* avx512_rows(void);
const row_ops* neon_rows(void);

// The filters of avx512_rows, for use where the processor is known to have them; null where the
// build has none.
typedef struct wide_filters {
    void (*reduce_row_c3)(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                          int32_t dst_width);
    void (*expand_row_c3)(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                          int32_t dst_width);
} wide_filters;

const wide_filters* avx512_filters(void);

// Calls step(i) for runs of `size` elements that cover 0 .. count - 1, count >= size. The last run
// overlaps the one before it, so a step must not read what a step has written.
template <class Step>
static inline void for_each_vector(size_t count, size_t size, Step step) {
    size_t i = 0;
    for (; i + size <= count; i += size)
        step(i);
    if (i < count) step(count - size);
}

// What a row filter of vectors leaves to the edges: outputs [begin, end) of a reduced row, and the
// outputs of source pixels [begin, end) of an expanded one. One function each, as calls are few.
void reduce_range_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                     int32_t dst_width, int32_t begin, int32_t end);
void reduce_range_c1(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                     int32_t dst_width, int32_t begin, int32_t end);
void expand_range_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                     int32_t dst_width, int32_t begin, int32_t end);

#endif
