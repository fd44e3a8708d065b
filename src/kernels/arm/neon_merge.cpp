// SPDX-License-Identifier: Apache-2.0
// The merge of a row in 128-bit vectors of 64-bit Arm. Weighted sums widen once and narrow in the
// rounding shift.
#include "kernels/arm/neon_vectors.h"

// Which of 16 mask bytes weighs each of 48 values.
static const uint8_t pixel_of_value[48] = {
    0, 0, 0, 1, 1, 1, 2,  2,  2,  3,  3,  3,  4,  4,  4,  5,  5,  5,  6,  6,  6,  7,  7,  7,
    8, 8, 8, 9, 9, 9, 10, 10, 10, 11, 11, 11, 12, 12, 12, 13, 13, 13, 14, 14, 14, 15, 15, 15,
};

static inline uint8x16x3_t weights_of(bytes16 mask) {
    const uint8x16x3_t out = {{vqtbl1q_u8(mask, vld1q_u8(pixel_of_value)),
                               vqtbl1q_u8(mask, vld1q_u8(pixel_of_value + 16)),
                               vqtbl1q_u8(mask, vld1q_u8(pixel_of_value + 32))}};
    return out;
}

// 16-bit sums as bytes, those of 0x8000 and above being negative.
static inline bytes16 saturate(uint16x8_t low, uint16x8_t high) {
    return vqmovun_high_s16(vqmovun_s16(vreinterpretq_s16_u16(low)), vreinterpretq_s16_u16(high));
}

// result + ((p - q + 128) >> 8) for sums p and q of two products whose weights add up to 255: both
// are at most 255 * 255. A halving subtraction gives (p - q) >> 1 as a signed value, and
// (((p - q) >> 1) + 64) >> 7 is the same.
static inline uint16x8_t add_weighted(uint16x8_t result, uint16x8_t p, uint16x8_t q) {
    const int16x8_t half = vreinterpretq_s16_u16(vhsubq_u16(p, q));
    return vreinterpretq_u16_s16(vrsraq_n_s16(vreinterpretq_s16_u16(result), half, 7));
}

// 16 values from byte i on under the weights m.
template <class Phase>
static inline bytes16 merge_both(bytes16 m, const merge_rows* rows, size_t i) {
    const bytes16 n = vmvnq_u8(m), result = Phase::at(&rows->coarse_result, i);
    const bytes16 src = vld1q_u8(rows->src + i), under = vld1q_u8(rows->under + i);
    const bytes16 coarse_src = Phase::at(&rows->coarse_src, i);
    const bytes16 coarse_under = Phase::at(&rows->coarse_under, i);
    const uint8x8_t m_low = vget_low_u8(m), n_low = vget_low_u8(n);
    const uint16x8_t p_low = vmlal_u8(vmull_u8(m_low, vget_low_u8(src)), n_low, vget_low_u8(under));
    const uint16x8_t q_low =
        vmlal_u8(vmull_u8(m_low, vget_low_u8(coarse_src)), n_low, vget_low_u8(coarse_under));
    const uint16x8_t p_high = vmlal_high_u8(vmull_high_u8(m, src), n, under);
    const uint16x8_t q_high = vmlal_high_u8(vmull_high_u8(m, coarse_src), n, coarse_under);
    return saturate(add_weighted(vmovl_u8(vget_low_u8(result)), p_low, q_low),
                    add_weighted(vmovl_high_u8(result), p_high, q_high));
}

template <class Phase>
static inline uint8x16x3_t merge_one_run(const uint8_t* row, const coarse_rows* coarse,
                                         const coarse_rows* result, size_t i) {
    const uint8x16x3_t out = {
        {merge_one(vld1q_u8(row + i), Phase::at(coarse, i), Phase::at(result, i)),
         merge_one(vld1q_u8(row + i + 16), Phase::at(coarse, i + 16), Phase::at(result, i + 16)),
         merge_one(vld1q_u8(row + i + 32), Phase::at(coarse, i + 32), Phase::at(result, i + 32))}};
    return out;
}

// 16 pixels of three channels. Only one picture counts where their mask is all 0 or all 255. That
// is asked of general registers, which saves the way there from the vectors.
template <class Phase>
static inline uint8x16x3_t merge_pixels(const merge_rows* rows, size_t p) {
    uint64_t mask[2];
    memcpy(mask, rows->mask + p, 16);
    const size_t i = 3 * p;
    if ((mask[0] | mask[1]) == 0)
        return merge_one_run<Phase>(rows->under, &rows->coarse_under, &rows->coarse_result, i);
    if ((mask[0] & mask[1]) == UINT64_MAX)
        return merge_one_run<Phase>(rows->src, &rows->coarse_src, &rows->coarse_result, i);
    const uint8x16x3_t m = weights_of(vld1q_u8(rows->mask + p));
    const uint8x16x3_t out = {{merge_both<Phase>(m.val[0], rows, i),
                               merge_both<Phase>(m.val[1], rows, i + 16),
                               merge_both<Phase>(m.val[2], rows, i + 32)}};
    return out;
}

template <class Phase>
static inline void merge(const merge_rows* rows, uint8_t* __restrict dst, size_t pixels) {
    const merge_rows r = *rows;
    for_each_block(pixels, 16, [&r, dst](size_t p) {
        const uint8x16x3_t run = merge_pixels<Phase>(&r, p);
        vst1q_u8(dst + 3 * p, run.val[0]);
        vst1q_u8(dst + 3 * p + 16, run.val[1]);
        vst1q_u8(dst + 3 * p + 32, run.val[2]);
    });
}

void neon_merge_even(const merge_rows* rows, uint8_t* __restrict dst, size_t pixels) {
    if (pixels < 16) return plain_rows.merge_even(rows, dst, pixels);
    merge<even_rows>(rows, dst, pixels);
}

void neon_merge_odd(const merge_rows* rows, uint8_t* __restrict dst, size_t pixels) {
    if (pixels < 16) return plain_rows.merge_odd(rows, dst, pixels);
    merge<odd_rows>(rows, dst, pixels);
}
