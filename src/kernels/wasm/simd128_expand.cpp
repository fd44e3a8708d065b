// SPDX-License-Identifier: Apache-2.0
// The expansion of a row in vectors of WebAssembly.
#include "kernels/wasm/simd128_vectors.h"

// The outputs of five source pixels, 30 bytes: b holds them, a the pixels before and c those
// behind. Their channels need no separation, as neighbours are three bytes apart.
static inline void expand_five(bytes16 a, bytes16 b, bytes16 c, uint8_t* dst) {
    const bytes16 even = even_phase(a, b, c), odd = average_up(b, c);
    const bytes16 even_first =
        wasm_u8x16_const(0, 1, 2, NONE, NONE, NONE, 3, 4, 5, NONE, NONE, NONE, 6, 7, 8, NONE);
    const bytes16 odd_first =
        wasm_u8x16_const(NONE, NONE, NONE, 0, 1, 2, NONE, NONE, NONE, 3, 4, 5, NONE, NONE, NONE, 6);
    // From the byte 14 on.
    const bytes16 even_second = wasm_u8x16_const(8, NONE, NONE, NONE, 9, 10, 11, NONE, NONE, NONE,
                                                 12, 13, 14, NONE, NONE, NONE);
    const bytes16 odd_second =
        wasm_u8x16_const(NONE, 6, 7, 8, NONE, NONE, NONE, 9, 10, 11, NONE, NONE, NONE, 12, 13, 14);
    store(dst,
          wasm_v128_or(wasm_i8x16_swizzle(even, even_first), wasm_i8x16_swizzle(odd, odd_first)));
    store(dst + 14,
          wasm_v128_or(wasm_i8x16_swizzle(even, even_second), wasm_i8x16_swizzle(odd, odd_second)));
}

// The first five and the last five pixels, where neighbours repeat.
static void expand_ends_c3(const uint8_t* __restrict src, int32_t src_width,
                           uint8_t* __restrict dst, int32_t dst_width) {
    const bytes16 repeat_first =
        wasm_u8x16_const(0, 1, 2, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12);
    const bytes16 drop_byte =
        wasm_u8x16_const(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, NONE);
    const bytes16 repeat_last =
        wasm_u8x16_const(3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 12, 13, 14, NONE);
    const bytes16 first = load(src);
    expand_five(wasm_i8x16_swizzle(first, repeat_first), first, load(src + 3), dst);
    // Sixteen bytes that end with the row; the first belongs to no pixel of the five.
    const uint8_t* s = src + 3 * (ptrdiff_t)src_width - 16;
    const bytes16 last = wasm_i8x16_swizzle(load(s), drop_byte);
    expand_five(load(s - 2), last, wasm_i8x16_swizzle(last, repeat_last),
                dst + 6 * ((ptrdiff_t)src_width - 5));
    expand_surplus_c3(src, src_width, dst, dst_width);
}

// Five source pixels a run, which reads 3 bytes before and 4 behind them.
void simd128_expand_row_c3(const uint8_t* __restrict src, int32_t src_width,
                           uint8_t* __restrict dst, int32_t dst_width) {
    const int32_t inner = src_width - 3;
    if (inner < 5) return plain_rows.expand_row_c3(src, src_width, dst, dst_width);
    for_each_vector((size_t)inner, 5, [=](size_t i) {
        const uint8_t* s = src + 3 * (i + 1);
        expand_five(load(s - 3), load(s), load(s + 3), dst + 6 * (i + 1));
    });
    expand_ends_c3(src, src_width, dst, dst_width);
}
