// SPDX-License-Identifier: Apache-2.0
// The reductions in 256-bit vectors of x86-64. As in all files of vectors, rows of a vector and
// more end with one vector that overlaps the one before it, so no element is handled alone; shorter
// rows take the plain operations.
#include "kernels/x86/avx2_vectors.h"

// (t0 + 4 t1) + (6 t2 + 4 t3) + t4, rounded, for pairs (t0, t1), (t2, t3) and (t4, anything).
static inline __m256i reduce_pairs(bytes32 p01, bytes32 p23, bytes32 p4) {
    const __m256i sum = _mm256_add_epi16(_mm256_add_epi16(weigh(p01, 1, 4), weigh(p23, 6, 4)),
                                         _mm256_add_epi16(weigh(p4, 1, 0), _mm256_set1_epi16(8)));
    return _mm256_srli_epi16(sum, 4);
}

void avx2_reduce_column(const uint8_t* const taps[5], uint8_t* __restrict dst, size_t bytes) {
    if (bytes < 32) return plain_rows.reduce_column(taps, dst, bytes);
    for_each_vector(bytes, 32, [=](size_t i) {
        const bytes32 t0 = load(taps[0] + i), t1 = load(taps[1] + i), t2 = load(taps[2] + i);
        const bytes32 t3 = load(taps[3] + i), t4 = load(taps[4] + i);
        const __m256i low = reduce_pairs(_mm256_unpacklo_epi8(t0, t1), _mm256_unpacklo_epi8(t2, t3),
                                         _mm256_unpacklo_epi8(t4, t4));
        const __m256i high =
            reduce_pairs(_mm256_unpackhi_epi8(t0, t1), _mm256_unpackhi_epi8(t2, t3),
                         _mm256_unpackhi_epi8(t4, t4));
        store(dst + i, _mm256_packus_epi16(low, high));
    });
}

// 32 outputs a step. Output i + 1 is centred on sample 2i + 2; the reads of a step end three
// samples behind its last centre, so the last output is left to the edge.
void avx2_reduce_row_c1(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                        int32_t dst_width) {
    const int32_t inner = dst_width - 2;
    if (inner < 32) return plain_rows.reduce_row_c1(src, src_width, dst, dst_width);
    for_each_vector((size_t)inner, 32, [=](size_t i) {
        const uint8_t* s = src + 2 * i;
        const __m256i low = reduce_pairs(load(s), load(s + 2), load(s + 4));
        const __m256i high = reduce_pairs(load(s + 32), load(s + 34), load(s + 36));
        store(dst + 1 + i, pack_in_order(low, high));
    });
    reduce_ends_c1(src, src_width, dst, dst_width, dst_width - 1);
}

// The outputs of two pixels in each half: lanes 0 to 5, the others hold nothing. `s` is the first
// centre; bytes s - 6 to s + 30 are read.
static inline __m256i reduce_pixels(const uint8_t* s) {
    // Byte by byte a sample and the one a pixel further.
    const __m256i pairs = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(0, 3, 1, 4, 2, 5, 6, 9, 7, 10, 8, 11, -1, -1, -1, -1));
    // The samples a pixel further than the start of the load, each with a zero.
    const __m256i singles = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(3, -1, 4, -1, 5, -1, 9, -1, 10, -1, 11, -1, -1, -1, -1, -1));
    return reduce_pairs(_mm256_shuffle_epi8(load_halves(s - 6, s + 6), pairs),
                        _mm256_shuffle_epi8(load_halves(s, s + 12), pairs),
                        _mm256_shuffle_epi8(load_halves(s + 3, s + 15), singles));
}

// The first two and the last two outputs of a row, where neighbours repeat, in a half each;
// dst_width >= 4. The last two come from 16 bytes from the first sample on that they reach, and
// from 16 that end with the row's last pair of samples, or with the sample behind it where there is
// one.
void avx2_reduce_ends_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                         int32_t dst_width) {
    const __m256i pairs01 = _mm256_setr_epi8(0, 0, 1, 1, 2, 2, 0, 3, 1, 4, 2, 5, -1, -1, -1, -1,  //
                                             0, 3, 1, 4, 2, 5, 6, 9, 7, 10, 8, 11, -1, -1, -1, -1);
    const __m256i pairs23 =
        _mm256_setr_epi8(0, 3, 1, 4, 2, 5, 6, 9, 7, 10, 8, 11, -1, -1, -1, -1,  //
                         4, 7, 5, 8, 6, 9, 10, 13, 11, 14, 12, 15, -1, -1, -1, -1);
    const __m256i singles4 =
        _mm256_setr_epi8(6, -1, 7, -1, 8, -1, 12, -1, 13, -1, 14, -1, -1, -1, -1, -1,  //
                         7, -1, 8, -1, 9, -1, 13, -1, 14, -1, 15, -1, -1, -1, -1, -1);
    const __m256i folded4 =
        _mm256_setr_epi8(6, -1, 7, -1, 8, -1, 12, -1, 13, -1, 14, -1, -1, -1, -1, -1,  //
                         10, -1, 11, -1, 12, -1, 13, -1, 14, -1, 15, -1, -1, -1, -1, -1);
    const uint8_t* end = src + 6 * (ptrdiff_t)dst_width;
    const bool folds = 2 * (int64_t)dst_width == src_width;
    const bytes32 p4 = folds ? _mm256_shuffle_epi8(load_halves(src, end - 16), folded4)
                             : _mm256_shuffle_epi8(load_halves(src, end - 13), singles4);
    const __m256i values =
        reduce_pairs(_mm256_shuffle_epi8(load_halves(src, end - 18), pairs01),
                     _mm256_shuffle_epi8(load_halves(src, end - 16), pairs23), p4);
    const __m256i outputs = _mm256_packus_epi16(values, values);
    store6(dst, _mm256_castsi256_si128(outputs));
    store6(dst + 3 * ((ptrdiff_t)dst_width - 2), _mm256_extracti128_si256(outputs, 1));
}

// Eight pixels a step. The reads of a step end 12 bytes behind its last centre, so the last two
// outputs are left to the edge.
void avx2_reduce_row_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                        int32_t dst_width) {
    const int32_t inner = dst_width - 3;
    if (inner < 8) return plain_rows.reduce_row_c3(src, src_width, dst, dst_width);
    const __m256i close_up = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(0, 1, 2, 3, 4, 5, 8, 9, 10, 11, 12, 13, -1, -1, -1, -1));
    for_each_vector((size_t)inner, 8, [=](size_t i) {
        const uint8_t* s = src + 6 * (i + 1);
        const bytes32 outputs = pack_in_order(reduce_pixels(s), reduce_pixels(s + 24));
        store_two_twelves(dst + 3 * (i + 1), _mm256_shuffle_epi8(outputs, close_up));
    });
    avx2_reduce_ends_c3(src, src_width, dst, dst_width);
}
