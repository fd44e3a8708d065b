// SPDX-License-Identifier: Apache-2.0
// The merge of a row in 256-bit vectors of x86-64.
#include "kernels/x86/avx2_vectors.h"
#include "kernels/x86/x86_merge.h"

static inline mask_kind kind_of(bytes32 mask) {
    const bytes32 ones = _mm256_set1_epi8(-1);
    if (_mm256_testz_si256(mask, mask)) return MASK_CLEAR;
    if (_mm256_testc_si256(mask, ones)) return MASK_FULL;
    const bytes32 signs = _mm256_cmpgt_epi8(_mm256_setzero_si256(), mask);
    return _mm256_testc_si256(_mm256_cmpeq_epi8(signs, mask), ones) ? MASK_HARD : MASK_SOFT;
}

// A third of 16 bytes.
static inline __m128i triple_sixteen(const uint8_t* mask, size_t third) {
    const __m128i triples[3] = {
        _mm_setr_epi8(0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5),
        _mm_setr_epi8(5, 5, 6, 6, 6, 7, 7, 7, 8, 8, 8, 9, 9, 9, 10, 10),
        _mm_setr_epi8(10, 11, 11, 11, 12, 12, 12, 13, 13, 13, 14, 14, 14, 15, 15, 15)};
    return _mm_shuffle_epi8(load16(mask), triples[third]);
}

static inline bytes32 triple_bytes(const uint8_t* mask, size_t third) {
    const size_t low = 2 * third, high = low + 1;
    return join(triple_sixteen(mask + low / 3 * 16, low % 3),
                triple_sixteen(mask + high / 3 * 16, high % 3));
}

void avx2_merge_even(const merge_rows* rows, uint8_t* __restrict dst, size_t pixels) {
    if (pixels < MERGED_PIXELS) return plain_rows.merge_even(rows, dst, pixels);
    merge<even_rows>(rows, dst, pixels);
}

void avx2_merge_odd(const merge_rows* rows, uint8_t* __restrict dst, size_t pixels) {
    if (pixels < MERGED_PIXELS) return plain_rows.merge_odd(rows, dst, pixels);
    merge<odd_rows>(rows, dst, pixels);
}
