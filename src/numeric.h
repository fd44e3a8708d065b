// SPDX-License-Identifier: Apache-2.0
// Conversions and sizes that every subsystem shares.
#ifndef IMAGEBLEND_NUMERIC_H
#define IMAGEBLEND_NUMERIC_H

#include <stddef.h>
#include <stdint.h>

// Truncates toward zero, saturates at the ends of the type and maps NaN to 0: what the conversion
// instruction of 64-bit Arm does, on every platform.
static inline int32_t float_to_i32(float value) {
    if (value >= 2147483648.0f) return INT32_MAX;
    if (value <= -2147483648.0f) return INT32_MIN;
    return value == value ? (int32_t)value : 0;
}

// The nearest byte, half rounded up.
static inline uint8_t float_to_byte(float value) {
    const int32_t level = float_to_i32(value + 0.5f);
    return (uint8_t)(level < 0 ? 0 : (level > 255 ? 255 : level));
}

static inline int32_t saturate_i32(int64_t value) {
    if (value > INT32_MAX) return INT32_MAX;
    if (value < INT32_MIN) return INT32_MIN;
    return (int32_t)value;
}

static inline int64_t min_i64(int64_t a, int64_t b) {
    return a < b ? a : b;
}
static inline int64_t max_i64(int64_t a, int64_t b) {
    return a > b ? a : b;
}
static inline int64_t clamp_i64(int64_t v, int64_t low, int64_t high) {
    return v < low ? low : (v > high ? high : v);
}

static inline size_t max_size(size_t a, size_t b) {
    return a > b ? a : b;
}

// Bytes of the widest vectors, and of a line of the cache.
enum { VECTOR_BYTES = 64 };

// Working rows start where a vector does, so that none of its loads and stores meets two lines of
// the cache: the bytes from one to the next.
static inline size_t whole_vectors(size_t bytes) {
    return (bytes + VECTOR_BYTES - 1) & ~(size_t)(VECTOR_BYTES - 1);
}

#endif
