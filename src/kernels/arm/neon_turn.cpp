// SPDX-License-Identifier: Apache-2.0
// Rows of a turned picture in 128-bit vectors of 64-bit Arm, which works out where pixels lie and
// takes them one by one.
#include "kernels/arm/neon_vectors.h"
#include "kernels/turned_row.h"

// trunc(start + step * distance) for four distances.
static inline int32x4_t coordinates(float start, float step, float32x4_t distances) {
    return vcvtq_s32_f32(vaddq_f32(vdupq_n_f32(start), vmulq_n_f32(distances, step)));
}

// The places in the frame of four pixels from x on.
static inline int32x4_t places(const turned_row* row, int32_t x) {
    static const int32_t counting[4] = {0, 1, 2, 3};
    const int32x4_t columns = vaddq_s32(vdupq_n_s32(x), vld1q_s32(counting));
    const float32x4_t distances = vsubq_f32(vcvtq_f32_s32(columns), vdupq_n_f32(row->centre));
    return vmlaq_n_s32(coordinates(row->column, row->column_step, distances),
                       coordinates(row->row, row->row_step, distances), row->frame_width);
}

static inline uint32_t pixel_at(const turned_row* row, int32_t place) {
    uint32_t pixel;
    memcpy(&pixel, row->frame + 4 * (ptrdiff_t)place, sizeof pixel);
    return pixel;
}

static inline bytes16 take_four(const turned_row* row, int32x4_t at) {
    uint32x4_t taken = vdupq_n_u32(pixel_at(row, vgetq_lane_s32(at, 0)));
    taken = vsetq_lane_u32(pixel_at(row, vgetq_lane_s32(at, 1)), taken, 1);
    taken = vsetq_lane_u32(pixel_at(row, vgetq_lane_s32(at, 2)), taken, 2);
    taken = vsetq_lane_u32(pixel_at(row, vgetq_lane_s32(at, 3)), taken, 3);
    return vreinterpretq_u8_u32(taken);
}

// Calls step(p, places of four pixels, of the next four) for runs of eight pixels, the last of
// which overlaps the one before it.
template <class Step>
static inline void for_eight_places(const turned_row* row, int32_t x, size_t pixels,
                                    ptrdiff_t pixel_bytes, Step step) {
    for_each_block(pixels, 8, [=](size_t p) {
        const int32x4_t low = places(row, x + (int32_t)p), high = places(row, x + (int32_t)p + 4);
        fetch_from(row->frame, pixel_bytes * (vgetq_lane_s32(low, 0) + row->ahead));
        fetch_from(row->frame, pixel_bytes * (vgetq_lane_s32(high, 0) + row->ahead));
        step(p, low, high);
    });
}

void neon_turn_rgb(const turned_row* row, int32_t x, uint8_t* __restrict dst, size_t pixels) {
    if (pixels < 8 || !is_small_frame(row)) return plain_turn_rgb(row, x, dst, pixels);
    static const uint8_t colours[24] = {1,  2,  3,  5,  6,  7,  9,  10, 11, 13, 14, 15,
                                        17, 18, 19, 21, 22, 23, 25, 26, 27, 29, 30, 31};
    const bytes16 first = vld1q_u8(colours);
    const uint8x8_t rest = vld1_u8(colours + 16);
    const turned_row r = *row;
    for_eight_places(&r, x, pixels, 4, [&](size_t p, int32x4_t low, int32x4_t high) {
        const uint8x16x2_t taken = {{take_four(&r, low), take_four(&r, high)}};
        vst1q_u8(dst + 3 * p, vqtbl2q_u8(taken, first));
        vst1_u8(dst + 3 * p + 16, vqtbl2_u8(taken, rest));
    });
}

void neon_turn_mask(const turned_row* row, int32_t x, uint8_t* __restrict dst, size_t pixels) {
    if (pixels < 8 || !is_small_frame(row)) return plain_turn_mask(row, x, dst, pixels);
    const turned_row r = *row;
    for_eight_places(&r, x, pixels, 1, [&](size_t p, int32x4_t low, int32x4_t high) {
        dst[p] = r.frame[vgetq_lane_s32(low, 0)];
        dst[p + 1] = r.frame[vgetq_lane_s32(low, 1)];
        dst[p + 2] = r.frame[vgetq_lane_s32(low, 2)];
        dst[p + 3] = r.frame[vgetq_lane_s32(low, 3)];
        dst[p + 4] = r.frame[vgetq_lane_s32(high, 0)];
        dst[p + 5] = r.frame[vgetq_lane_s32(high, 1)];
        dst[p + 6] = r.frame[vgetq_lane_s32(high, 2)];
        dst[p + 7] = r.frame[vgetq_lane_s32(high, 3)];
    });
}
