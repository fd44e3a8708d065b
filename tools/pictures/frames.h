// The equal frames of the destination's size that the library blends.
#ifndef IMAGEBLEND_TOOLS_PICTURES_FRAMES_H
#define IMAGEBLEND_TOOLS_PICTURES_FRAMES_H

#include <glib.h>
#include <imageblend.h>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>
#include <vips/vips8>

#include "pictures/object.h"

namespace tool {

struct GlibFree {
    void operator()(uint8_t* bytes) const { g_free(bytes); }
};

struct Frame {
    Size size;
    std::unique_ptr<uint8_t, GlibFree> bytes;
    blend_image record() const { return {size.width, size.height, bytes.get()}; }
};

// The object in the middle of a frame.
struct FramedObject {
    vips::VImage mask;  // scaled
    Outline outline;    // of the scaled mask
    // How far the blend's box of the scaled and turned object reaches from its middle, without
    // margins: left, right, up, down.
    std::array<double, 4> reach;
    std::vector<Pixel> anchors;  // pixels of the mask that make the box symmetric
    Size frame;
    double scale;  // below 1 when the object was too large for the frame
    double zoom;   // what is left of the zoom after scaling
};

// The margin that the blend wants around a box: four times two to the depth of its pyramid.
int margin_around(int width, int height);

// Scales the object down only where it cannot lie in the frame, turned and unturned, with a few
// pixels to spare; then to the zoom that is asked for, as far as this is below the largest size.
FramedObject fit_object(const Object& object, const Size& frame, double zoom, double angle_degrees);

Frame mask_frame(const FramedObject& object);
// The object with its surroundings; beyond the picture its edge pixels are repeated, and pixels
// that are transparent, whose colour says nothing, take that of their nearest neighbours.
Frame icon_frame(const FramedObject& object, const vips::VImage& picture);
// Colour frame of the picture's own size.
Frame colour_frame(const vips::VImage& picture);
// A picture that refers to the frame's bytes.
vips::VImage frame_picture(const Frame& frame, bool with_alpha);

}  // namespace tool

#endif
