// SPDX-License-Identifier: Apache-2.0
#include <string.h>

#include "costs.h"
#include "kernels/row_math.h"
#include "kernels/vector_rows.h"

// The output around sample s of pixels `step` bytes apart; the samples on its left are `left` and
// `near_left` bytes from it, the second on its right `right` bytes.
static inline void reduce_pixel(const uint8_t* __restrict s, ptrdiff_t left, ptrdiff_t near_left,
                                ptrdiff_t right, ptrdiff_t step, int channels,
                                uint8_t* __restrict dst) {
    for (int k = 0; k < channels; k++, s++)
        dst[k] = reduce5(s[-left], s[-near_left], s[0], s[step], s[right]);
}

// The first output of a row and those from `begin` on, for pixels `step` bytes apart.
static inline void reduce_from(const uint8_t* __restrict src, int32_t src_width,
                               uint8_t* __restrict dst, int32_t dst_width, int32_t begin,
                               ptrdiff_t step, int channels) {
    const ptrdiff_t last = dst_width - 1;
    reduce_pixel(src, 0, 0, 2 * step, step, channels, dst);
    for (ptrdiff_t i = begin; i < last; i++) {
        reduce_pixel(src + 2 * i * step, 2 * step, step, 2 * step, step, channels, dst + i * step);
    }
    // At the far end the last sample is repeated where the source has no more to give.
    const ptrdiff_t right = 2 * (int64_t)dst_width == src_width ? step : 2 * step;
    reduce_pixel(src + 2 * last * step, 2 * step, step, right, step, channels, dst + last * step);
}

void reduce_ends_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                    int32_t dst_width, int32_t begin) {
    reduce_from(src, src_width, dst, dst_width, begin, 3, 3);
}

void reduce_ends_c1(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                    int32_t dst_width, int32_t begin) {
    reduce_from(src, src_width, dst, dst_width, begin, 1, 1);
}

static void reduce_row_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                          int32_t dst_width) {
    reduce_ends_c3(src, src_width, dst, dst_width, 1);
}

static void reduce_row_c1(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                          int32_t dst_width) {
    reduce_ends_c1(src, src_width, dst, dst_width, 1);
}

void reduce_row_apart(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                      int32_t dst_width, int32_t step) {
    reduce_from(src, src_width, dst, dst_width, 1, step, 3);
}

static inline void expand_pixels(const uint8_t* __restrict src, int32_t src_width,
                                 uint8_t* __restrict dst, int32_t dst_width, ptrdiff_t step) {
    const uint8_t* s = src;
    uint8_t* out = dst;
    for (ptrdiff_t i = 0; i < src_width; i++, s += step, out += 2 * step) {
        const ptrdiff_t left = i > 0 ? step : 0, right = i < src_width - 1 ? step : 0;
        for (ptrdiff_t k = 0; k < 3; k++) {
            out[k] = expand3(s[k - left], s[k], s[k + right]);
            out[step + k] = expand2(s[k], s[k + right]);
        }
    }
    if (dst_width > 2 * (int64_t)src_width) memcpy(out, s - step, 3);
}

static void expand_row_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                          int32_t dst_width) {
    expand_pixels(src, src_width, dst, dst_width, 3);
}

void expand_row_apart(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                      int32_t dst_width, int32_t step) {
    expand_pixels(src, src_width, dst, dst_width, step);
}

static void reduce_column(const uint8_t* const taps[5], uint8_t* __restrict dst, size_t bytes) {
    for (size_t i = 0; i < bytes; i++) {
        dst[i] = reduce5(taps[0][i], taps[1][i], taps[2][i], taps[3][i], taps[4][i]);
    }
}

static inline int32_t expanded_at(const coarse_rows* rows, size_t i, bool odd) {
    return odd ? expand2(rows->centre[i], rows->below[i])
               : expand3(rows->above[i], rows->centre[i], rows->below[i]);
}

static inline void merge(const merge_rows* rows, uint8_t* __restrict dst, size_t pixels, bool odd) {
    for (size_t p = 0; p < pixels; p++) {
        const int32_t m = rows->mask[p];
        for (size_t i = 3 * p; i < 3 * p + 3; i++) {
            const int32_t a = rows->src[i] - expanded_at(&rows->coarse_src, i, odd);
            const int32_t b = rows->under[i] - expanded_at(&rows->coarse_under, i, odd);
            dst[i] = clamp_to_byte(expanded_at(&rows->coarse_result, i, odd) + blended(m, a, b));
        }
    }
}

static void merge_even(const merge_rows* rows, uint8_t* __restrict dst, size_t pixels) {
    merge(rows, dst, pixels, false);
}

static void merge_odd(const merge_rows* rows, uint8_t* __restrict dst, size_t pixels) {
    merge(rows, dst, pixels, true);
}

static inline uint8_t interpolate(int s0, int s1, int weight) {
    return (uint8_t)(((128 - weight) * s0 + weight * s1 + 64) >> 7);
}

static void mix_rows(const uint8_t* s0, const uint8_t* s1, int32_t weight, uint8_t* __restrict dst,
                     size_t bytes) {
    for (size_t i = 0; i < bytes; i++)
        dst[i] = interpolate(s0[i], s1[i], weight);
}

static void resample_row_c3(const uint8_t* __restrict src, const row_tap* taps,
                            uint8_t* __restrict dst, size_t pixels) {
    for (size_t p = 0; p < pixels; p++) {
        const uint8_t* s = src + 3 * (ptrdiff_t)taps[p].sample;
        for (size_t k = 0; k < 3; k++) {
            dst[3 * p + k] = interpolate(s[k], s[3 + k], taps[p].weight);
        }
    }
}

static void pack_rgb(const uint8_t* __restrict argb, uint8_t* __restrict rgb, size_t pixels) {
    for (size_t p = 0; p < pixels; p++)
        memcpy(rgb + 3 * p, argb + 4 * p + 1, 3);
}

static void unpack_rgb(const uint8_t* __restrict rgb, uint8_t* __restrict argb, size_t pixels) {
    for (size_t p = 0; p < pixels; p++) {
        argb[4 * p] = 255;
        memcpy(argb + 4 * p + 1, rgb + 3 * p, 3);
    }
}

const row_ops plain_rows = {
    "plain",       PLAIN_PIXELS_A_MS, reduce_row_c3,  reduce_row_c1,
    expand_row_c3, reduce_column,     NULL,           NULL,
    merge_even,    merge_odd,         mix_rows,       resample_row_c3,
    pack_rgb,      unpack_rgb,        plain_turn_rgb, plain_turn_mask,
};
