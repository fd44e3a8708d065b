// SPDX-License-Identifier: Apache-2.0
// Interpolation between rows and between pixels in vectors of WebAssembly.
#include "kernels/wasm/simd128_vectors.h"

// ((128 - weight) a + weight b + 64) >> 7 of 16-bit lanes, as 128 a + weight (b - a): the sum is at
// most 128 * 255 + 64.
static inline bytes16 mix(bytes16 a, bytes16 b, bytes16 weight) {
    const bytes16 sum =
        wasm_i16x8_add(wasm_i16x8_shl(a, 7), wasm_i16x8_mul(wasm_i16x8_sub(b, a), weight));
    return wasm_u16x8_shr(wasm_i16x8_add(sum, wasm_i16x8_const_splat(64)), 7);
}

void simd128_mix_rows(const uint8_t* s0, const uint8_t* s1, int32_t weight, uint8_t* __restrict dst,
                      size_t bytes) {
    if (bytes < 16) return plain_rows.mix_rows(s0, s1, weight, dst, bytes);
    const bytes16 w = wasm_i16x8_splat((int16_t)weight);
    for_each_vector(bytes, 16, [=](size_t i) {
        const bytes16 a = load(s0 + i), b = load(s1 + i);
        const bytes16 low = mix(wasm_u16x8_extend_low_u8x16(a), wasm_u16x8_extend_low_u8x16(b), w);
        const bytes16 high =
            mix(wasm_u16x8_extend_high_u8x16(a), wasm_u16x8_extend_high_u8x16(b), w);
        store(dst + i, wasm_u8x16_narrow_i16x8(low, high));
    });
}

// Two outputs in 16-bit lanes 0 to 2 and 4 to 6; the others hold nothing. Reads eight bytes from
// each tap's first pixel on.
static inline bytes16 mix_two_taps(const uint8_t* src, const row_tap* taps) {
    const bytes16 first = wasm_u8x16_const(0, NONE, 1, NONE, 2, NONE, NONE, NONE,  //
                                           8, NONE, 9, NONE, 10, NONE, NONE, NONE);
    const bytes16 second = wasm_u8x16_const(3, NONE, 4, NONE, 5, NONE, NONE, NONE,  //
                                            11, NONE, 12, NONE, 13, NONE, NONE, NONE);
    const bytes16 weight = wasm_u8x16_const(4, NONE, 4, NONE, 4, NONE, NONE, NONE,  //
                                            12, NONE, 12, NONE, 12, NONE, NONE, NONE);
    const bytes16 samples =
        wasm_v128_load64_lane(src + 3 * (ptrdiff_t)taps[1].sample,
                              wasm_v128_load64_zero(src + 3 * (ptrdiff_t)taps[0].sample), 1);
    return mix(wasm_i8x16_swizzle(samples, first), wasm_i8x16_swizzle(samples, second),
               wasm_i8x16_swizzle(wasm_v128_load(taps), weight));
}

// Four pixels a run, 12 bytes.
void simd128_resample_row_c3(const uint8_t* __restrict src, const row_tap* taps,
                             uint8_t* __restrict dst, size_t pixels) {
    if (pixels < 4) return plain_rows.resample_row_c3(src, taps, dst, pixels);
    const bytes16 close_up =
        wasm_u8x16_const(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, NONE, NONE, NONE, NONE);
    for_each_vector(pixels, 4, [=](size_t p) {
        const bytes16 values =
            wasm_u8x16_narrow_i16x8(mix_two_taps(src, taps + p), mix_two_taps(src, taps + p + 2));
        store12(dst + 3 * p, wasm_i8x16_swizzle(values, close_up));
    });
}
