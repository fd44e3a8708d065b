// The steps that blend and explain share: from the arguments to the blended frame.
#ifndef IMAGEBLEND_TOOLS_COMMANDS_BLEND_STEPS_H
#define IMAGEBLEND_TOOLS_COMMANDS_BLEND_STEPS_H

#include "commands/commands.h"

namespace tool {

// Everything that is known before the blend.
struct PreparedBlend {
    Photo photo;
    vips::VImage destination;  // its pixels, alpha included
    Placement placement;
    Object object;
    FramedObject framed;
    Frame mask;
    Frame icon;
    Verdict verdict;
    Geometry geometry;
};

// Loads the files, puts the object into a frame of the destination's size and foresees its place.
PreparedBlend prepare_blend(const BlendJob& job);

// `output` may be the destination itself.
void blend_frames(const PreparedBlend& blend, const Frame& destination, const Frame& output);

// "19 pixels to the right and 29 pixels up"; empty when the object stands where it was asked for.
std::string moves_text(const Geometry& geometry);

// Warnings about a scaled source, missing margins and a moved object.
void report_placement(const BlendJob& job, const PreparedBlend& blend);

}  // namespace tool

#endif
