// SPDX-License-Identifier: Apache-2.0
// The expansion of a row in 512-bit vectors of x86-64.
#include "kernels/x86/avx512_vectors.h"

// Byte t of an expanded row: from the even phases (0..63) or the odd ones (64..127), a pixel of
// each in turn.
static constexpr positions interleaved_positions(int begin) {
    positions p = {};
    for (int t = 0; t < 64; t++) {
        const int byte = begin + t, pixel = byte / 6, k = byte % 6;
        if (pixel < 20) p.at[t] = (uint8_t)(3 * pixel + (k < 3 ? k : 64 + k - 3));
    }
    return p;
}

static constexpr positions expanded_low = interleaved_positions(0);
static constexpr positions expanded_high = interleaved_positions(64);

// Twenty source pixels a step. A step reads nine bytes behind its last pixel, which leaves the last
// three to the edge.
void avx512_expand_row_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                          int32_t dst_width) {
    const int32_t inner = src_width - 4;
    if (inner < 20) return avx2_expand_row_c3(src, src_width, dst, dst_width);
    const size_t ahead = 3 * (size_t)src_width;  // the next row of the level
    const bytes64 low = load(expanded_low.at), high = load(expanded_high.at);
    for_each_vector((size_t)inner, 20, [=](size_t i) {
        const uint8_t* s = src + 3 * (i + 1);
        __builtin_prefetch(s + ahead);
        const bytes64 b = load(s), c = load(s + 3);
        const bytes64 even = even_phase(load(s - 3), b, c);
        const bytes64 odd = average_up(b, c);
        uint8_t* out = dst + 6 * (i + 1);
        store(out, _mm512_permutex2var_epi8(even, low, odd));
        _mm512_mask_storeu_epi8(out + 64, 0x00ffffffffffffff,
                                _mm512_permutex2var_epi8(even, high, odd));
    });
    avx2_expand_ends_c3(src, src_width, dst, dst_width);
}
