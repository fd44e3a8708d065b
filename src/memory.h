// SPDX-License-Identifier: Apache-2.0
// Work buffers: sizes are computed without overflow, and a size of 0 yields a buffer, so that null
// always means failure.
#ifndef IMAGEBLEND_MEMORY_H
#define IMAGEBLEND_MEMORY_H

#include <stdint.h>
#include <stdlib.h>

// The size of a buffer of `width` x `height` elements of `bytes` bytes. False when the product is
// negative or too large for any buffer; a product of two negative sides is a size.
bool buffer_size(int64_t width, int64_t height, int64_t bytes, size_t* size);

// `width` x `height` elements of `bytes` bytes, not initialised; null when that cannot be had.
void* alloc_plane(int64_t width, int64_t height, int64_t bytes);

// The same, filled with zeros.
void* alloc_zeroed_plane(int64_t width, int64_t height, int64_t bytes);

#endif
