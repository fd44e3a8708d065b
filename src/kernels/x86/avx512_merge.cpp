// SPDX-License-Identifier: Apache-2.0
// The merge of a row in 512-bit vectors of x86-64.
#include "kernels/x86/avx512_vectors.h"
#include "kernels/x86/x86_merge.h"

static inline mask_kind kind_of(bytes64 mask) {
    const __mmask64 full = _mm512_cmpeq_epi8_mask(mask, _mm512_set1_epi8(-1));
    const __mmask64 clear = _mm512_testn_epi8_mask(mask, mask);
    if ((clear | full) != UINT64_MAX) return MASK_SOFT;
    if (clear != 0 && full != 0) return MASK_HARD;
    return full != 0 ? MASK_FULL : MASK_CLEAR;
}

static constexpr positions triples(int third) {
    positions p = {};
    for (int t = 0; t < 64; t++)
        p.at[t] = (uint8_t)((64 * third + t) / 3);
    return p;
}

static constexpr positions tripled[3] = {triples(0), triples(1), triples(2)};

static inline bytes64 triple_bytes(const uint8_t* mask, size_t third) {
    return _mm512_permutexvar_epi8(load(tripled[third].at), load(mask));
}

void avx512_merge_even(const merge_rows* rows, uint8_t* __restrict dst, size_t pixels) {
    if (pixels < MERGED_PIXELS) return avx2_merge_even(rows, dst, pixels);
    merge<even_rows>(rows, dst, pixels);
}

void avx512_merge_odd(const merge_rows* rows, uint8_t* __restrict dst, size_t pixels) {
    if (pixels < MERGED_PIXELS) return avx2_merge_odd(rows, dst, pixels);
    merge<odd_rows>(rows, dst, pixels);
}
