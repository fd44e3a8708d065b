// SPDX-License-Identifier: Apache-2.0
// Where the object is to stand in the destination: arguments and their meaning.
#ifndef IMAGEBLEND_TOOLS_PICTURES_PLACEMENT_H
#define IMAGEBLEND_TOOLS_PICTURES_PLACEMENT_H

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "pictures/object.h"

namespace tool {

// A column or a row of the destination, or a part of its width or height.
struct Coordinate {
    double value = 0.0;
    bool percent = false;
};

using Position = std::array<Coordinate, 2>;  // across and down

// The point of the object that stands at the position: its middle, or the middle of a side.
enum class Anchor { centre, left, right, top, bottom };

struct PlacementArguments {
    std::optional<Position> at;  // the middle of the destination when not given
    Anchor anchor = Anchor::centre;
    double zoom = 1.0;
    double angle = 0.0;  // degrees, counter-clockwise
};

struct Placement {
    Point at;  // in pixels from the destination's top left corner
    Anchor anchor;
    double zoom;  // of the picture as given
    float angle;
};

// "X" or "X%".
Coordinate parse_coordinate(const std::string& text);
// "X,Y" of the argument --at.
Position parse_position(const std::string& text);
// "centre", "left", "right", "top" or "bottom".
Anchor parse_anchor(const std::string& name);
// Checks the values.
Placement place(const PlacementArguments& arguments, const Size& destination);

// "320,240.5"
std::string text(const Point& point);
// "left, top and bottom"
std::string list(const std::vector<std::string>& words);

}  // namespace tool

#endif
