// SPDX-License-Identifier: Apache-2.0
// Work buffers: sizes are computed without overflow, and a size of 0 yields a buffer, so that null
// always means failure.
#ifndef IMAGEBLEND_MEMORY_H
#define IMAGEBLEND_MEMORY_H

#include <stdlib.h>

#include "numeric.h"

// `width` x `height` elements of `bytes` bytes, not initialised; null when that cannot be had.
static inline void* alloc_plane(int64_t width, int64_t height, int64_t bytes) {
    size_t size;
    if (!buffer_size(width, height, bytes, &size)) return NULL;
    return malloc(size > 0 ? size : 1);
}

// The same, filled with zeros.
static inline void* alloc_zeroed_plane(int64_t width, int64_t height, int64_t bytes) {
    size_t size;
    if (!buffer_size(width, height, bytes, &size)) return NULL;
    return calloc(size > 0 ? size : 1, 1);
}

#endif
