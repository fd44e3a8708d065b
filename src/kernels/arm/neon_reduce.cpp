// The row operations in 128-bit vectors of 64-bit Arm, whose baseline has them.
//
// Filters stay in 8-bit lanes where halving adds (vhadd rounds down, vrhadd rounds up) give the
// exact result; weighted sums widen once and narrow in the rounding shift. Rows of a vector and
// more end with one vector that overlaps the one before it, so no element is handled alone; shorter
// rows take the plain operations.
#include "kernels/neon_walk.h"

#if defined(__aarch64__)

#include <string.h>

// (a + 6 b + c + 4) >> 3: halving three times, rounding up only in the last step.
static inline bytes16 even_phase(bytes16 a, bytes16 b, bytes16 c) {
    return vrhaddq_u8(b, vhaddq_u8(b, vhaddq_u8(a, c)));
}

// (t0 + 4 t1 + 6 t2 + 4 t3 + t4 + 8) >> 4. Dropping the lowest bit twice does not change it:
//   v = (((t0 + t4) >> 1) + t2) >> 1,  result = (v + t2 + t1 + t3 + 2) >> 2.
// With w = (v + t2) >> 1 and z = (t1 + t3) >> 1 the result is (w + z + 1) >> 1, or
// (w + z + 2) >> 1 where both sums were odd. The first is a rounded-up mean of w and z, the second
// a rounded-down mean of their rounded-up counterparts, and the larger one is right in all cases.
static inline bytes16 reduce_taps(bytes16 t0, bytes16 t1, bytes16 t2, bytes16 t3, bytes16 t4) {
    const bytes16 v = vhaddq_u8(vhaddq_u8(t0, t4), t2);
    const bytes16 rounded_down = vrhaddq_u8(vhaddq_u8(v, t2), vhaddq_u8(t1, t3));
    const bytes16 rounded_up = vhaddq_u8(vrhaddq_u8(v, t2), vrhaddq_u8(t1, t3));
    return vmaxq_u8(rounded_down, rounded_up);
}

static void reduce_column(const uint8_t* const taps[5], uint8_t* __restrict dst, size_t bytes) {
    if (bytes < 16) return plain_rows.reduce_column(taps, dst, bytes);
    const uint8_t *t0 = taps[0], *t1 = taps[1], *t2 = taps[2], *t3 = taps[3], *t4 = taps[4];
    write_bytes(dst, bytes, [=](size_t i) {
        return reduce_taps(vld1q_u8(t0 + i), vld1q_u8(t1 + i), vld1q_u8(t2 + i), vld1q_u8(t3 + i),
                           vld1q_u8(t4 + i));
    });
}

static void expand_even(const uint8_t* a, const uint8_t* b, const uint8_t* c,
                        uint8_t* __restrict dst, size_t bytes) {
    if (bytes < 16) return plain_rows.expand_even(a, b, c, dst, bytes);
    write_bytes(dst, bytes, [=](size_t i) {
        return even_phase(vld1q_u8(a + i), vld1q_u8(b + i), vld1q_u8(c + i));
    });
}

static void expand_odd(const uint8_t* b, const uint8_t* c, uint8_t* __restrict dst, size_t bytes) {
    if (bytes < 16) return plain_rows.expand_odd(b, c, dst, bytes);
    write_bytes(dst, bytes, [=](size_t i) { return vrhaddq_u8(vld1q_u8(b + i), vld1q_u8(c + i)); });
}

// 14 outputs of one channel from its 32 samples, the first one two before the first centre. Lanes
// 14 and 15 hold nothing.
static inline bytes16 reduce_run(bytes16 first, bytes16 second) {
    const bytes16 even = vuzp1q_u8(first, second), odd = vuzp2q_u8(first, second);
    return reduce_taps(even, odd, vextq_u8(even, even, 1), vextq_u8(odd, odd, 1),
                       vextq_u8(even, even, 2));
}

// 14 outputs a step. A step reads three samples behind its last centre and writes two outputs that
// hold nothing, which the next step or the edge overwrites; so the last two are left to the edge.
static void reduce_row_c1(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                          int32_t dst_width) {
    const int32_t inner = dst_width - 3;
    if (inner < 14) return plain_rows.reduce_row_c1(src, src_width, dst, dst_width);
    for_each_pair(
        (size_t)inner, 14,
        [=](size_t i) { return reduce_run(vld1q_u8(src + 2 * i), vld1q_u8(src + 2 * i + 16)); },
        [=](size_t i, bytes16 v) { vst1q_u8(dst + 1 + i, v); });
    reduce_ends_c1(src, src_width, dst, dst_width, dst_width - 2);
}

static void reduce_row_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                          int32_t dst_width) {
    const int32_t inner = dst_width - 3;
    if (inner < 14) return plain_rows.reduce_row_c3(src, src_width, dst, dst_width);
    for_each_vector((size_t)inner, 14, [=](size_t i) {
        const uint8x16x3_t first = vld3q_u8(src + 6 * i), second = vld3q_u8(src + 6 * i + 48);
        const uint8x16x3_t out = {{reduce_run(first.val[0], second.val[0]),
                                   reduce_run(first.val[1], second.val[1]),
                                   reduce_run(first.val[2], second.val[2])}};
        vst3q_u8(dst + 3 * (i + 1), out);
    });
    reduce_ends_c3(src, src_width, dst, dst_width, dst_width - 2);
}

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
static void expand_row_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
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

static void subtract(const uint8_t* a, const uint8_t* b, int16_t* __restrict dst, size_t count) {
    if (count < 16) return plain_rows.subtract(a, b, dst, count);
    write_values(dst, count, [=](size_t i) {
        const bytes16 va = vld1q_u8(a + i), vb = vld1q_u8(b + i);
        const uint16x8x2_t out = {
            {vsubl_u8(vget_low_u8(va), vget_low_u8(vb)), vsubl_high_u8(va, vb)}};
        return out;
    });
}

static void widen(const uint8_t* __restrict src, int16_t* __restrict dst, size_t count) {
    if (count < 16) return plain_rows.widen(src, dst, count);
    write_values(dst, count, [=](size_t i) {
        const bytes16 v = vld1q_u8(src + i);
        const uint16x8x2_t out = {{vmovl_u8(vget_low_u8(v)), vmovl_high_u8(v)}};
        return out;
    });
}

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

// m a + (255 - m) b has up to 17 bits and a sign: two products in 32-bit lanes, which the rounding
// narrowing shift closes. `first` is m, `second` 255 - m.
static inline int16x8_t blend_values(uint16x8_t first, uint16x8_t second, int16x8_t a,
                                     int16x8_t b) {
    const int16x8_t m = vreinterpretq_s16_u16(first), n = vreinterpretq_s16_u16(second);
    const int32x4_t low = vmull_s16(vget_low_s16(m), vget_low_s16(a));
    const int32x4_t high = vmull_high_s16(m, a);
    const int16x4_t low_values = vrshrn_n_s32(vmlal_s16(low, vget_low_s16(n), vget_low_s16(b)), 8);
    return vrshrn_high_n_s32(low_values, vmlal_high_s16(high, n, b), 8);
}

static inline int16x8x2_t blend_16(bytes16 m, const int16_t* a, const int16_t* b) {
    const bytes16 n = vmvnq_u8(m);
    const int16x8x2_t out = {
        {blend_values(vmovl_u8(vget_low_u8(m)), vmovl_u8(vget_low_u8(n)), vld1q_s16(a),
                      vld1q_s16(b)),
         blend_values(vmovl_high_u8(m), vmovl_high_u8(n), vld1q_s16(a + 8), vld1q_s16(b + 8))}};
    return out;
}

// 16 pixels of three channels.
typedef struct blended_pixels {
    int16x8x2_t values[3];
} blended_pixels;

static inline blended_pixels blend_pixels(const uint8_t* mask, const int16_t* a, const int16_t* b) {
    const uint8x16x3_t m = weights_of(vld1q_u8(mask));
    const blended_pixels out = {{blend_16(m.val[0], a, b), blend_16(m.val[1], a + 16, b + 16),
                                 blend_16(m.val[2], a + 32, b + 32)}};
    return out;
}

static inline void store_16(int16_t* dst, int16x8x2_t v) {
    vst1q_s16(dst, v.val[0]);
    vst1q_s16(dst + 8, v.val[1]);
}

static inline void store_pixels(int16_t* dst, const blended_pixels* pixels) {
    store_16(dst, pixels->values[0]);
    store_16(dst + 16, pixels->values[1]);
    store_16(dst + 32, pixels->values[2]);
}

// The output may be an input: the last pixels are computed before any is stored.
static void blend(const uint8_t* mask, const int16_t* a, const int16_t* b, int16_t* dst,
                  size_t pixels) {
    if (pixels < 16) return plain_rows.blend(mask, a, b, dst, pixels);
    const size_t last = pixels - 16;
    const blended_pixels tail = blend_pixels(mask + last, a + 3 * last, b + 3 * last);
    for (size_t p = 0; p + 16 <= pixels; p += 16) {
        const blended_pixels run = blend_pixels(mask + p, a + 3 * p, b + 3 * p);
        store_pixels(dst + 3 * p, &run);
    }
    store_pixels(dst + 3 * last, &tail);
}

// 16-bit sums as bytes, those of 0x8000 and above being negative.
static inline bytes16 saturate(uint16x8_t low, uint16x8_t high) {
    return vqmovun_high_s16(vqmovun_s16(vreinterpretq_s16_u16(low)), vreinterpretq_s16_u16(high));
}

static void collapse(const int16_t* lap, const uint8_t* base, uint8_t* __restrict dst,
                     size_t count) {
    if (count < 16) return plain_rows.collapse(lap, base, dst, count);
    write_bytes(dst, count, [=](size_t i) {
        const bytes16 b = vld1q_u8(base + i);
        const uint16x8_t low = vreinterpretq_u16_s16(vld1q_s16(lap + i));
        const uint16x8_t high = vreinterpretq_u16_s16(vld1q_s16(lap + i + 8));
        return saturate(vaddw_u8(low, vget_low_u8(b)), vaddw_high_u8(high, b));
    });
}

// 16 values under a weight of 255, (255 v + 128) >> 8, which takes one from differences above 128
// and gives one to those below -127. One of the two parts is 0, so each saturates by itself.
static inline bytes16 merge_one(bytes16 row, bytes16 expanded, bytes16 result) {
    const bytes16 above = vqsubq_u8(row, expanded), below = vqsubq_u8(expanded, row);
    const int8x16_t signed_below = vreinterpretq_s8_u8(below);
    const bytes16 gain = vaddq_u8(above, vcgtq_u8(above, vdupq_n_u8(128)));
    // The bit of 128 is the sign: shifted down it is -1.
    const bytes16 loss = vreinterpretq_u8_s8(vsraq_n_s8(signed_below, signed_below, 7));
    return vqsubq_u8(vqaddq_u8(result, gain), loss);
}

// result + ((p - q + 128) >> 8) for sums p and q of two products whose weights add up to 255: both
// are at most 255 * 255. A halving subtraction gives (p - q) >> 1 as a signed value, and
// (((p - q) >> 1) + 64) >> 7 is the same.
static inline uint16x8_t add_weighted(uint16x8_t result, uint16x8_t p, uint16x8_t q) {
    const int16x8_t half = vreinterpretq_s16_u16(vhsubq_u16(p, q));
    return vreinterpretq_u16_s16(vrsraq_n_s16(vreinterpretq_s16_u16(result), half, 7));
}

// The phases of a merge: rows of a coarser level expanded down the columns.
struct even_rows {
    static inline bytes16 at(const coarse_rows* rows, size_t i) {
        return even_phase(vld1q_u8(rows->above + i), vld1q_u8(rows->centre + i),
                          vld1q_u8(rows->below + i));
    }
};
struct odd_rows {
    static inline bytes16 at(const coarse_rows* rows, size_t i) {
        return vrhaddq_u8(vld1q_u8(rows->centre + i), vld1q_u8(rows->below + i));
    }
};

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

static void merge_even(const merge_rows* rows, uint8_t* __restrict dst, size_t pixels) {
    if (pixels < 16) return plain_rows.merge_even(rows, dst, pixels);
    merge<even_rows>(rows, dst, pixels);
}

static void merge_odd(const merge_rows* rows, uint8_t* __restrict dst, size_t pixels) {
    if (pixels < 16) return plain_rows.merge_odd(rows, dst, pixels);
    merge<odd_rows>(rows, dst, pixels);
}

static void narrow(const int16_t* __restrict src, uint8_t* __restrict dst, size_t count) {
    if (count < 16) return plain_rows.narrow(src, dst, count);
    // The low byte of a value is the even one.
    write_bytes(dst, count, [=](size_t i) {
        return vuzp1q_u8(vreinterpretq_u8_s16(vld1q_s16(src + i)),
                         vreinterpretq_u8_s16(vld1q_s16(src + i + 8)));
    });
}

static const row_ops table = {
    "neon",
    250000,
    reduce_row_c3,
    reduce_row_c1,
    expand_row_c3,
    reduce_column,
    expand_even,
    expand_odd,
    subtract,
    widen,
    blend,
    collapse,
    merge_even,
    merge_odd,
    narrow,
    neon_mix_rows,
    neon_resample_row_c3,
    neon_pack_rgb,
    neon_unpack_rgb,
};

const row_ops* neon_rows(void) {
    return &table;
}

#else

const row_ops* neon_rows(void) {
    return NULL;
}

#endif
