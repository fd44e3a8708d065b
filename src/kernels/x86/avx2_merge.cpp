// SPDX-License-Identifier: Apache-2.0
// The merge of a row in 256-bit vectors of x86-64.
#include "kernels/x86/avx2_vectors.h"

// With d = a - b the blend is b + ((m d - b + 128) >> 8). m d has up to 18 bits: its upper part
// comes from the high half of (64 d)(4 m), its low byte from the low half of m d.
static inline __m256i blend_values(__m256i m, __m256i a, __m256i b) {
    const __m256i d = _mm256_sub_epi16(a, b);
    const __m256i upper = _mm256_mulhi_epi16(_mm256_slli_epi16(d, 6), _mm256_slli_epi16(m, 2));
    const __m256i lower = _mm256_and_si256(_mm256_mullo_epi16(d, m), _mm256_set1_epi16(255));
    const __m256i rest = _mm256_add_epi16(_mm256_sub_epi16(lower, b), _mm256_set1_epi16(128));
    return _mm256_add_epi16(_mm256_add_epi16(b, upper), _mm256_srai_epi16(rest, 8));
}

// Mask bytes of a third of 16 pixels, each three times.
static inline __m128i triple_bytes(__m128i mask, size_t third) {
    const __m128i triples[3] = {
        _mm_setr_epi8(0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5),
        _mm_setr_epi8(5, 5, 6, 6, 6, 7, 7, 7, 8, 8, 8, 9, 9, 9, 10, 10),
        _mm_setr_epi8(10, 11, 11, 11, 12, 12, 12, 13, 13, 13, 14, 14, 14, 15, 15, 15)};
    return _mm_shuffle_epi8(mask, triples[third]);
}

// 32 values under a weight of 255, (255 v + 128) >> 8, which takes one from differences above 128
// and gives one to those below -127. One of the two parts is 0, so each saturates by itself.
static inline bytes32 merge_one(bytes32 row, bytes32 expanded, bytes32 result) {
    const bytes32 above = _mm256_subs_epu8(row, expanded), below = _mm256_subs_epu8(expanded, row);
    const bytes32 is_above =
        _mm256_cmpeq_epi8(_mm256_max_epu8(above, _mm256_set1_epi8(-127)), above);
    // The bit of 128 is the sign.
    const bytes32 is_below = _mm256_cmpgt_epi8(_mm256_setzero_si256(), below);
    const bytes32 gain = _mm256_add_epi8(above, is_above), loss = _mm256_add_epi8(below, is_below);
    return _mm256_subs_epu8(_mm256_adds_epu8(result, gain), loss);
}

// The phases of a merge: rows of a coarser level expanded down the columns.
struct even_rows {
    static inline bytes32 at(const coarse_rows* rows, size_t i) {
        return even_phase(load(rows->above + i), load(rows->centre + i), load(rows->below + i));
    }
};
struct odd_rows {
    static inline bytes32 at(const coarse_rows* rows, size_t i) {
        return average_up(load(rows->centre + i), load(rows->below + i));
    }
};

// 32 pixels where the mask is all 0 or all 255: only one picture counts.
template <class Phase>
static inline void merge_one_run(const uint8_t* row, const coarse_rows* coarse,
                                 const coarse_rows* result, size_t i, uint8_t* dst) {
    bytes32 out[3];
#pragma GCC unroll 3
    for (size_t k = 0; k < 3; k++) {
        const size_t at = i + 32 * k;
        out[k] = merge_one(load(row + at), Phase::at(coarse, at), Phase::at(result, at));
    }
#pragma GCC unroll 3
    for (size_t k = 0; k < 3; k++)
        store(dst + i + 32 * k, out[k]);
}

static inline __m256i widen_half(bytes32 v, bool upper) {
    return _mm256_cvtepu8_epi16(upper ? _mm256_extracti128_si256(v, 1) : _mm256_castsi256_si128(v));
}

// 32 values from byte i on under any mask.
template <class Phase>
static inline bytes32 merge_both(bytes32 mask, const merge_rows* rows, size_t i) {
    const bytes32 src = load(rows->src + i), under = load(rows->under + i);
    const bytes32 coarse_src = Phase::at(&rows->coarse_src, i);
    const bytes32 coarse_under = Phase::at(&rows->coarse_under, i);
    const bytes32 result = Phase::at(&rows->coarse_result, i);
    __m256i values[2];
#pragma GCC unroll 2
    for (int k = 0; k < 2; k++) {
        const __m256i a = _mm256_sub_epi16(widen_half(src, k), widen_half(coarse_src, k));
        const __m256i b = _mm256_sub_epi16(widen_half(under, k), widen_half(coarse_under, k));
        values[k] =
            _mm256_add_epi16(blend_values(widen_half(mask, k), a, b), widen_half(result, k));
    }
    return pack_in_order(values[0], values[1]);
}

// 32 pixels of any mask: each mask byte weighs three values.
template <class Phase>
static inline void merge_both_run(const merge_rows* rows, size_t p, uint8_t* dst) {
    const __m128i first = load16(rows->mask + p), second = load16(rows->mask + p + 16);
    const bytes32 masks[3] = {join(triple_bytes(first, 0), triple_bytes(first, 1)),
                              join(triple_bytes(first, 2), triple_bytes(second, 0)),
                              join(triple_bytes(second, 1), triple_bytes(second, 2))};
    for (size_t k = 0; k < 3; k++)
        store(dst + 3 * p + 32 * k, merge_both<Phase>(masks[k], rows, 3 * p + 32 * k));
}

template <class Phase>
static inline void merge(const merge_rows* rows, uint8_t* __restrict dst, size_t pixels) {
    const merge_rows r = *rows;
    for_each_block(pixels, 32, [&r, dst](size_t p) {
        const bytes32 mask = load(r.mask + p);
        if (_mm256_testz_si256(mask, mask)) {
            merge_one_run<Phase>(r.under, &r.coarse_under, &r.coarse_result, 3 * p, dst);
        } else if (_mm256_testc_si256(mask, _mm256_set1_epi8(-1))) {
            merge_one_run<Phase>(r.src, &r.coarse_src, &r.coarse_result, 3 * p, dst);
        } else {
            merge_both_run<Phase>(&r, p, dst);
        }
    });
}

void avx2_merge_even(const merge_rows* rows, uint8_t* __restrict dst, size_t pixels) {
    if (pixels < 32) return plain_rows.merge_even(rows, dst, pixels);
    merge<even_rows>(rows, dst, pixels);
}

void avx2_merge_odd(const merge_rows* rows, uint8_t* __restrict dst, size_t pixels) {
    if (pixels < 32) return plain_rows.merge_odd(rows, dst, pixels);
    merge<odd_rows>(rows, dst, pixels);
}
