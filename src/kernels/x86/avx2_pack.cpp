// SPDX-License-Identifier: Apache-2.0
// The way between packed and 4-byte pixels in 256-bit vectors of x86-64.
#include "kernels/x86/avx2_vectors.h"

void avx2_pack_rgb(const uint8_t* __restrict argb, uint8_t* __restrict rgb, size_t pixels) {
    if (pixels < 8) return plain_rows.pack_rgb(argb, rgb, pixels);
    const __m256i colours = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(1, 2, 3, 5, 6, 7, 9, 10, 11, 13, 14, 15, -1, -1, -1, -1));
    for_each_vector(pixels, 8, [=](size_t p) {
        store_two_twelves(rgb + 3 * p, _mm256_shuffle_epi8(load(argb + 4 * p), colours));
    });
}

void avx2_unpack_rgb(const uint8_t* __restrict rgb, uint8_t* __restrict argb, size_t pixels) {
    if (pixels < 8) return plain_rows.unpack_rgb(rgb, argb, pixels);
    // The upper half is loaded four bytes early, so that the load ends with the last pixel.
    const __m256i spread =
        _mm256_setr_epi8(-1, 0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1, 4, 5, 6, -1, 7,
                         8, 9, -1, 10, 11, 12, -1, 13, 14, 15);
    const __m256i opaque = _mm256_set1_epi32(255);
    for_each_vector(pixels, 8, [=](size_t p) {
        const bytes32 packed = load_halves(rgb + 3 * p, rgb + 3 * p + 8);
        store(argb + 4 * p, _mm256_or_si256(_mm256_shuffle_epi8(packed, spread), opaque));
    });
}
