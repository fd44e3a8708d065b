// SPDX-License-Identifier: Apache-2.0
// Interpolation between rows and between pixels in 256-bit vectors of x86-64.
#include "kernels/x86/avx2_vectors.h"

// Samples are moved to -128..127, so that the unsigned factor of the products can be a weight of up
// to 128; the sum is then 128 * 128 too small, which the rounding term restores.
static inline __m256i interpolate_pairs(bytes32 pairs, __m256i weights) {
    const __m256i centred = _mm256_xor_si256(pairs, _mm256_set1_epi8(-128));
    const __m256i sum = _mm256_maddubs_epi16(weights, centred);
    return _mm256_srli_epi16(_mm256_add_epi16(sum, _mm256_set1_epi16(128 * 128 + 64)), 7);
}

void avx2_mix_rows(const uint8_t* s0, const uint8_t* s1, int32_t weight, uint8_t* __restrict dst,
                   size_t bytes) {
    if (bytes < 32) return plain_rows.mix_rows(s0, s1, weight, dst, bytes);
    const __m256i weights = pair_weights(128 - weight, weight);
    for_each_vector(bytes, 32, [=](size_t i) {
        const bytes32 a = load(s0 + i), b = load(s1 + i);
        const __m256i low = interpolate_pairs(_mm256_unpacklo_epi8(a, b), weights);
        const __m256i high = interpolate_pairs(_mm256_unpackhi_epi8(a, b), weights);
        store(dst + i, _mm256_packus_epi16(low, high));
    });
}

static inline __m128i load8(const uint8_t* p) {
    return _mm_loadl_epi64((const __m128i*)p);
}

// Two neighbouring pixels for each of two outputs.
static inline __m128i load_two_taps(const uint8_t* src, const row_tap* taps) {
    return _mm_unpacklo_epi64(load8(src + 3 * (ptrdiff_t)taps[0].sample),
                              load8(src + 3 * (ptrdiff_t)taps[1].sample));
}

// Four pixels a step: two in each half, three lanes and an empty one for each. The empty lanes are
// closed up behind a store of 16 bytes, so the last pixels are left to the plain operation.
void avx2_resample_row_c3(const uint8_t* __restrict src, const row_tap* taps,
                          uint8_t* __restrict dst, size_t pixels) {
    const __m256i neighbours = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(0, 3, 1, 4, 2, 5, -1, -1, 8, 11, 9, 12, 10, 13, -1, -1));
    const __m256i spread_weights = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(0, 4, 0, 4, 0, 4, 0, 4, 8, 12, 8, 12, 8, 12, 8, 12));
    const __m128i close_up = _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
    size_t p = 0;
    for (; p + 6 <= pixels; p += 4) {
        const row_tap* t = taps + p;
        const bytes32 pairs = _mm256_shuffle_epi8(
            _mm256_inserti128_si256(_mm256_castsi128_si256(load_two_taps(src, t)),
                                    load_two_taps(src, t + 2), 1),
            neighbours);
        // The taps' weights lie in bytes 4 and 12 of each half; 128 minus them goes to 0 and 8.
        const __m256i both = _mm256_loadu_si256((const __m256i*)t);
        const __m256i second = _mm256_and_si256(both, _mm256_set1_epi64x((int64_t)0xff << 32));
        const __m256i first =
            _mm256_sub_epi32(_mm256_set1_epi64x(128), _mm256_srli_epi64(second, 32));
        const __m256i weights = _mm256_shuffle_epi8(
            _mm256_or_si256(second, _mm256_and_si256(first, _mm256_set1_epi64x(255))),
            spread_weights);
        const __m256i values = interpolate_pairs(pairs, weights);
        const __m128i packed =
            _mm_packus_epi16(_mm256_castsi256_si128(values), _mm256_extracti128_si256(values, 1));
        store16(dst + 3 * p, _mm_shuffle_epi8(packed, close_up));
    }
    plain_rows.resample_row_c3(src, taps + p, dst + 3 * p, pixels - p);
}
