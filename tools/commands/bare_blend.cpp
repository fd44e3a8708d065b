// SPDX-License-Identifier: Apache-2.0
#include "commands/bare_blend.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace tool {
namespace {

int32_t to_i32(double value) {
    const double limit = INT32_MAX;
    return static_cast<int32_t>(std::clamp(value, -limit, limit));
}

std::string pixels(int64_t number) {
    return std::to_string(number) + (number == 1 ? " pixel" : " pixels");
}

// The blend counts on full margins where the frame may cut them short; `before` and `behind` are
// those of the box. A turned box is centred again.
int32_t centre_for(double place, int margin, int64_t before, int64_t behind, bool turned,
                   float zoom) {
    const double missing = turned ? margin - static_cast<double>(before + behind) / 2.0
                                  : static_cast<double>(margin - before);
    return to_i32(std::round(place) + std::round(missing * static_cast<double>(zoom)));
}

}  // namespace

BarePlan::BarePlan(const Frame& mask, const Point& at, double zoom, float angle) {
    measure_object(mask.bytes.get(), mask.size.width, mask.size.height, &object);
    turn_object(angle, &object);
    const auto scale = static_cast<float>(zoom);
    const placement asked = {to_i32(std::round(at.x)), to_i32(std::round(at.y)), scale};
    check = check_placement(&object, &asked);
    const mask_box& box = object.box;
    const int64_t left = box.extent.xmin - box.x0;
    const int64_t top = box.extent.ymin - box.y0;
    const int64_t across = box.crop_mask_width - box.bare_width;
    const int64_t along = box.crop_mask_height - box.bare_height;
    center_x = centre_for(at.x, box.margin, left, across - left, object.turned, scale);
    center_y = centre_for(at.y, box.margin, top, along - top, object.turned, scale);
    const placement passed = {center_x, center_y, scale};
    const blend_image destination = {mask.size.width, mask.size.height, nullptr};
    blend = plan_blend(&object, &passed, &destination);
}

BareBlend plan_bare_blend(Object object, const Placement& placement, const Size& destination) {
    BareBlend blend;
    blend.placement = placement;
    blend.object = std::move(object);
    blend.framed =
        fit_object(blend.object, destination, placement.zoom, static_cast<double>(placement.angle));
    blend.mask = mask_frame(blend.framed);
    blend.plan =
        std::make_unique<BarePlan>(blend.mask, placement.at, blend.framed.zoom, placement.angle);
    return blend;
}

std::vector<std::string> seams_of(const BareBlend& blend) {
    constexpr struct {
        int32_t side;
        const char* name;
    } sides[] = {
        {SIDE_LEFT, "left"}, {SIDE_RIGHT, "right"}, {SIDE_TOP, "top"}, {SIDE_BOTTOM, "bottom"}};
    std::vector<std::string> names;
    for (const auto& [side, name] : sides) {
        if (blend.plan->check.fits && (blend.plan->check.seams & side) != 0) {
            names.emplace_back(name);
        }
    }
    return names;
}

std::string verdict_text(const BareBlend& blend) {
    if (!blend.plan->check.fits) return "does not fit";
    const std::vector<std::string> seams = seams_of(blend);
    if (seams.empty()) return "fits with full margins";
    return "fits, with a seam at the " + list(seams);
}

std::string largest_zoom(const BareBlend& blend) {
    const double scale = blend.framed.scale;
    const Size& frame = blend.mask.size;
    const auto fits = [&](double zoom) {
        const placement tried = {0, 0, static_cast<float>(zoom / scale)};
        return check_placement(&blend.plan->object, &tried).fits;
    };
    // No object is smaller than one pixel of the frame.
    double too_large =
        std::min(blend.placement.zoom, scale * (std::max(frame.width, frame.height) + 1.0));
    while (!fits(too_large / 2.0)) {
        too_large /= 2.0;
        if (too_large < 1e-6) throw Error(Exit::cannot_place, "no zoom fits the object");
    }
    // Whole multiples of `step`, which has the fourth digit of the zoom.
    const int decimals = 3 - static_cast<int>(std::floor(std::log10(too_large)));
    const double step = std::pow(10.0, -decimals);
    auto low = static_cast<int64_t>(std::floor(too_large / 2.0 / step));
    auto high = static_cast<int64_t>(std::ceil(too_large / step));
    while (high - low > 1) {
        const int64_t middle = low + (high - low) / 2;
        (fits(static_cast<double>(middle) * step) ? low : high) = middle;
    }
    char digits[64];
    std::snprintf(digits, sizeof digits, "%.*f", std::max(decimals, 0),
                  static_cast<double>(low) * step);
    return digits;
}

std::string moves_text(const BareBlend& blend) {
    const blend_box& box = blend.plan->blend.box;
    if (!blend.plan->blend.fits) return "";
    const int64_t right = box.left - box.wanted_left;
    const int64_t down = box.top - box.wanted_top;
    std::vector<std::string> moves;
    if (right != 0) {
        moves.push_back(pixels(std::abs(right)) + (right > 0 ? " to the right" : " to the left"));
    }
    if (down != 0) moves.push_back(pixels(std::abs(down)) + (down > 0 ? " down" : " up"));
    return list(moves);
}

void warn_of_placement(const BlendJob& job, const BareBlend& blend) {
    const std::string& name = job.output.empty() ? job.destination : job.output;
    if (blend.framed.scale != 1.0) {
        warn(job.object.source + ": the object (" + text(find_box_size(blend.object.mask)) +
             ") does not lie in a frame of the destination's size (" + text(blend.framed.frame) +
             "): the source is scaled by " + short_text(blend.framed.scale) +
             " before it is blended");
    }
    const std::vector<std::string> seams = seams_of(blend);
    if (!seams.empty()) {
        warn(name + ": a seam may show at the " + list(seams) +
             ": the object is too near to the border there");
    }
    if (!blend.plan->check.fits) {
        warn(name + ": the turned object nearly fills the destination: a seam may show");
    }
    const std::string moves = moves_text(blend);
    if (!moves.empty()) warn(name + ": the object is moved inwards by " + moves);
}

void blend_bare(const BareBlend& blend, const Frame& icon, const Frame& destination,
                const Frame& output) {
    if (!blend.plan->blend.fits) {
        throw Error(Exit::cannot_place,
                    "--zoom " + short_text(blend.placement.zoom) +
                        ": the object does not fit into the destination; the largest zoom that "
                        "fits is " +
                        largest_zoom(blend));
    }
    const blend_image icon_record = icon.record();
    const blend_image mask = blend.mask.record();
    const blend_image destination_record = destination.record();
    blend_image output_record = output.record();
    if (vorn_imageBlending(&icon_record, &destination_record, &mask, &output_record, 0, 0,
                           blend.plan->center_x, blend.plan->center_y,
                           static_cast<float>(blend.framed.zoom), blend.placement.angle) != 0) {
        throw Error(Exit::internal,
                    "not enough memory to blend a frame of " + text(destination.size));
    }
}

}  // namespace tool
