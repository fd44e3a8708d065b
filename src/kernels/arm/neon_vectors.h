// SPDX-License-Identifier: Apache-2.0
// What the files with vectors of 64-bit Arm share, above all how rows are walked. In-order cores
// wait for every result that is used at once, so a walk gives them something else to do meanwhile;
// others lose nothing by it.
#ifndef IMAGEBLEND_KERNELS_ARM_NEON_VECTORS_H
#define IMAGEBLEND_KERNELS_ARM_NEON_VECTORS_H

#include <arm_neon.h>

#include "kernels/arm/neon_rows.h"
#include "kernels/vector_rows.h"

typedef uint8x16_t bytes16;
typedef bytes16 byte_vector;

static inline bytes16 load(const uint8_t* p) {
    return vld1q_u8(p);
}

// store(i, value_at(i)) for runs of `size` elements that cover 0 .. count - 1, count >= size. Two
// runs a step, both computed before either is stored; the last ones are moved back to the end of
// the row, so a run must not read what a run has written.
template <class Value, class Store>
static inline void for_each_pair(size_t count, size_t size, Value value_at, Store store) {
    const auto step = [=](size_t i0, size_t i1) {
        const auto first = value_at(i0), second = value_at(i1);
        store(i0, first);
        store(i1, second);
    };
    const size_t last = count - size;
    size_t i = 0;
    for (; i + 2 * size <= count; i += 2 * size)
        step(i, i + size);
    if (i < count) step(i < last ? i : last, last);
}

template <class Value>
static inline void write_bytes(uint8_t* __restrict dst, size_t count, Value value_at) {
    for_each_pair(count, 16, value_at, [=](size_t i, bytes16 v) { vst1q_u8(dst + i, v); });
}

// (a + 6 b + c + 4) >> 3: halving three times, rounding up only in the last step.
static inline bytes16 even_phase(bytes16 a, bytes16 b, bytes16 c) {
    return vrhaddq_u8(b, vhaddq_u8(b, vhaddq_u8(a, c)));
}

// What the merge is made of.
static inline bytes16 average_up(bytes16 a, bytes16 b) {
    return vrhaddq_u8(a, b);
}
static inline bytes16 add_saturated(bytes16 a, bytes16 b) {
    return vqaddq_u8(a, b);
}
static inline bytes16 subtract_saturated(bytes16 a, bytes16 b) {
    return vqsubq_u8(a, b);
}
// v - 1 where v is 128 and more, or more than that. The sign shifted down is -1.
static inline bytes16 drop_from_128(bytes16 v) {
    const int8x16_t signed_v = vreinterpretq_s8_u8(v);
    return vreinterpretq_u8_s8(vsraq_n_s8(signed_v, signed_v, 7));
}
static inline bytes16 drop_above_128(bytes16 v) {
    return vaddq_u8(v, vcgtq_u8(v, vdupq_n_u8(128)));
}

#include "kernels/merge_formulas.h"

#endif
