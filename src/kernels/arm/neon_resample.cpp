// SPDX-License-Identifier: Apache-2.0
// Interpolation between rows and between pixels in 128-bit vectors of 64-bit Arm.
#include "kernels/arm/neon_vectors.h"

// ((128 - weight) a + weight b + 64) >> 7; the sum is at most 128 * 255. `first` is 128 - weight.
static inline bytes16 mix(bytes16 a, bytes16 b, bytes16 first, bytes16 second) {
    const uint16x8_t low =
        vmlal_u8(vmull_u8(vget_low_u8(a), vget_low_u8(first)), vget_low_u8(b), vget_low_u8(second));
    const uint16x8_t high = vmlal_high_u8(vmull_high_u8(a, first), b, second);
    return vrshrn_high_n_u16(vrshrn_n_u16(low, 7), high, 7);
}

void neon_mix_rows(const uint8_t* s0, const uint8_t* s1, int32_t weight, uint8_t* __restrict dst,
                   size_t bytes) {
    if (bytes < 16) return plain_rows.mix_rows(s0, s1, weight, dst, bytes);
    const bytes16 first = vdupq_n_u8((uint8_t)(128 - weight)), second = vdupq_n_u8((uint8_t)weight);
    write_bytes(dst, bytes,
                [=](size_t i) { return mix(vld1q_u8(s0 + i), vld1q_u8(s1 + i), first, second); });
}

// Positions in two vectors that hold two taps each: the first pixel of each tap's eight bytes, the
// second one, and the weight of each record, the lowest byte of its second half.
static const uint8_t tap_first[16] = {0,  1,  2,  8,  9,   10,  16,  17,
                                      18, 24, 25, 26, 255, 255, 255, 255};
static const uint8_t tap_second[16] = {3,  4,  5,  11, 12,  13,  19,  20,
                                       21, 27, 28, 29, 255, 255, 255, 255};
static const uint8_t tap_weight[16] = {4,  4,  4,  12, 12,  12,  20,  20,
                                       20, 28, 28, 28, 255, 255, 255, 255};

static inline bytes16 load_two_taps(const uint8_t* src, const row_tap* taps) {
    return vcombine_u8(vld1_u8(src + 3 * (ptrdiff_t)taps[0].sample),
                       vld1_u8(src + 3 * (ptrdiff_t)taps[1].sample));
}

// Four pixels a run, 12 bytes.
void neon_resample_row_c3(const uint8_t* __restrict src, const row_tap* taps,
                          uint8_t* __restrict dst, size_t pixels) {
    if (pixels < 4) return plain_rows.resample_row_c3(src, taps, dst, pixels);
    const bytes16 first = vld1q_u8(tap_first), second = vld1q_u8(tap_second);
    const bytes16 weight = vld1q_u8(tap_weight), full = vdupq_n_u8(128);
    const auto pixels_at = [=](size_t p) {
        const row_tap* t = taps + p;
        const uint8x16x2_t samples = {{load_two_taps(src, t), load_two_taps(src, t + 2)}};
        const uint8x16x2_t records = {
            {vld1q_u8((const uint8_t*)t), vld1q_u8((const uint8_t*)(t + 2))}};
        const bytes16 weights = vqtbl2q_u8(records, weight);
        return mix(vqtbl2q_u8(samples, first), vqtbl2q_u8(samples, second), vsubq_u8(full, weights),
                   weights);
    };
    for_each_pair(pixels, 4, pixels_at, [=](size_t p, bytes16 v) {
        vst1_u8(dst + 3 * p, vget_low_u8(v));
        const uint32_t last_four = vgetq_lane_u32(vreinterpretq_u32_u8(v), 2);
        memcpy(dst + 3 * p + 8, &last_four, 4);
    });
}
