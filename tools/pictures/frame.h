// SPDX-License-Identifier: Apache-2.0
// Pixels in the layouts that the library takes.
#ifndef IMAGEBLEND_TOOLS_PICTURES_FRAME_H
#define IMAGEBLEND_TOOLS_PICTURES_FRAME_H

#include <glib.h>
#include <imageblend.h>

#include <cstdint>
#include <memory>
#include <vips/vips8>

#include "pictures/picture.h"

namespace tool {

struct GlibFree {
    void operator()(uint8_t* bytes) const { g_free(bytes); }
};

struct Frame {
    Size size;
    std::unique_ptr<uint8_t, GlibFree> bytes;
    blend_image record() const { return {size.width, size.height, bytes.get()}; }
};

// A frame of pixels that are not initialised.
Frame make_frame(const Size& size, int channels);
Frame copy_frame(const Frame& frame, int channels);
// Of the picture's bands.
Frame to_frame(const vips::VImage& image);
// Colour frame of the picture's own size: alpha, 255 if there is none, and three colours.
Frame colour_frame(const vips::VImage& picture);
// A picture that refers to the frame's bytes.
vips::VImage frame_picture(const Frame& frame, bool with_alpha);

}  // namespace tool

#endif
