// SPDX-License-Identifier: Apache-2.0
// What the files with 512-bit vectors of x86-64 share. Only for files that are built for AVX-512.
#ifndef IMAGEBLEND_KERNELS_X86_AVX512_VECTORS_H
#define IMAGEBLEND_KERNELS_X86_AVX512_VECTORS_H

#if !defined(__clang__)
// The compiler's own header passes vectors on that it declares without a value.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#endif

#include <immintrin.h>

#include "kernels/vector_rows.h"
#include "kernels/x86/x86_rows.h"

typedef __m512i bytes64;
typedef bytes64 byte_vector;

static inline bytes64 load(const uint8_t* p) {
    return _mm512_loadu_si512(p);
}
static inline void store(uint8_t* p, bytes64 v) {
    _mm512_storeu_si512(p, v);
}

// Positions of a permute, one instruction for any 64 bytes of 64 or 128 where 256-bit vectors
// shuffle halves; computed once by the compiler.
typedef struct positions {
    uint8_t at[64];
} positions;

// What the shared formulas are made of, as in avx2_vectors.h. Ones that the compiler does not know
// to be such: for a complement that it recognises GCC 12 makes an instruction that waits for the
// last one that wrote its register.
static inline bytes64 invert(bytes64 v) {
    bytes64 ones = _mm512_set1_epi8(-1);
    __asm__("" : "+v"(ones));
    return _mm512_xor_si512(v, ones);
}
static inline bytes64 average_up(bytes64 a, bytes64 b) {
    return _mm512_avg_epu8(a, b);
}
static inline bytes64 add_saturated(bytes64 a, bytes64 b) {
    return _mm512_adds_epu8(a, b);
}
static inline bytes64 subtract_saturated(bytes64 a, bytes64 b) {
    return _mm512_subs_epu8(a, b);
}
static inline bytes64 drop_from_128(bytes64 v) {
    return _mm512_mask_add_epi8(v, _mm512_movepi8_mask(v), v, _mm512_set1_epi8(-1));
}
static inline bytes64 drop_above_128(bytes64 v) {
    const __mmask64 above = _mm512_cmpgt_epu8_mask(v, _mm512_set1_epi8(-128));
    return _mm512_mask_add_epi8(v, above, v, _mm512_set1_epi8(-1));
}
static inline bytes64 flip_bytes(bytes64 v, int bits) {
    return _mm512_xor_si512(v, _mm512_set1_epi8((char)bits));
}
static inline bytes64 flip_words(bytes64 v, int bits) {
    return _mm512_xor_si512(v, _mm512_set1_epi16((short)bits));
}
static inline bytes64 turns_low(bytes64 a, bytes64 b) {
    return _mm512_unpacklo_epi8(a, b);
}
static inline bytes64 turns_high(bytes64 a, bytes64 b) {
    return _mm512_unpackhi_epi8(a, b);
}
static inline bytes64 pack_words(bytes64 low, bytes64 high) {
    return _mm512_packus_epi16(low, high);
}
static inline bytes64 add_pairs(bytes64 weights, bytes64 values) {
    return _mm512_maddubs_epi16(weights, values);
}
static inline bytes64 average_words_up(bytes64 a, bytes64 b) {
    return _mm512_avg_epu16(a, b);
}
static inline bytes64 add_words(bytes64 a, bytes64 b) {
    return _mm512_add_epi16(a, b);
}
static inline bytes64 words_of(int value) {
    return _mm512_set1_epi16((short)value);
}
template <int BITS>
static inline bytes64 shift_words_down(bytes64 v) {
    return _mm512_srli_epi16(v, BITS);
}
static inline bytes64 choose(bytes64 mask, bytes64 set, bytes64 unset) {
    return _mm512_ternarylogic_epi64(mask, set, unset, 0xca);
}

#include "kernels/even_phase.h"
#include "kernels/merge_formulas.h"

#endif
