// SPDX-License-Identifier: Apache-2.0
// What the files with 512-bit vectors of x86-64 share: permutes of bytes, one instruction for any
// 64 of 64 or 128 bytes, where 256-bit vectors shuffle halves.
#ifndef IMAGEBLEND_KERNELS_X86_AVX512_VECTORS_H
#define IMAGEBLEND_KERNELS_X86_AVX512_VECTORS_H

#if !defined(__clang__)
// The compiler's own header passes vectors on that it declares without a value.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

#include <immintrin.h>

#include "kernels/vector_rows.h"
#include "kernels/x86/x86_rows.h"

typedef __m512i bytes64;

static inline bytes64 load64(const uint8_t* p) {
    return _mm512_loadu_si512(p);
}

// Positions of a permute, computed once by the compiler.
typedef struct positions {
    uint8_t at[64];
} positions;

#endif
