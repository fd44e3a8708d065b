#include "pictures/placement.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>

#include "pictures/errors.h"
#include "pictures/log_listener.h"

namespace tool {
namespace {

int clamp_to_int(double value) {
    const double limit = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(value, -limit, limit));
}

int32_t ask_library(const Frame& mask, const Placement& placement, double zoom) {
    return vorn_verify_icon_pos(mask.bytes.get(), mask.size.width, mask.size.height, 0, 0,
                                placement.centre.x, placement.centre.y, static_cast<float>(zoom),
                                placement.angle);
}

// One axis of the blend.
struct Axis {
    int centre;
    int moved;
};

struct AxisInput {
    int frame;
    int place;
    double before;  // reach of the turned object
    double after;
    int margin;
    float zoom;
    bool turned;
};

Axis foresee_axis(const AxisInput& in) {
    const double bare = std::round(in.before + in.after);
    const double begin = std::floor(in.frame / 2.0 - in.before);
    // The frame may cut the margins short, but the blend counts on their full size.
    const double margin_before = std::clamp<double>(begin, 0, in.margin);
    const double margin_after = std::clamp<double>(in.frame - begin - bare, 0, in.margin);
    const double box = bare + margin_before + margin_after;
    const double missing =
        in.turned ? in.margin - (margin_before + margin_after) / 2.0 : in.margin - margin_before;

    Axis axis;
    axis.centre = clamp_to_int(in.place + std::round(missing * in.zoom));
    const double wanted = std::trunc(axis.centre - bare * in.zoom * 0.5) -
                          std::trunc(static_cast<double>(in.margin) * in.zoom);
    const double size = in.zoom == 1.0F ? box : std::trunc(box * in.zoom);
    const double from = std::max(wanted, 1.0);
    const double kept = from + size < in.frame ? from : in.frame - 1 - size;
    axis.moved = clamp_to_int(kept - wanted);
    return axis;
}

}  // namespace

Pixel parse_pixel(const std::string& text) {
    Pixel point{0, 0};
    const char* const end = text.data() + text.size();
    auto parsed = std::from_chars(text.data(), end, point.x);
    if (parsed.ec == std::errc() && parsed.ptr != end && *parsed.ptr == ',') {
        parsed = std::from_chars(parsed.ptr + 1, end, point.y);
        if (parsed.ec == std::errc() && parsed.ptr == end) return point;
    }
    throw Error(Exit::usage, "--at " + text + ": must be two whole numbers, X,Y");
}

Placement place(const PlacementArguments& arguments, const Size& destination) {
    const auto zoom = static_cast<float>(arguments.zoom);
    if (!std::isfinite(zoom) || zoom <= 0.0F) {
        throw Error(Exit::usage, "--zoom " + short_text(arguments.zoom) +
                                     ": must be a number above 0 and below 3.4e38");
    }
    const auto angle = static_cast<float>(arguments.angle);
    if (!std::isfinite(angle)) {
        throw Error(Exit::usage,
                    "--angle " + short_text(arguments.angle) + ": must be a finite number");
    }
    const Pixel middle{destination.width / 2, destination.height / 2};
    return {arguments.at.value_or(middle), arguments.zoom, angle};
}

Verdict verify(const Frame& mask, const Placement& placement, double zoom) {
    LogListener log;
    const int32_t status = ask_library(mask, placement, zoom);
    log.replay();
    if (status < 0 && !log.heard("fital error")) {
        throw Error(Exit::internal,
                    "not enough memory to check a placement in a frame of " + text(mask.size));
    }
    Verdict verdict{status >= 0, {}};
    constexpr const char* sides[][2] = {{"dst pic xl seam", "left"},
                                        {"dst pic xr seam", "right"},
                                        {"dst pic yu seam", "top"},
                                        {"dst pic yd seam", "bottom"}};
    for (const auto& side : sides) {
        if (status == 1 && log.heard(side[0])) verdict.seams.emplace_back(side[1]);
    }
    return verdict;
}

std::string list(const std::vector<std::string>& words) {
    std::string result;
    for (size_t i = 0; i < words.size(); i++) {
        if (i > 0) result += i + 1 == words.size() ? " and " : ", ";
        result += words[i];
    }
    return result;
}

std::string largest_zoom(const Frame& mask, const Placement& placement, double scale) {
    const LogListener silence;
    const auto fits = [&](double zoom) { return ask_library(mask, placement, zoom / scale) >= 0; };
    // No object is smaller than one pixel of the frame.
    double too_large =
        std::min(placement.zoom, scale * (std::max(mask.size.width, mask.size.height) + 1.0));
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

Geometry foresee(const FramedObject& object, const Placement& placement) {
    const auto& [left, right, up, down] = object.reach;
    const int margin =
        margin_around(clamp_to_int(std::round(left + right)), clamp_to_int(std::round(up + down)));
    const auto zoom = static_cast<float>(object.zoom);
    const bool turned = placement.angle != 0.0F;
    const Axis x =
        foresee_axis({object.frame.width, placement.centre.x, left, right, margin, zoom, turned});
    const Axis y =
        foresee_axis({object.frame.height, placement.centre.y, up, down, margin, zoom, turned});
    return {{x.centre, y.centre}, x.moved, y.moved};
}

}  // namespace tool
