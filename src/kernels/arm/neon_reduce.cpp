// SPDX-License-Identifier: Apache-2.0
// The reductions in 128-bit vectors of 64-bit Arm. They stay in 8-bit lanes: halving adds (vhadd
// rounds down, vrhadd rounds up) give the exact result. As in all files of vectors, rows of a
// vector and more end with one vector that overlaps the one before it, so no element is handled
// alone; shorter rows take the plain operations.
#include "kernels/arm/neon_vectors.h"

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

void neon_reduce_column(const uint8_t* const taps[5], uint8_t* __restrict dst, size_t bytes) {
    if (bytes < 16) return plain_rows.reduce_column(taps, dst, bytes);
    const uint8_t *t0 = taps[0], *t1 = taps[1], *t2 = taps[2], *t3 = taps[3], *t4 = taps[4];
    write_bytes(dst, bytes, [=](size_t i) {
        return reduce_taps(vld1q_u8(t0 + i), vld1q_u8(t1 + i), vld1q_u8(t2 + i), vld1q_u8(t3 + i),
                           vld1q_u8(t4 + i));
    });
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
void neon_reduce_row_c1(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                        int32_t dst_width) {
    const int32_t inner = dst_width - 3;
    if (inner < 14) return plain_rows.reduce_row_c1(src, src_width, dst, dst_width);
    for_each_pair(
        (size_t)inner, 14,
        [=](size_t i) { return reduce_run(vld1q_u8(src + 2 * i), vld1q_u8(src + 2 * i + 16)); },
        [=](size_t i, bytes16 v) { vst1q_u8(dst + 1 + i, v); });
    reduce_ends_c1(src, src_width, dst, dst_width, dst_width - 2);
}

void neon_reduce_row_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
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
