// SPDX-License-Identifier: Apache-2.0
// The expansion of a row in 256-bit vectors of x86-64.
#include "kernels/x86/avx2_vectors.h"

// Five even and five odd pixels in turn, 30 bytes: where bytes 0..15 and bytes 14..29 of them come
// from, among the even ones and among the odd ones; NO takes nothing.
enum { NO = 0x80 };
static const uint8_t turn_even[2][16] = {
    {0, 1, 2, NO, NO, NO, 3, 4, 5, NO, NO, NO, 6, 7, 8, NO},
    {8, NO, NO, NO, 9, 10, 11, NO, NO, NO, 12, 13, 14, NO, NO, NO},
};
static const uint8_t turn_odd[2][16] = {
    {NO, NO, NO, 0, 1, 2, NO, NO, NO, 3, 4, 5, NO, NO, NO, 6},
    {NO, 6, 7, 8, NO, NO, NO, 9, 10, 11, NO, NO, NO, 12, 13, 14},
};

// The outputs of five source pixels, 30 bytes: b holds them, a the pixels before and c those
// behind.
static inline void expand_five(__m128i a, __m128i b, __m128i c, uint8_t* dst) {
    const __m128i odd = _mm_avg_epu8(b, c);
    const __m128i even = _mm256_castsi256_si128(even_phase(
        _mm256_castsi128_si256(a), _mm256_castsi128_si256(b), _mm256_castsi128_si256(c)));
    for (size_t k = 0; k < 2; k++) {
        store16(dst + 14 * k, _mm_or_si128(_mm_shuffle_epi8(even, load16(turn_even[k])),
                                           _mm_shuffle_epi8(odd, load16(turn_odd[k]))));
    }
}

// The first five and the last five pixels, where neighbours repeat; src_width >= 6.
void avx2_expand_ends_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                         int32_t dst_width) {
    const __m128i repeat_first = _mm_setr_epi8(0, 1, 2, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12);
    const __m128i repeat_last =
        _mm_setr_epi8(3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 12, 13, 14, 15);
    const __m128i first = load16(src);
    expand_five(_mm_shuffle_epi8(first, repeat_first), first, load16(src + 3), dst);
    // Sixteen bytes that end with the row; the first belongs to no pixel of the five.
    const uint8_t* s = src + 3 * (ptrdiff_t)src_width - 16;
    const __m128i last = _mm_srli_si128(load16(s), 1);
    expand_five(load16(s - 2), last, _mm_shuffle_epi8(last, repeat_last),
                dst + 6 * ((ptrdiff_t)src_width - 5));
    expand_surplus_c3(src, src_width, dst, dst_width);
}

static inline bytes32 both_halves(const uint8_t* p) {
    return _mm256_broadcastsi128_si256(load16(p));
}

// Ten source pixels a step, five in each half. A step reads 3 bytes before and 4 behind them.
void avx2_expand_row_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                        int32_t dst_width) {
    const int32_t inner = src_width - 3;
    if (inner < 10) return plain_rows.expand_row_c3(src, src_width, dst, dst_width);
    const bytes32 even_first = both_halves(turn_even[0]), even_last = both_halves(turn_even[1]);
    const bytes32 odd_first = both_halves(turn_odd[0]), odd_last = both_halves(turn_odd[1]);
    for_each_vector((size_t)inner, 10, [=](size_t i) {
        const uint8_t* s = src + 3 * (i + 1);
        const bytes32 b = load_halves(s, s + 15), c = load_halves(s + 3, s + 18);
        const bytes32 even = even_phase(load_halves(s - 3, s + 12), b, c);
        const bytes32 odd = average_up(b, c);
        const bytes32 first = _mm256_or_si256(_mm256_shuffle_epi8(even, even_first),
                                              _mm256_shuffle_epi8(odd, odd_first));
        const bytes32 last = _mm256_or_si256(_mm256_shuffle_epi8(even, even_last),
                                             _mm256_shuffle_epi8(odd, odd_last));
        uint8_t* out = dst + 6 * (i + 1);
        store16(out, _mm256_castsi256_si128(first));
        store16(out + 14, _mm256_castsi256_si128(last));
        store16(out + 30, _mm256_extracti128_si256(first, 1));
        store16(out + 44, _mm256_extracti128_si256(last, 1));
    });
    avx2_expand_ends_c3(src, src_width, dst, dst_width);
}
