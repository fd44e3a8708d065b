// The operations of the vector files of 64-bit Arm, as row_ops.h describes them.
#ifndef IMAGEBLEND_KERNELS_ARM_NEON_ROWS_H
#define IMAGEBLEND_KERNELS_ARM_NEON_ROWS_H

#include "kernels/row_ops.h"

void neon_reduce_row_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                        int32_t dst_width);
void neon_reduce_row_c1(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                        int32_t dst_width);
void neon_expand_row_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                        int32_t dst_width);
void neon_reduce_column(const uint8_t* const taps[5], uint8_t* __restrict dst, size_t bytes);
void neon_merge_even(const merge_rows* rows, uint8_t* __restrict dst, size_t pixels);
void neon_merge_odd(const merge_rows* rows, uint8_t* __restrict dst, size_t pixels);
void neon_mix_rows(const uint8_t* s0, const uint8_t* s1, int32_t weight, uint8_t* __restrict dst,
                   size_t bytes);
void neon_resample_row_c3(const uint8_t* __restrict src, const row_tap* taps,
                          uint8_t* __restrict dst, size_t pixels);
void neon_pack_rgb(const uint8_t* __restrict argb, uint8_t* __restrict rgb, size_t pixels);
void neon_unpack_rgb(const uint8_t* __restrict rgb, uint8_t* __restrict argb, size_t pixels);

#endif
