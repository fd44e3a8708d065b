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

// Outputs [begin, end) of a reduced row, edges included.
template <int channels>
static inline void reduce_range(const uint8_t* __restrict src, int32_t src_width,
                                uint8_t* __restrict dst, int32_t dst_width, int32_t begin,
                                int32_t end) {
    const ptrdiff_t step = channels;
    for (ptrdiff_t i = begin; i < end; i++) {
        const ptrdiff_t left = i > 0 ? 2 * step : 0, near_left = i > 0 ? step : 0;
        // At the far end the last sample is repeated where the source has no more to give.
        const bool folds = i == dst_width - 1 && (int64_t)dst_width * 2 == src_width;
        const ptrdiff_t right = folds ? step : 2 * step;
        for (ptrdiff_t k = 0; k < step; k++) {
            const uint8_t* s = src + 2 * i * step + k;
            dst[i * step + k] =
                (uint8_t)((s[-left] + 4 * s[-near_left] + 6 * s[0] + 4 * s[step] + s[right] + 8) >>
                          4);
        }
    }
}

// The outputs of source pixels [begin, end) of an expanded row of three channels, edges included.
static inline void expand_range_c3(const uint8_t* __restrict src, int32_t src_width,
                                   uint8_t* __restrict dst, int32_t dst_width, int32_t begin,
                                   int32_t end) {
    for (ptrdiff_t i = begin; i < end; i++) {
        const ptrdiff_t left = i > 0 ? 3 : 0, right = i < src_width - 1 ? 3 : 0;
        for (ptrdiff_t k = 0; k < 3; k++) {
            const uint8_t* s = src + 3 * i + k;
            dst[6 * i + k] = (uint8_t)((s[-left] + 6 * s[0] + s[right] + 4) >> 3);
            dst[6 * i + 3 + k] = (uint8_t)((s[0] + s[right] + 1) >> 1);
            if (right == 0 && dst_width > 2 * (int64_t)src_width) dst[6 * i + 6 + k] = s[0];
        }
    }
}

#endif
