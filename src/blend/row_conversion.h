// SPDX-License-Identifier: Apache-2.0
// A level of 16 bits as bytes: what the coarsest merge of a blend does in passing.
#ifndef IMAGEBLEND_BLEND_ROW_CONVERSION_H
#define IMAGEBLEND_BLEND_ROW_CONVERSION_H

#include <stdint.h>

// dst = the low 8 bits of src, for `width` x `height` pixels of three interleaved channels. No
// clamping: the top level of a blended pyramid lies in 0..254. Nothing is done below height 1.
void narrow_plane_c3(const int16_t* src, uint32_t width, int32_t height, uint8_t* dst);

#endif
