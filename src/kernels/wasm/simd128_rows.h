// SPDX-License-Identifier: Apache-2.0
// The operations of the vector files of WebAssembly, as row_ops.h describes them.
#ifndef IMAGEBLEND_KERNELS_WASM_SIMD128_ROWS_H
#define IMAGEBLEND_KERNELS_WASM_SIMD128_ROWS_H

#include "kernels/row_ops.h"

filter_row simd128_reduce_row_c3, simd128_reduce_row_c1, simd128_expand_row_c3;
filter_column simd128_reduce_column;
merge_row simd128_merge_even, simd128_merge_odd;
mix_two_rows simd128_mix_rows;
resample_row simd128_resample_row_c3;
convert_row simd128_pack_rgb, simd128_unpack_rgb;

#endif
