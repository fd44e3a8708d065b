// SPDX-License-Identifier: Apache-2.0
// The expansion of a row in 128-bit vectors of 64-bit Arm.
#include "kernels/arm/neon_vectors.h"

// Bytes 0..15 and bytes 14..29 of five even and five odd pixels in turn; the odd pixels' bytes are
// numbered from 16.
static const uint8_t pixels_in_turn[2][16] = {
    {0, 1, 2, 16, 17, 18, 3, 4, 5, 19, 20, 21, 6, 7, 8, 22},
    {8, 22, 23, 24, 9, 10, 11, 25, 26, 27, 12, 13, 14, 28, 29, 30},
};

// The outputs of five source pixels, 30 bytes: b holds them, a the pixels before and c those
// behind. Their channels need no separation, as neighbours are three bytes apart.
static inline uint8x16x2_t expand_five(bytes16 a, bytes16 b, bytes16 c) {
    const uint8x16x2_t phases = {{even_phase(a, b, c), vrhaddq_u8(b, c)}};
    const uint8x16x2_t out = {{vqtbl2q_u8(phases, vld1q_u8(pixels_in_turn[0])),
                               vqtbl2q_u8(phases, vld1q_u8(pixels_in_turn[1]))}};
    return out;
}

static inline void store_five(uint8_t* dst, uint8x16x2_t v) {
    vst1q_u8(dst, v.val[0]);
    vst1q_u8(dst + 14, v.val[1]);
}

// The first five and the last five pixels, where neighbours repeat.
static void expand_ends_c3(const uint8_t* __restrict src, int32_t src_width,
                           uint8_t* __restrict dst, int32_t dst_width) {
    static const uint8_t repeat_first[16] = {0, 1, 2, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    static const uint8_t repeat_last[16] = {3,  4,  5,  6,  7,  8,  9,  10,
                                            11, 12, 13, 14, 12, 13, 14, 15};
    const bytes16 first = vld1q_u8(src);
    store_five(dst,
               expand_five(vqtbl1q_u8(first, vld1q_u8(repeat_first)), first, vld1q_u8(src + 3)));
    // Sixteen bytes that end with the row; the first belongs to no pixel of the five.
    const uint8_t* s = src + 3 * (ptrdiff_t)src_width - 16;
    const bytes16 last = vextq_u8(vld1q_u8(s), vdupq_n_u8(0), 1);
    store_five(dst + 6 * ((ptrdiff_t)src_width - 5),
               expand_five(vld1q_u8(s - 2), last, vqtbl1q_u8(last, vld1q_u8(repeat_last))));
    expand_surplus_c3(src, src_width, dst, dst_width);
}

// Five source pixels a run, which reads 3 bytes before and 4 behind them.
void neon_expand_row_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                        int32_t dst_width) {
    const int32_t inner = src_width - 3;
    if (inner < 5) return plain_rows.expand_row_c3(src, src_width, dst, dst_width);
    for_each_pair((size_t)inner, 5,
                  [=](size_t i) {
                      const uint8_t* s = src + 3 * (i + 1);
                      return expand_five(vld1q_u8(s - 3), vld1q_u8(s), vld1q_u8(s + 3));
                  },
                  [=](size_t i, uint8x16x2_t v) { store_five(dst + 6 * (i + 1), v); });
    expand_ends_c3(src, src_width, dst, dst_width);
}
