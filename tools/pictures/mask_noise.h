// SPDX-License-Identifier: Apache-2.0
// What lossy compression, or a film that does not begin at black, leaves in masks.
#ifndef IMAGEBLEND_TOOLS_PICTURES_MASK_NOISE_H
#define IMAGEBLEND_TOOLS_PICTURES_MASK_NOISE_H

#include <vips/vips8>

namespace tool {

// The mask with 0 and 255 where it nearly has them, if it is found to be noisy, else as it is: one
// 8-bit band in memory, as the argument. Without this, faint specks would be parts of the object,
// and a hard outline would look soft. A mask of a JPEG file loses its faintest values only.
vips::VImage without_noise(const vips::VImage& mask);

}  // namespace tool

#endif
