// SPDX-License-Identifier: Apache-2.0
// Converts pictures between colour spaces, through the colour profiles (ICC) that they carry.
#ifndef IMAGEBLEND_TOOLS_PICTURES_COLOUR_PROFILE_H
#define IMAGEBLEND_TOOLS_PICTURES_COLOUR_PROFILE_H

#include <string>
#include <vips/vips8>

namespace tool {

// The bytes of the profile; empty where there is none or one that does not suit the pixels.
std::string profile_of(const vips::VImage& image);

// Whether the two mean the same colours; an empty one is sRGB.
bool same_profile(const std::string& a, const std::string& b);

// Whether the pixels are 8-bit red, green, blue and perhaps alpha, in whatever profile.
bool is_8_bit_rgb(const vips::VImage& image);

// "16-bit grey", for messages.
std::string kind_of_pixels(const vips::VImage& image);

// 8 bits; alpha is kept. The result carries the profile of its pixels, or none for plain sRGB.
vips::VImage to_srgb(const vips::VImage& image);
vips::VImage to_profile(const vips::VImage& image, const std::string& profile);

}  // namespace tool

#endif
