// SPDX-License-Identifier: Apache-2.0
// The reductions in vectors of WebAssembly. They stay in 8-bit lanes. As in all files of vectors,
// rows of a vector and more end with one vector that overlaps the one before it, so no element is
// handled alone; shorter rows take the plain operations.
#include "kernels/wasm/simd128_vectors.h"

// (t0 + 4 t1 + 6 t2 + 4 t3 + t4 + 8) >> 4. Dropping the lowest bit twice does not change it:
//   v = (((t0 + t4) >> 1) + t2) >> 1,  result = (v + t2 + t1 + t3 + 2) >> 2.
// The mean of the means x of v and t2 and y of t1 and t3, all rounded up, is one too large where
// one of these two was rounded and their own mean is too.
static inline bytes16 reduce_taps(bytes16 t0, bytes16 t1, bytes16 t2, bytes16 t3, bytes16 t4) {
    const bytes16 outer = average_up(invert(t0), invert(t4));
    const bytes16 v = invert(average_up(outer, invert(t2)));
    const bytes16 x = average_up(v, t2), y = average_up(t1, t3);
    const bytes16 rounded = wasm_v128_or(wasm_v128_xor(v, t2), wasm_v128_xor(t1, t3));
    const bytes16 surplus = wasm_v128_and(rounded, wasm_v128_xor(x, y));
    return wasm_i8x16_sub(average_up(x, y), wasm_v128_and(surplus, wasm_i8x16_const_splat(1)));
}

void simd128_reduce_column(const uint8_t* const taps[5], uint8_t* __restrict dst, size_t bytes) {
    if (bytes < 16) return plain_rows.reduce_column(taps, dst, bytes);
    const uint8_t *t0 = taps[0], *t1 = taps[1], *t2 = taps[2], *t3 = taps[3], *t4 = taps[4];
    for_each_vector(bytes, 16, [=](size_t i) {
        store(dst + i,
              reduce_taps(load(t0 + i), load(t1 + i), load(t2 + i), load(t3 + i), load(t4 + i)));
    });
}

// The bytes at even and at odd places of 32.
static inline bytes16 even_bytes(const uint8_t* p) {
    return wasm_i8x16_shuffle(load(p), load(p + 16), 0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24,
                              26, 28, 30);
}
static inline bytes16 odd_bytes(const uint8_t* p) {
    return wasm_i8x16_shuffle(load(p), load(p + 16), 1, 3, 5, 7, 9, 11, 13, 15, 17, 19, 21, 23, 25,
                              27, 29, 31);
}

// 16 outputs a step. Output i + 1 is centred on sample 2i + 2; the reads of a step end five samples
// behind its last centre, so the last two outputs are left to the edge.
void simd128_reduce_row_c1(const uint8_t* __restrict src, int32_t src_width,
                           uint8_t* __restrict dst, int32_t dst_width) {
    const int32_t inner = dst_width - 3;
    if (inner < 16) return plain_rows.reduce_row_c1(src, src_width, dst, dst_width);
    for_each_vector((size_t)inner, 16, [=](size_t i) {
        const uint8_t* s = src + 2 * i;
        store(dst + 1 + i, reduce_taps(even_bytes(s), odd_bytes(s), even_bytes(s + 2),
                                       odd_bytes(s + 2), even_bytes(s + 4)));
    });
    reduce_ends_c1(src, src_width, dst, dst_width, dst_width - 2);
}

// Three pixels a step: the filter around each of five source pixels, every second of which is an
// output. A store writes seven bytes more, which the next one or the edge overwrites, and a step
// reads 16 bytes from the second pixel behind its first centre on; so the last pixels are left to
// the edge.
void simd128_reduce_row_c3(const uint8_t* __restrict src, int32_t src_width,
                           uint8_t* __restrict dst, int32_t dst_width) {
    const int32_t inner = dst_width - 4;
    if (inner < 3) return plain_rows.reduce_row_c3(src, src_width, dst, dst_width);
    const bytes16 every_second =
        wasm_u8x16_const(0, 1, 2, 6, 7, 8, 12, 13, 14, NONE, NONE, NONE, NONE, NONE, NONE, NONE);
    for_each_vector((size_t)inner, 3, [=](size_t i) {
        const uint8_t* s = src + 6 * (i + 1);
        const bytes16 filtered =
            reduce_taps(load(s - 6), load(s - 3), load(s), load(s + 3), load(s + 6));
        store(dst + 3 * (i + 1), wasm_i8x16_swizzle(filtered, every_second));
    });
    reduce_ends_c3(src, src_width, dst, dst_width, dst_width - 3);
}
