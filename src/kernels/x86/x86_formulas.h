// SPDX-License-Identifier: Apache-2.0
// Formulas in vectors of either width, made of what avx2_vectors.h and avx512_vectors.h define
// alike. Included by these two alone. Everything here is private to its file, whose instructions
// others may not have.
#ifndef IMAGEBLEND_KERNELS_X86_X86_FORMULAS_H
#define IMAGEBLEND_KERNELS_X86_X86_FORMULAS_H

// (a + 6 b + c + 4) >> 3: halving three times, rounding up only in the last step. The mean of
// inverted values is an inverted mean that is rounded down.
static inline byte_vector even_phase(byte_vector a, byte_vector b, byte_vector c) {
    const byte_vector ac = average_up(invert(a), invert(c));
    return average_up(b, invert(average_up(invert(b), ac)));
}

// What a vector of mask bytes asks for: one picture, one for each value, or both.
typedef enum mask_kind { MASK_CLEAR, MASK_FULL, MASK_HARD, MASK_SOFT } mask_kind;

#endif
