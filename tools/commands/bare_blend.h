// SPDX-License-Identifier: Apache-2.0
// The blend as an app gets it that hands mask, zoom and angle to the library: without preparation.
#ifndef IMAGEBLEND_TOOLS_COMMANDS_BARE_BLEND_H
#define IMAGEBLEND_TOOLS_COMMANDS_BARE_BLEND_H

#include <string>
#include <vector>

#include "api/plan.h"
#include "commands/commands.h"
#include "pictures/bare_frames.h"

namespace tool {

// The library's plan of the blend.
struct BarePlan {
    object_plan object{};
    placement_check check{};     // what vorn_verify_icon_pos says
    int32_t center_x, center_y;  // to be passed on so that the object's middle stands right
    blend_plan blend{};

    BarePlan(const Frame& mask, const Point& at, double zoom, float angle);
};

// Everything that is known before the blend.
struct BareBlend {
    Placement placement;
    Object object;
    FramedObject framed;
    Frame mask;
    std::unique_ptr<BarePlan> plan;
};

// Puts the object into a frame of the destination's size and foresees its place.
BareBlend plan_bare_blend(Object object, const Placement& placement, const Size& destination);

// The sides at which the margin is missing.
std::vector<std::string> seams_of(const BareBlend& blend);

// "fits with full margins", or what is missing.
std::string verdict_text(const BareBlend& blend);

// The largest zoom of the picture as given that the library accepts, to three or four digits, never
// rounded up. For a placement that does not fit.
std::string largest_zoom(const BareBlend& blend);

// "19 pixels to the right and 29 pixels up"; empty when the object stands where it was asked for.
std::string moves_text(const BareBlend& blend);

// Warnings about a scaled source, missing margins and a moved object.
void warn_of_placement(const BlendJob& job, const BareBlend& blend);

// `output` may be the destination itself. Fails when the object does not fit.
void blend_bare(const BareBlend& blend, const Frame& icon, const Frame& destination,
                const Frame& output);

}  // namespace tool

#endif
