// SPDX-License-Identifier: Apache-2.0
// The way between packed and 4-byte pixels in 128-bit vectors of 64-bit Arm.
#include "kernels/arm/neon_vectors.h"

void neon_pack_rgb(const uint8_t* __restrict argb, uint8_t* __restrict rgb, size_t pixels) {
    if (pixels < 16) return plain_rows.pack_rgb(argb, rgb, pixels);
    for_each_vector(pixels, 16, [=](size_t p) {
        const uint8x16x4_t in = vld4q_u8(argb + 4 * p);
        const uint8x16x3_t out = {{in.val[1], in.val[2], in.val[3]}};
        vst3q_u8(rgb + 3 * p, out);
    });
}

void neon_unpack_rgb(const uint8_t* __restrict rgb, uint8_t* __restrict argb, size_t pixels) {
    if (pixels < 16) return plain_rows.unpack_rgb(rgb, argb, pixels);
    for_each_vector(pixels, 16, [=](size_t p) {
        const uint8x16x3_t in = vld3q_u8(rgb + 3 * p);
        const uint8x16x4_t out = {{vdupq_n_u8(255), in.val[0], in.val[1], in.val[2]}};
        vst4q_u8(argb + 4 * p, out);
    });
}
