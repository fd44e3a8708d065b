// SPDX-License-Identifier: Apache-2.0
// What the files with 256-bit vectors of x86-64 share. Only for files that are built for AVX2.
#ifndef IMAGEBLEND_KERNELS_X86_AVX2_VECTORS_H
#define IMAGEBLEND_KERNELS_X86_AVX2_VECTORS_H

#include <immintrin.h>

#include "kernels/vector_rows.h"
#include "kernels/x86/x86_rows.h"

typedef __m256i bytes32;
typedef bytes32 byte_vector;

static inline bytes32 load(const uint8_t* p) {
    return _mm256_loadu_si256((const __m256i*)p);
}
static inline void store(uint8_t* p, bytes32 v) {
    _mm256_storeu_si256((__m256i*)p, v);
}
static inline __m128i load16(const uint8_t* p) {
    return _mm_loadu_si128((const __m128i*)p);
}
static inline void store16(uint8_t* p, __m128i v) {
    _mm_storeu_si128((__m128i*)p, v);
}

static inline void store6(uint8_t* p, __m128i v) {
    const int64_t low = _mm_cvtsi128_si64(v);
    memcpy(p, &low, 6);
}

static inline bytes32 join(__m128i low, __m128i high) {
    return _mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1);
}

// Two runs of 16 bytes, one in each half.
static inline bytes32 load_halves(const uint8_t* low, const uint8_t* high) {
    return join(load16(low), load16(high));
}

// Bytes of two vectors of 16 values in their order, each saturated to 0..255.
static inline bytes32 pack_in_order(__m256i low, __m256i high) {
    return _mm256_permute4x64_epi64(_mm256_packus_epi16(low, high), 0xd8);
}

// Weights of a pair of neighbouring bytes for _mm256_maddubs_epi16.
static inline __m256i pair_weights(int first, int second) {
    return _mm256_set1_epi16((short)(second * 256 + first));
}

// Stores the first 12 bytes of each half, 24 bytes in all.
static inline void store_two_twelves(uint8_t* p, __m256i v) {
    const __m128i low = _mm256_castsi256_si128(v), high = _mm256_extracti128_si256(v, 1);
    store16(p, _mm_or_si128(low, _mm_slli_si128(high, 12)));
    _mm_storel_epi64((__m128i*)(p + 16), _mm_srli_si128(high, 4));
}

static inline __m256i weigh(bytes32 pairs, int first, int second) {
    return _mm256_maddubs_epi16(pairs, pair_weights(first, second));
}

// What the shared formulas are made of. Words are 16 bits; the steps that combine lanes do so
// within each run of 16 bytes.
static inline bytes32 invert(bytes32 v) {
    return _mm256_xor_si256(v, _mm256_set1_epi8(-1));
}
static inline bytes32 average_up(bytes32 a, bytes32 b) {
    return _mm256_avg_epu8(a, b);
}
static inline bytes32 add_saturated(bytes32 a, bytes32 b) {
    return _mm256_adds_epu8(a, b);
}
static inline bytes32 subtract_saturated(bytes32 a, bytes32 b) {
    return _mm256_subs_epu8(a, b);
}
// v - 1 where v is 128 and more, or more than that. The bit of 128 is the sign.
static inline bytes32 drop_from_128(bytes32 v) {
    return _mm256_add_epi8(v, _mm256_cmpgt_epi8(_mm256_setzero_si256(), v));
}
static inline bytes32 drop_above_128(bytes32 v) {
    return _mm256_add_epi8(v, _mm256_cmpeq_epi8(_mm256_max_epu8(v, _mm256_set1_epi8(-127)), v));
}
static inline bytes32 flip_bytes(bytes32 v, int bits) {
    return _mm256_xor_si256(v, _mm256_set1_epi8((char)bits));
}
static inline bytes32 flip_words(bytes32 v, int bits) {
    return _mm256_xor_si256(v, _mm256_set1_epi16((short)bits));
}
static inline bytes32 turns_low(bytes32 a, bytes32 b) {
    return _mm256_unpacklo_epi8(a, b);
}
static inline bytes32 turns_high(bytes32 a, bytes32 b) {
    return _mm256_unpackhi_epi8(a, b);
}
static inline bytes32 pack_words(bytes32 low, bytes32 high) {
    return _mm256_packus_epi16(low, high);
}
static inline bytes32 add_pairs(bytes32 weights, bytes32 values) {
    return _mm256_maddubs_epi16(weights, values);
}
static inline bytes32 average_words_up(bytes32 a, bytes32 b) {
    return _mm256_avg_epu16(a, b);
}
static inline bytes32 add_words(bytes32 a, bytes32 b) {
    return _mm256_add_epi16(a, b);
}
static inline bytes32 words_of(int value) {
    return _mm256_set1_epi16((short)value);
}
template <int BITS>
static inline bytes32 shift_words_down(bytes32 v) {
    return _mm256_srli_epi16(v, BITS);
}
static inline bytes32 choose(bytes32 mask, bytes32 set, bytes32 unset) {
    return _mm256_blendv_epi8(unset, set, mask);
}

#include "kernels/even_phase.h"
#include "kernels/merge_formulas.h"

#endif
