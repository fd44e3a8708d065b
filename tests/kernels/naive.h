// Reference results of the pyramid filters: a sample at a time, taps clamped to the line.
#ifndef IMAGEBLEND_TESTS_KERNELS_NAIVE_H
#define IMAGEBLEND_TESTS_KERNELS_NAIVE_H

#include <stddef.h>
#include <stdint.h>

#include <vector>

namespace naive {

using bytes = std::vector<uint8_t>;

struct extent {
    int32_t width = 0;
    int32_t height = 0;
};

// Each row of `from` pixels becomes `width` pixels; the same for columns of `height` rows.
bytes reduce_rows(const bytes& src, extent from, int32_t width, int32_t channels);
bytes reduce_columns(const bytes& src, extent from, int32_t height, int32_t channels);
bytes reduce(const bytes& src, extent from, extent to, int32_t channels);

// Samples beyond 2n + 1 of a line of n keep what `target` holds.
bytes expand_rows(const bytes& src, extent from, int32_t width, bytes target);
bytes expand_columns(const bytes& src, extent from, int32_t height, bytes target);

// Columns beyond 2 from.width + 1 become `fill`, rows beyond 2 from.height + 1 keep `target`.
bytes expand(const bytes& src, extent from, extent to, uint8_t fill, bytes target);

size_t plane_bytes(extent e, int32_t channels);

// Rows [first, first + count) of a plane.
bytes rows_of(const bytes& plane, size_t row_bytes, int32_t first, int32_t count);

// Test data: 0 all zero, 1 all 255, 2 alternating 0 and 255 along the bytes, 3 alternating along
// the pixels of three channels, 4 random, 5 random of 0 and 255 only.
enum { DATA_KINDS = 6 };
bytes data(int kind, size_t count, uint64_t seed);

}  // namespace naive

#endif  // IMAGEBLEND_TESTS_KERNELS_NAIVE_H
