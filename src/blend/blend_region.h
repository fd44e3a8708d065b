// SPDX-License-Identifier: Apache-2.0
// The single entry of the blending engine.
#ifndef IMAGEBLEND_BLEND_BLEND_REGION_H
#define IMAGEBLEND_BLEND_BLEND_REGION_H

#include "blend/blend_box.h"
#include "blend/turned_frame.h"

// Blends the object's box of `src` into `dst` and writes the whole picture to `out`.
//
//   src, dst  4-byte frames, read only
//   mask      zoom_width x zoom_height bytes
//   out       a frame of the same size; only `data` is used, which may share bytes with src or dst
//   box       filled by place_blend_box
//   turn      what `src` is turned by before the box is cut from it, or null
//
// A box of no size leaves a copy of `dst`. At its end the call frees the rotated icon, if there is
// one. Returns 0, or -1 with `out` untouched or a copy of `dst` when memory runs out.
int32_t blend_region(const blend_image* src, const blend_image* dst, const uint8_t* mask,
                     const blend_image* out, const blend_box* box, const rotation* turn);

#endif
