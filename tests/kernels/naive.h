// SPDX-License-Identifier: Apache-2.0
// The kernels' formulas, a value at a time, and the data that kernels are tried on.
#ifndef IMAGEBLEND_TESTS_KERNELS_NAIVE_H
#define IMAGEBLEND_TESTS_KERNELS_NAIVE_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include <vector>

namespace naive {

using bytes = std::vector<uint8_t>;
using words = std::vector<int16_t>;

// What outputs hold before a call.
enum { UNTOUCHED = 0xC7 };

struct extent {
    int32_t width = 0;
    int32_t height = 0;
};

// Quotients round towards minus infinity, being those of non-negative dividends.
int16_t blended(int mask, int a, int b);
uint8_t collapsed(int lap, int base);

size_t plane_bytes(extent e, int32_t channels);

// Rows [first, first + count) of a plane.
bytes rows_of(const bytes& plane, size_t row_bytes, int32_t first, int32_t count);

// Test data: 0 all zero, 1 all 255, 2 alternating 0 and 255 along the bytes, 3 alternating along
// the pixels of three channels, 4 random, 5 random of 0 and 255 only.
bytes data(int kind, size_t count, uint64_t seed);

// Data of the same kinds, spread over -limit .. limit.
words signed_data(int kind, size_t count, int limit, uint64_t seed);

template <class T>
bytes bytes_of(const std::vector<T>& values) {
    bytes out(values.size() * sizeof(T));
    memcpy(out.data(), values.data(), out.size());
    return out;
}

}  // namespace naive

#endif  // IMAGEBLEND_TESTS_KERNELS_NAIVE_H
