// SPDX-License-Identifier: Apache-2.0
#include "pictures/placement.h"

#include <charconv>
#include <cmath>
#include <cstdio>

#include "pictures/errors.h"

namespace tool {
namespace {

constexpr double largest_coordinate = 1e9;

double pixels_of(const Coordinate& coordinate, int side) {
    return coordinate.percent ? coordinate.value / 100.0 * side : coordinate.value;
}

std::string number_text(double number) {
    char digits[64];
    std::snprintf(digits, sizeof digits, "%.10g", number);
    return digits;
}

}  // namespace

Coordinate parse_coordinate(const std::string& text) {
    Coordinate coordinate;
    const char* const end = text.data() + text.size();
    const bool percent = !text.empty() && text.back() == '%';
    const auto parsed = std::from_chars(text.data(), end, coordinate.value);
    const bool whole = coordinate.value == std::floor(coordinate.value);
    if (parsed.ec != std::errc() || parsed.ptr != end - (percent ? 1 : 0) ||
        !(std::abs(coordinate.value) <= largest_coordinate) || (!whole && !percent)) {
        throw Error(Exit::usage, text + ": must be a whole number of pixels or a percentage");
    }
    coordinate.percent = percent;
    return coordinate;
}

Position parse_position(const std::string& text) {
    const size_t comma = text.find(',');
    try {
        if (comma != std::string::npos) {
            return {parse_coordinate(text.substr(0, comma)),
                    parse_coordinate(text.substr(comma + 1))};
        }
    } catch (const Error&) {  // NOLINT(bugprone-empty-catch)
    }
    throw Error(Exit::usage, "--at " + text + ": must be two whole numbers or percentages, X,Y");
}

Anchor parse_anchor(const std::string& name) {
    if (name == "centre" || name == "center") return Anchor::centre;
    if (name == "left") return Anchor::left;
    if (name == "right") return Anchor::right;
    if (name == "top") return Anchor::top;
    if (name == "bottom") return Anchor::bottom;
    throw Error(Exit::usage, "--anchor " + name + ": must be centre, left, right, top or bottom");
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
    // The middle as the library's own callers would name it, a whole pixel.
    Point at{static_cast<double>(destination.width / 2),
             static_cast<double>(destination.height / 2)};
    if (arguments.at) {
        at = {pixels_of((*arguments.at)[0], destination.width),
              pixels_of((*arguments.at)[1], destination.height)};
    }
    return {at, arguments.anchor, arguments.zoom, angle};
}

std::string text(const Point& point) {
    return number_text(point.x) + "," + number_text(point.y);
}

std::string list(const std::vector<std::string>& words) {
    std::string result;
    for (size_t i = 0; i < words.size(); i++) {
        if (i > 0) result += i + 1 == words.size() ? " and " : ", ";
        result += words[i];
    }
    return result;
}

}  // namespace tool
