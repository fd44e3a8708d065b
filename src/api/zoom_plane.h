// SPDX-License-Identifier: Apache-2.0
// Nearest-neighbour resize of an interleaved byte picture in 7-bit fixed point.
#ifndef IMAGEBLEND_API_ZOOM_PLANE_H
#define IMAGEBLEND_API_ZOOM_PLANE_H

#include <stdint.h>

// Output sample i reads source sample (i * step + 64) >> 7, clamped to the source, with step the
// distance of fixed_step.h: the first and last samples of source and target coincide. The target
// holds target_width x target_height pixels of `channels` bytes; nothing is done when one of its
// sides is below 1.
void zoom_plane_nearest(const uint8_t* source, int32_t source_width, int32_t source_height,
                        uint8_t* target, int32_t target_width, int32_t target_height,
                        int32_t channels);

#endif
