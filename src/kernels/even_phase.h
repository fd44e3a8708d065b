// SPDX-License-Identifier: Apache-2.0
// The even rows and pixels of an expansion in vectors whose mean rounds up. Included behind their
// byte_vector, average_up and invert. What is here is private to the including file, whose
// instructions others may not have.
#ifndef IMAGEBLEND_KERNELS_EVEN_PHASE_H
#define IMAGEBLEND_KERNELS_EVEN_PHASE_H

// (a + 6 b + c + 4) >> 3: halving three times, rounding up only in the last step. The mean of
// inverted values is an inverted mean that is rounded down.
static inline byte_vector even_phase(byte_vector a, byte_vector b, byte_vector c) {
    const byte_vector ac = average_up(invert(a), invert(c));
    return average_up(b, invert(average_up(invert(b), ac)));
}

#endif
