// SPDX-License-Identifier: Apache-2.0
// The operations of the vector files of x86-64, as row_ops.h describes them. Most of those for 256
// bits serve the table of wider vectors too.
#ifndef IMAGEBLEND_KERNELS_X86_X86_ROWS_H
#define IMAGEBLEND_KERNELS_X86_X86_ROWS_H

#include "kernels/row_ops.h"

filter_row avx2_reduce_row_c3, avx2_reduce_row_c1, avx2_expand_row_c3;
filter_column avx2_reduce_column;
merge_row avx2_merge_even, avx2_merge_odd;
mix_two_rows avx2_mix_rows;
resample_row avx2_resample_row_c3;
convert_row avx2_pack_rgb, avx2_unpack_rgb;
turn_row avx2_turn_rgb, avx2_turn_mask;
filter_two_rows avx512_reduce_two_c3, avx512_reduce_two_c1;
filter_row avx512_expand_row_c3;
merge_row avx512_merge_even, avx512_merge_odd;

// What the filters leave to the edges, where neighbours repeat. A reduction: the first two and the
// last two outputs, dst_width >= 4. An expansion: the first five and the last five source pixels
// and the surplus pixel, src_width >= 6.
filter_row avx2_reduce_ends_c3, avx2_expand_ends_c3;

#endif
