// SPDX-License-Identifier: Apache-2.0
// An object's alpha in the box that is worked on, and what kind of alpha that is.
#ifndef IMAGEBLEND_PREPARE_ALPHA_H
#define IMAGEBLEND_PREPARE_ALPHA_H

#include "imageblend_prepare.h"

// From this alpha on a pixel counts as inside an outline.
enum { ALPHA_INSIDE = 128 };

// Whether the records can be read: no null, sides from 1 on, a mask of the picture's size.
bool source_is_valid(const imageblend_source* source);

// The pixels of a row from the first to the last with alpha above 0; both are `count` if there are
// none. Alphas are `step` bytes apart: 1, or 4, of which they are the first.
void find_seen(const uint8_t* alphas, int64_t count, int64_t step, int64_t* begin, int64_t* end);

// Alpha of the source, one byte for each pixel of the box.
void copy_alpha(const imageblend_source* source, const imageblend_box* box, uint8_t* alpha);

// IMAGEBLEND_ALPHA_...: by the number of pixels that are neither inside nor outside for each step
// of the outline.
int32_t find_alpha_kind(const uint8_t* alpha, int32_t width, int32_t height);

#endif
