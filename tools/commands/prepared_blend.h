// SPDX-License-Identifier: Apache-2.0
// A blend of an object that is cleaned, scaled and turned first, in a frame around its place.
#ifndef IMAGEBLEND_TOOLS_COMMANDS_PREPARED_BLEND_H
#define IMAGEBLEND_TOOLS_COMMANDS_PREPARED_BLEND_H

#include <string>

#include "commands/commands.h"
#include "pictures/layer.h"

namespace tool {

// Frames and the memory that they point into.
struct BlendFrames {
    imageblend_frames records;  // the box is in the destination
    Frame icon, mask, destination;
};

// Everything that is known before the blend.
struct PreparedBlend {
    Placement placement;
    Object object;
    CleanObject clean;
    Layer layer;
    BlendFrames frames;
    Frame part;        // of the destination, as far as the frames lie on it
    int left, top;     // of that part
    bool lacks_surroundings;  // some were asked for, and the source shows none
};

// Cleans the object, puts it into its place and lays the frames.
PreparedBlend prepare_blend(const BlendJob& job, const Photo& photo);

// Blends the frames and puts the result into `part`. The frames' destination becomes the result.
void blend_prepared(PreparedBlend& blend);

// The destination with the blended part.
vips::VImage blended_picture(const PreparedBlend& blend, const vips::VImage& destination);

// "fits", or also where it is cut off.
std::string verdict_text(const PreparedBlend& blend);

// Warnings about the outline and the surroundings.
void warn_of_object(const PreparedBlend& blend);

}  // namespace tool

#endif
