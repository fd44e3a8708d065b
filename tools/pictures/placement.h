// Where the object stands in the destination: arguments, the library's verdict, the zooms that fit.
#ifndef IMAGEBLEND_TOOLS_PICTURES_PLACEMENT_H
#define IMAGEBLEND_TOOLS_PICTURES_PLACEMENT_H

#include <optional>
#include <string>
#include <vector>

#include "pictures/frames.h"
#include "pictures/picture.h"

namespace tool {

struct PlacementArguments {
    std::optional<Pixel> at;  // the middle of the destination when not given
    double zoom = 1.0;
    double angle = 0.0;  // degrees, counter-clockwise
};

struct Placement {
    Pixel centre;
    double zoom;  // of the picture as given
    float angle;
};

// "X,Y" of the argument --at.
Pixel parse_pixel(const std::string& text);
// Checks the values.
Placement place(const PlacementArguments& arguments, const Size& destination);

struct Verdict {
    bool fits;
    std::vector<std::string> seams;  // the sides at which the margin is missing
};
Verdict verify(const Frame& mask, const Placement& placement, double zoom);
std::string list(const std::vector<std::string>& words);

// The largest zoom of the picture as given that the library accepts, to three or four digits, never
// rounded up. For a placement that does not fit.
std::string largest_zoom(const Frame& mask, const Placement& placement, double scale);

// What the blend does with a placement, all in pixels of the destination.
struct Geometry {
    Pixel centre;     // to be passed on so that the object's middle stands at the placement
    int moved_right;  // the rectangle is moved inwards by as much; negative to the left
    int moved_down;   // negative upwards
};
Geometry foresee(const FramedObject& object, const Placement& placement);

}  // namespace tool

#endif
