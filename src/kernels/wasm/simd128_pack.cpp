// SPDX-License-Identifier: Apache-2.0
// The way between packed and 4-byte pixels in vectors of WebAssembly, four pixels a vector. Vectors
// of packed pixels hold four bytes more, which belong to the pixels behind them.
#include "kernels/wasm/simd128_vectors.h"

// Calls step(p) for runs of four pixels while there are two more behind them, and last(end) for the
// four pixels that end where the row ends, before it for those that end at most one earlier. Six
// pixels and more.
template <class Step, class Last>
static inline void for_each_four(size_t pixels, Step step, Last last) {
    size_t p = 0;
    for (; p + 18 <= pixels; p += 16) {
        step(p);
        step(p + 4);
        step(p + 8);
        step(p + 12);
    }
    for (; p + 6 <= pixels; p += 4)
        step(p);
    if (p + 4 < pixels) last(p + 4);
    last(pixels);
}

void simd128_pack_rgb(const uint8_t* __restrict argb, uint8_t* __restrict rgb, size_t pixels) {
    if (pixels < 6) return plain_rows.pack_rgb(argb, rgb, pixels);
    const bytes16 colours =
        wasm_u8x16_const(1, 2, 3, 5, 6, 7, 9, 10, 11, 13, 14, 15, NONE, NONE, NONE, NONE);
    const auto pack = [=](size_t p) { return wasm_i8x16_swizzle(load(argb + 4 * p), colours); };
    for_each_four(
        pixels, [=](size_t p) { store(rgb + 3 * p, pack(p)); },
        [=](size_t end) { store12(rgb + 3 * (end - 4), pack(end - 4)); });
}

void simd128_unpack_rgb(const uint8_t* __restrict rgb, uint8_t* __restrict argb, size_t pixels) {
    if (pixels < 6) return plain_rows.unpack_rgb(rgb, argb, pixels);
    const bytes16 from_start =
        wasm_u8x16_const(NONE, 0, 1, 2, NONE, 3, 4, 5, NONE, 6, 7, 8, NONE, 9, 10, 11);
    const bytes16 from_end =
        wasm_u8x16_const(NONE, 4, 5, 6, NONE, 7, 8, 9, NONE, 10, 11, 12, NONE, 13, 14, 15);
    const bytes16 opaque = wasm_u32x4_const_splat(255);
    for_each_four(
        pixels,
        [=](size_t p) {
            const bytes16 colours = wasm_i8x16_swizzle(load(rgb + 3 * p), from_start);
            store(argb + 4 * p, wasm_v128_or(colours, opaque));
        },
        [=](size_t end) {
            const bytes16 colours = wasm_i8x16_swizzle(load(rgb + 3 * end - 16), from_end);
            store(argb + 4 * (end - 4), wasm_v128_or(colours, opaque));
        });
}
