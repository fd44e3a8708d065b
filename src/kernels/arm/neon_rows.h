// SPDX-License-Identifier: Apache-2.0
// The operations of the vector files of 64-bit Arm, as row_ops.h describes them.
#ifndef IMAGEBLEND_KERNELS_ARM_NEON_ROWS_H
#define IMAGEBLEND_KERNELS_ARM_NEON_ROWS_H

#include "kernels/row_ops.h"

filter_row neon_reduce_row_c3, neon_reduce_row_c1, neon_expand_row_c3;
filter_column neon_reduce_column;
merge_row neon_merge_even, neon_merge_odd;
mix_two_rows neon_mix_rows;
resample_row neon_resample_row_c3;
convert_row neon_pack_rgb, neon_unpack_rgb;
turn_row neon_turn_rgb, neon_turn_mask;

#endif
