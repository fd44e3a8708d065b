// SPDX-License-Identifier: Apache-2.0
// Where a row of a mask begins and ends to be non-zero.
#ifndef IMAGEBLEND_KERNELS_SET_BYTES_H
#define IMAGEBLEND_KERNELS_SET_BYTES_H

#include <stdint.h>

// The first and the last non-zero of `count` samples that lie `step` bytes apart; `count` and -1
// where there is none.
int64_t first_set(const uint8_t* samples, int64_t count, int64_t step);
int64_t last_set(const uint8_t* samples, int64_t count, int64_t step);

#endif
