// SPDX-License-Identifier: Apache-2.0
// What the files with 256-bit vectors of x86-64 share. Only for files that are built for AVX2.
#ifndef IMAGEBLEND_KERNELS_X86_AVX2_VECTORS_H
#define IMAGEBLEND_KERNELS_X86_AVX2_VECTORS_H

#include <immintrin.h>

#include "kernels/vector_rows.h"
#include "kernels/x86/x86_rows.h"

typedef __m256i bytes32;

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

static inline bytes32 average_up(bytes32 a, bytes32 b) {
    return _mm256_avg_epu8(a, b);
}
static inline bytes32 invert(bytes32 v) {
    return _mm256_xor_si256(v, _mm256_set1_epi8(-1));
}

// (a + 6 b + c + 4) >> 3: halving three times, rounding up only in the last step. The mean of
// inverted values is an inverted mean that is rounded down.
static inline bytes32 even_phase(bytes32 a, bytes32 b, bytes32 c) {
    const bytes32 ac = average_up(invert(a), invert(c));
    return average_up(b, invert(average_up(invert(b), ac)));
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

#endif
