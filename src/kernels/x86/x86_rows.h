// The operations of the vector files of x86-64, as row_ops.h describes them. Most of those for 256
// bits serve the table of wider vectors too.
#ifndef IMAGEBLEND_KERNELS_X86_X86_ROWS_H
#define IMAGEBLEND_KERNELS_X86_X86_ROWS_H

#include "kernels/row_ops.h"

void avx2_reduce_row_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                        int32_t dst_width);
void avx2_reduce_row_c1(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                        int32_t dst_width);
void avx2_expand_row_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                        int32_t dst_width);
void avx2_reduce_column(const uint8_t* const taps[5], uint8_t* __restrict dst, size_t bytes);
void avx2_merge_even(const merge_rows* rows, uint8_t* __restrict dst, size_t pixels);
void avx2_merge_odd(const merge_rows* rows, uint8_t* __restrict dst, size_t pixels);
void avx2_mix_rows(const uint8_t* s0, const uint8_t* s1, int32_t weight, uint8_t* __restrict dst,
                   size_t bytes);
void avx2_resample_row_c3(const uint8_t* __restrict src, const row_tap* taps,
                          uint8_t* __restrict dst, size_t pixels);
void avx2_pack_rgb(const uint8_t* __restrict argb, uint8_t* __restrict rgb, size_t pixels);
void avx2_unpack_rgb(const uint8_t* __restrict rgb, uint8_t* __restrict argb, size_t pixels);

// What the filters leave to the edges, where neighbours repeat. A reduction: the first two and the
// last two outputs, dst_width >= 4. An expansion: the first five and the last five source pixels
// and the surplus pixel, src_width >= 6.
void avx2_reduce_ends_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                         int32_t dst_width);
void avx2_expand_ends_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                         int32_t dst_width);

void avx512_reduce_row_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                          int32_t dst_width);
void avx512_expand_row_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                          int32_t dst_width);

#endif
