// SPDX-License-Identifier: Apache-2.0
// The reduction of a row of colours in 512-bit vectors of x86-64.
#include "kernels/x86/avx512_vectors.h"

// Byte t of the output pairs: the sample of output t / 2, and for odd t the one a pixel further. 30
// outputs, ten pixels of every second source pixel.
static constexpr positions pair_positions(int first) {
    positions p = {};
    for (int t = 0; t < 60; t++) {
        const int output = t / 2;
        p.at[t] = (uint8_t)(first + 6 * (output / 3) + output % 3 + 3 * (t % 2));
    }
    return p;
}

static constexpr positions pairs = pair_positions(0), next_pairs = pair_positions(6);

static inline __m512i weigh(bytes64 gathered, int first, int second) {
    return _mm512_maddubs_epi16(gathered, _mm512_set1_epi16((short)(second * 256 + first)));
}

// Ten pixels a step. A step reads nine bytes behind its last centre, which leaves the last output
// to the edge.
void avx512_reduce_row_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                          int32_t dst_width) {
    const int32_t inner = dst_width - 2;
    if (inner < 10) return avx2_reduce_row_c3(src, src_width, dst, dst_width);
    const bytes64 first = load(pairs.at), next = load(next_pairs.at);
    for_each_vector((size_t)inner, 10, [=](size_t i) {
        const uint8_t* s = src + 6 * (i + 1);
        const bytes64 here = load(s);
        const __m512i outer =
            _mm512_add_epi16(weigh(_mm512_permutexvar_epi8(first, load(s - 6)), 1, 4),
                             weigh(_mm512_permutexvar_epi8(next, here), 1, 0));
        const __m512i sum =
            _mm512_add_epi16(outer, weigh(_mm512_permutexvar_epi8(first, here), 6, 4));
        const __m512i rounded = _mm512_srli_epi16(_mm512_add_epi16(sum, _mm512_set1_epi16(8)), 4);
        _mm256_mask_storeu_epi8(dst + 3 * (i + 1), 0x3fffffff, _mm512_cvtepi16_epi8(rounded));
    });
    avx2_reduce_ends_c3(src, src_width, dst, dst_width);
}
