// SPDX-License-Identifier: Apache-2.0
#include "memory.h"

bool buffer_size(int64_t width, int64_t height, int64_t bytes, size_t* size) {
    int64_t product;
    if (__builtin_mul_overflow(width, height, &product)) return false;
    if (__builtin_mul_overflow(product, bytes, &product)) return false;
    *size = (size_t)product;
    return product >= 0 && (uint64_t)product <= SIZE_MAX;
}

void* alloc_plane(int64_t width, int64_t height, int64_t bytes) {
    size_t size;
    if (!buffer_size(width, height, bytes, &size)) return NULL;
    return malloc(size > 0 ? size : 1);
}

void* alloc_zeroed_plane(int64_t width, int64_t height, int64_t bytes) {
    size_t size;
    if (!buffer_size(width, height, bytes, &size)) return NULL;
    return calloc(size > 0 ? size : 1, 1);
}
