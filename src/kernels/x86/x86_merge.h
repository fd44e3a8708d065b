// SPDX-License-Identifier: Apache-2.0
// The merge of a row in vectors of either width. Included by avx2_merge.cpp and avx512_merge.cpp
// alone, behind their vectors.
#ifndef IMAGEBLEND_KERNELS_X86_X86_MERGE_H
#define IMAGEBLEND_KERNELS_X86_X86_MERGE_H

// What a vector of mask bytes asks for: one picture, one for each value, or both.
typedef enum mask_kind { MASK_CLEAR, MASK_FULL, MASK_HARD, MASK_SOFT } mask_kind;
static inline mask_kind kind_of(byte_vector mask);
// Third 0, 1 or 2 of the bytes of a vector, each three times.
static inline byte_vector triple_bytes(const uint8_t* mask, size_t third);

namespace {

enum { MERGED_PIXELS = sizeof(byte_vector) };

// result + ((m a + n b + 128) >> 8) for n = 255 - m and a, b the differences of `pictures` and of
// `expanded`; `weights` are pairs of m and n, the others pairs of samples less 128. The sums p of
// the pictures and q of the expanded ones fit 16 bits, and the mean of p and the inverse of q is
// ((p - q) >> 1) + 32768. `results` are less 256, which the 32768 makes up for.
inline byte_vector merge_words(byte_vector weights, byte_vector pictures, byte_vector expanded,
                               byte_vector results) {
    const byte_vector p = flip_words(add_pairs(weights, pictures), 0x8000);
    const byte_vector q = flip_words(add_pairs(weights, expanded), 0x7fff);
    const byte_vector half = average_words_up(p, q);
    return add_words(shift_words_down<7>(add_words(half, words_of(64))), results);
}

// The rows of one picture and their expansion.
typedef struct picture_bytes {
    byte_vector row, expanded;
} picture_bytes;

inline byte_vector merge_two(byte_vector m, picture_bytes src, picture_bytes under,
                             byte_vector result) {
    const byte_vector n = invert(m), ones = words_of(-1);
    const byte_vector a = flip_bytes(src.row, 128), b = flip_bytes(under.row, 128);
    const byte_vector ea = flip_bytes(src.expanded, 128), eb = flip_bytes(under.expanded, 128);
    return pack_words(
        merge_words(turns_low(m, n), turns_low(a, b), turns_low(ea, eb), turns_low(result, ones)),
        merge_words(turns_high(m, n), turns_high(a, b), turns_high(ea, eb),
                    turns_high(result, ones)));
}

// One picture of a merge.
typedef struct picture_rows {
    const uint8_t* row;
    coarse_rows coarse;
} picture_rows;

// Pixels where the mask is all 0 or all 255: only one picture counts. The next row of the level
// lies `ahead` bytes further.
template <class Phase>
inline void merge_one_run(const picture_rows* picture, const coarse_rows* result, size_t i,
                          size_t ahead, uint8_t* dst) {
    byte_vector out[3];
#pragma GCC unroll 3
    for (size_t k = 0; k < 3; k++) {
        const size_t at = i + k * sizeof(byte_vector);
        __builtin_prefetch(picture->row + at + ahead);
        __builtin_prefetch(dst + at + ahead, 1);
        out[k] = merge_one(load(picture->row + at), Phase::at(&picture->coarse, at),
                           Phase::at(result, at));
    }
#pragma GCC unroll 3
    for (size_t k = 0; k < 3; k++)
        store(dst + i + k * sizeof(byte_vector), out[k]);
}

// Pixels of any mask: each mask byte weighs three values. Where all are 0 or 255, as along the edge
// of an object in the finest level, each value has its own picture.
template <class Phase, bool HARD>
__attribute__((noinline)) void merge_both_run(const merge_rows* rows, size_t p, uint8_t* dst) {
    const merge_rows r = *rows;
    for (size_t k = 0; k < 3; k++) {
        const size_t i = 3 * p + k * sizeof(byte_vector);
        const byte_vector mask = triple_bytes(r.mask + p, k);
        const picture_bytes src = {load(r.src + i), Phase::at(&r.coarse_src, i)};
        const picture_bytes under = {load(r.under + i), Phase::at(&r.coarse_under, i)};
        const byte_vector result = Phase::at(&r.coarse_result, i);
        store(dst + i, HARD ? merge_one(choose(mask, src.row, under.row),
                                        choose(mask, src.expanded, under.expanded), result)
                            : merge_two(mask, src, under, result));
    }
}

// The picture is chosen anew only where the mask changes: a branch that is mostly foreseen, where
// an address that depends on the mask would have to be waited for.
template <class Phase>
inline void merge(const merge_rows* rows, uint8_t* __restrict dst, size_t pixels) {
    const coarse_rows result = rows->coarse_result;
    const uint8_t* mask = rows->mask;
    picture_rows picture = {rows->under, rows->coarse_under};
    mask_kind chosen = MASK_CLEAR;
    for_each_block(pixels, MERGED_PIXELS, [=, &picture, &chosen](size_t p) {
        const mask_kind kind = kind_of(load(mask + p));
        __builtin_prefetch(mask + p + pixels);
        if (__builtin_expect(kind == MASK_HARD, 0)) {
            return merge_both_run<Phase, true>(rows, p, dst);
        }
        if (__builtin_expect(kind == MASK_SOFT, 0)) {
            return merge_both_run<Phase, false>(rows, p, dst);
        }
        if (kind != chosen) {
            if (kind == MASK_FULL) {
                picture = {rows->src, rows->coarse_src};
            } else {
                picture = {rows->under, rows->coarse_under};
            }
            chosen = kind;
        }
        merge_one_run<Phase>(&picture, &result, 3 * p, 3 * pixels, dst);
    });
}

}  // namespace

#endif
