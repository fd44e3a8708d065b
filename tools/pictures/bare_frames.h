// SPDX-License-Identifier: Apache-2.0
// Frames of the destination's size that hold the source and the mask as they are, for the library
// to turn and zoom.
#ifndef IMAGEBLEND_TOOLS_PICTURES_BARE_FRAMES_H
#define IMAGEBLEND_TOOLS_PICTURES_BARE_FRAMES_H

#include <array>
#include <vector>

#include "pictures/frame.h"
#include "pictures/object.h"

namespace tool {

// The object in the middle of a frame.
struct FramedObject {
    vips::VImage mask;           // scaled
    Outline outline;             // of the scaled mask
    std::vector<Pixel> anchors;  // pixels of the mask that make the box symmetric
    Size frame;
    double scale;  // below 1 when the object was too large for the frame
    double zoom;   // what is left of the zoom after scaling
};

// Scales the object down only where it cannot lie in the frame, turned and unturned, with a few
// pixels to spare; then to the zoom that is asked for, as far as this is below the largest size.
FramedObject fit_object(const Object& object, const Size& frame, double zoom, double angle_degrees);

Frame mask_frame(const FramedObject& object);
// The object with its surroundings; beyond the picture its edge pixels are repeated, and pixels
// that are transparent, whose colour says nothing, take that of their nearest neighbours.
Frame icon_frame(const FramedObject& object, const vips::VImage& picture);

}  // namespace tool

#endif
