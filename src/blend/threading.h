// SPDX-License-Identifier: Apache-2.0
// When a blend uses threads.
#ifndef IMAGEBLEND_BLEND_THREADING_H
#define IMAGEBLEND_BLEND_THREADING_H

#include <stdint.h>

// The work of a call, in pixels of a blend, from which on it uses threads.
int64_t least_threaded_pixels(void);

#endif
