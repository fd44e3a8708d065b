// SPDX-License-Identifier: Apache-2.0
// Rows of a turned picture in 256-bit vectors of x86-64.
#include "kernels/turned_row.h"
#include "kernels/x86/avx2_vectors.h"

// trunc(start + step * distance) for eight distances.
static inline __m256i coordinates(float start, float step, __m256 distances) {
    const __m256 moved = _mm256_mul_ps(_mm256_set1_ps(step), distances);
    return _mm256_cvttps_epi32(_mm256_add_ps(_mm256_set1_ps(start), moved));
}

// The places in the frame of eight pixels from x on.
static inline __m256i places(const turned_row* row, int32_t x) {
    const __m256i columns =
        _mm256_add_epi32(_mm256_set1_epi32(x), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
    const __m256 distances =
        _mm256_sub_ps(_mm256_cvtepi32_ps(columns), _mm256_set1_ps(row->centre));
    const __m256i rows = coordinates(row->row, row->row_step, distances);
    return _mm256_add_epi32(_mm256_mullo_epi32(rows, _mm256_set1_epi32(row->frame_width)),
                            coordinates(row->column, row->column_step, distances));
}

// Fetches what lies ahead of one of the first four pixels and of one of the last four.
static inline void fetch_two(const turned_row* row, __m256i at, ptrdiff_t pixel_bytes) {
    const __m256i lane = _mm256_set1_epi32(row->phase);
    const __m256i chosen = _mm256_castps_si256(_mm256_permutevar_ps(_mm256_castsi256_ps(at), lane));
    const int32_t first = _mm256_cvtsi256_si32(chosen);
    const int32_t second = _mm_cvtsi128_si32(_mm256_extracti128_si256(chosen, 1));
    fetch_from(row->frame, pixel_bytes * (first + row->ahead));
    fetch_from(row->frame, pixel_bytes * (second + row->ahead));
}

void avx2_turn_rgb(const turned_row* row, int32_t x, uint8_t* __restrict dst, size_t pixels) {
    if (pixels < 8 || !is_small_frame(row)) return plain_turn_rgb(row, x, dst, pixels);
    const __m256i colours = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(1, 2, 3, 5, 6, 7, 9, 10, 11, 13, 14, 15, -1, -1, -1, -1));
    for_each_block(pixels, 8, [=](size_t p) {
        const __m256i at = places(row, x + (int32_t)p);
        fetch_two(row, at, 4);
        const __m256i taken = _mm256_i32gather_epi32((const int*)row->frame, at, 4);
        store_two_twelves(dst + 3 * p, _mm256_shuffle_epi8(taken, colours));
    });
}

// A sample comes with three before it, or behind where there are fewer.
void avx2_turn_mask(const turned_row* row, int32_t x, uint8_t* __restrict dst, size_t pixels) {
    if (pixels < 8 || !is_small_frame(row)) return plain_turn_mask(row, x, dst, pixels);
    const __m256i low_bytes = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(0, 4, 8, 12, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1));
    const __m256i three = _mm256_set1_epi32(3);
    for_each_block(pixels, 8, [=](size_t p) {
        const __m256i at = places(row, x + (int32_t)p);
        fetch_two(row, at, 1);
        const __m256i first = _mm256_sub_epi32(_mm256_max_epi32(at, three), three);
        const __m256i taken = _mm256_i32gather_epi32((const int*)row->frame, first, 1);
        const __m256i bits = _mm256_slli_epi32(_mm256_sub_epi32(at, first), 3);
        const __m256i samples = _mm256_shuffle_epi8(_mm256_srlv_epi32(taken, bits), low_bytes);
        const __m128i both = _mm_unpacklo_epi32(_mm256_castsi256_si128(samples),
                                                _mm256_extracti128_si256(samples, 1));
        _mm_storel_epi64((__m128i*)(dst + p), both);
    });
}
