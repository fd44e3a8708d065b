// SPDX-License-Identifier: Apache-2.0
// The merge of a row in vectors of WebAssembly.
#include "kernels/wasm/simd128_vectors.h"

// Mask bytes of a third of 16 pixels, each three times.
static inline bytes16 triple_bytes(bytes16 mask, size_t third) {
    const bytes16 triples[3] = {
        wasm_u8x16_const(0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5),
        wasm_u8x16_const(5, 5, 6, 6, 6, 7, 7, 7, 8, 8, 8, 9, 9, 9, 10, 10),
        wasm_u8x16_const(10, 11, 11, 11, 12, 12, 12, 13, 13, 13, 14, 14, 14, 15, 15, 15)};
    return wasm_i8x16_swizzle(mask, triples[third]);
}

// Eight 16-bit values each.
typedef struct weighted_halves {
    bytes16 m, n;  // weights, which add up to 255
    bytes16 src, under, coarse_src, coarse_under, result;
} weighted_halves;

// result + ((p - q + 128) >> 8) for p = m src + n under and q, the same of the coarse rows: both
// are at most 255 * 255. The mean of p + 128 and of 65535 - q, rounded up, is
// 32768 + ((p + 128 - q) >> 1); seven bits less leave 256 more than the sum needs.
static inline bytes16 merge_half(const weighted_halves* h) {
    const bytes16 p = wasm_i16x8_add(wasm_i16x8_mul(h->m, h->src), wasm_i16x8_mul(h->n, h->under));
    const bytes16 q =
        wasm_i16x8_add(wasm_i16x8_mul(h->m, h->coarse_src), wasm_i16x8_mul(h->n, h->coarse_under));
    const bytes16 mean = wasm_u16x8_avgr(wasm_i16x8_add(p, wasm_i16x8_const_splat(128)), invert(q));
    const bytes16 sum = wasm_i16x8_add(wasm_u16x8_shr(mean, 7), h->result);
    return wasm_i16x8_sub(sum, wasm_i16x8_const_splat(256));
}

// 16 values from byte i on under the weights m.
template <class Phase>
static inline bytes16 merge_both(bytes16 m, const merge_rows* rows, size_t i) {
    const bytes16 n = invert(m), src = load(rows->src + i), under = load(rows->under + i);
    const bytes16 coarse_src = Phase::at(&rows->coarse_src, i);
    const bytes16 coarse_under = Phase::at(&rows->coarse_under, i);
    const bytes16 result = Phase::at(&rows->coarse_result, i);
    const weighted_halves low = {
        wasm_u16x8_extend_low_u8x16(m),          wasm_u16x8_extend_low_u8x16(n),
        wasm_u16x8_extend_low_u8x16(src),        wasm_u16x8_extend_low_u8x16(under),
        wasm_u16x8_extend_low_u8x16(coarse_src), wasm_u16x8_extend_low_u8x16(coarse_under),
        wasm_u16x8_extend_low_u8x16(result)};
    const weighted_halves high = {
        wasm_u16x8_extend_high_u8x16(m),          wasm_u16x8_extend_high_u8x16(n),
        wasm_u16x8_extend_high_u8x16(src),        wasm_u16x8_extend_high_u8x16(under),
        wasm_u16x8_extend_high_u8x16(coarse_src), wasm_u16x8_extend_high_u8x16(coarse_under),
        wasm_u16x8_extend_high_u8x16(result)};
    return wasm_u8x16_narrow_i16x8(merge_half(&low), merge_half(&high));
}

// 16 pixels of one picture.
template <class Phase>
static inline void merge_one_run(const uint8_t* row, const coarse_rows* coarse,
                                 const coarse_rows* result, size_t i, uint8_t* dst) {
    for (size_t at = i; at < i + 48; at += 16)
        store(dst + at, merge_one(load(row + at), Phase::at(coarse, at), Phase::at(result, at)));
}

// 16 pixels of three channels. Only one picture counts where their mask is all 0 or all 255. That
// is asked of general registers, which saves the way there from the vectors.
template <class Phase>
static inline void merge_run(const merge_rows* rows, size_t p, uint8_t* dst) {
    uint64_t mask[2];
    memcpy(mask, rows->mask + p, 16);
    const size_t i = 3 * p;
    if ((mask[0] | mask[1]) == 0) {
        merge_one_run<Phase>(rows->under, &rows->coarse_under, &rows->coarse_result, i, dst);
    } else if ((mask[0] & mask[1]) == UINT64_MAX) {
        merge_one_run<Phase>(rows->src, &rows->coarse_src, &rows->coarse_result, i, dst);
    } else {
        const bytes16 m = load(rows->mask + p);
        for (size_t k = 0; k < 3; k++)
            store(dst + i + 16 * k, merge_both<Phase>(triple_bytes(m, k), rows, i + 16 * k));
    }
}

template <class Phase>
static inline void merge(const merge_rows* rows, uint8_t* __restrict dst, size_t pixels) {
    const merge_rows r = *rows;
    for_each_block(pixels, 16, [&r, dst](size_t p) { merge_run<Phase>(&r, p, dst); });
}

void simd128_merge_even(const merge_rows* rows, uint8_t* __restrict dst, size_t pixels) {
    if (pixels < 16) return plain_rows.merge_even(rows, dst, pixels);
    merge<even_rows>(rows, dst, pixels);
}

void simd128_merge_odd(const merge_rows* rows, uint8_t* __restrict dst, size_t pixels) {
    if (pixels < 16) return plain_rows.merge_odd(rows, dst, pixels);
    merge<odd_rows>(rows, dst, pixels);
}
