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

// (a + 6 b + c + 4) >> 3: halving three times, rounding up only in the last step. The mean of
// inverted values is an inverted mean that is rounded down.
static inline bytes16 even_phase(bytes16 a, bytes16 b, bytes16 c) {
    const bytes16 ac = average_up(invert(a), invert(c));
    return average_up(b, invert(average_up(invert(b), ac)));
}

#endif
