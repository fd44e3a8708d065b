// SPDX-License-Identifier: Apache-2.0
// What the files with vectors of WebAssembly share.
//
// An engine turns each operation into instructions of the machine it runs on, by itself. A shuffle
// of two vectors that the machine has no instruction for costs it ten or more each time, so bytes
// are moved by swizzles of one vector. Those that are to be 0 have the position NONE: with its
// highest bit set, x86-64 needs one instruction for a swizzle by constants.
#ifndef IMAGEBLEND_KERNELS_WASM_SIMD128_VECTORS_H
#define IMAGEBLEND_KERNELS_WASM_SIMD128_VECTORS_H

#include <wasm_simd128.h>

#include "kernels/vector_rows.h"
#include "kernels/wasm/simd128_rows.h"

typedef v128_t bytes16;
typedef bytes16 byte_vector;

enum { NONE = 0x80 };

static inline bytes16 load(const uint8_t* p) {
    return wasm_v128_load(p);
}
static inline void store(uint8_t* p, bytes16 v) {
    wasm_v128_store(p, v);
}

static inline void store12(uint8_t* p, bytes16 v) {
    wasm_v128_store64_lane(p, v, 0);
    wasm_v128_store32_lane(p + 8, v, 2);
}

static inline bytes16 average_up(bytes16 a, bytes16 b) {
    return wasm_u8x16_avgr(a, b);
}
static inline bytes16 invert(bytes16 v) {
    return wasm_v128_xor(v, wasm_i8x16_const_splat(-1));
}

// What the merge is made of.
static inline bytes16 add_saturated(bytes16 a, bytes16 b) {
    return wasm_u8x16_add_sat(a, b);
}
static inline bytes16 subtract_saturated(bytes16 a, bytes16 b) {
    return wasm_u8x16_sub_sat(a, b);
}
// v - 1 where v is 128 and more, or more than that. Comparisons of signed bytes: from 128 on they
// are negative.
static inline bytes16 drop_from_128(bytes16 v) {
    return wasm_i8x16_add(v, wasm_i8x16_gt(wasm_i8x16_const_splat(0), v));
}
static inline bytes16 drop_above_128(bytes16 v) {
    const bytes16 flipped = wasm_v128_xor(v, wasm_i8x16_const_splat(-128));
    return wasm_i8x16_add(v, wasm_i8x16_gt(flipped, wasm_i8x16_const_splat(0)));
}

#include "kernels/even_phase.h"
#include "kernels/merge_formulas.h"

#endif
