// SPDX-License-Identifier: Apache-2.0
#include "pictures/bare_frames.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "blend/depth.h"
#include "pictures/errors.h"

namespace tool {
namespace {

using vips::VImage;

// Kept free between the object and the edge of its frame.
constexpr int spare_pixels = 4;

// Marks an anchor in the mask. Anything above 0 counts as a part of the object, but a weight of
// 1/255 shows nothing of it.
constexpr uint8_t anchor_value = 1;

double side_limit(int frame_side, double before, double after, double unturned_side) {
    const double spare = std::min(spare_pixels, frame_side / 8);
    const double half = std::max({before, after, unturned_side / 2.0});
    return (frame_side / 2.0 - spare) / half;
}

// The largest scale at which the object lies in the frame.
double scale_limit(const Outline& outline, const Reach& reach, const Size& frame) {
    return std::min(
        side_limit(frame.width, reach.distance[0], reach.distance[1], outline.width),
        side_limit(frame.height, reach.distance[2], reach.distance[3], outline.height()));
}

// A triangle filter: it has no overshoot that would widen a soft mask.
VImage scale_mask(const VImage& mask, double scale) {
    return mask.resize(scale, VImage::option()->set("kernel", VIPS_KERNEL_LINEAR));
}

VImage scale_picture(const VImage& picture, double scale) {
    if (!picture.has_alpha()) return picture.resize(scale);
    return picture.premultiply().resize(scale).unpremultiply().rint().cast(VIPS_FORMAT_UCHAR);
}

// Where the mask's or picture's top left pixel lies in the frame.
Pixel offset_in_frame(const FramedObject& object) {
    return {(object.frame.width - object.outline.width) / 2 - object.outline.left,
            (object.frame.height - object.outline.height()) / 2 - object.outline.top};
}

VImage into_frame(const VImage& image, const FramedObject& object, VipsExtend beyond) {
    const Pixel offset = offset_in_frame(object);
    return image.embed(offset.x, offset.y, object.frame.width, object.frame.height,
                       VImage::option()->set("extend", beyond));
}

// The blend centres its box of the turned object on the point that the object was turned about, and
// would cut off what a lopsided object reaches beyond it. An anchor opposite to the farthest pixel
// widens the box to both sides alike. The margins make up for small differences.
void find_anchors(FramedObject& object, const Reach& reach) {
    const auto& [left, right, up, down] = reach.distance;
    const Outline& outline = object.outline;
    const auto shorter = static_cast<int32_t>(std::lround(std::min(left + right, up + down)));
    const int margin = margin_of_level(depth_of_side(shorter, BASE_LEVEL, true));
    for (size_t side = 0; side < 4; side++) {
        const size_t opposite = side ^ 1U;
        if (reach.distance[side] - reach.distance[opposite] <= margin) continue;
        object.anchors.push_back({2 * outline.left + outline.width - 1 - reach.pixel[side].x,
                                  2 * outline.top + outline.height() - 1 - reach.pixel[side].y});
    }
}

// 3 x 3 pixels, as turning a frame may miss a single one, kept inside the object's box.
void draw_anchor(const Frame& mask, const FramedObject& object, const Pixel& anchor) {
    const Pixel offset = offset_in_frame(object);
    const Outline& box = object.outline;
    for (int y = std::max(anchor.y - 1, box.top);
         y <= std::min(anchor.y + 1, box.top + box.height() - 1); y++) {
        for (int x = std::max(anchor.x - 1, box.left);
             x <= std::min(anchor.x + 1, box.left + box.width - 1); x++) {
            uint8_t& value = mask.bytes.get()[static_cast<size_t>(y + offset.y) *
                                                  static_cast<size_t>(mask.size.width) +
                                              static_cast<size_t>(x + offset.x)];
            value = std::max(value, anchor_value);
        }
    }
}

// Gives transparent pixels of a row the colour of the nearest other pixel; false if there is none.
bool fill_row(uint8_t* row, ptrdiff_t width) {
    ptrdiff_t last = -1;  // the last pixel that is not transparent
    for (ptrdiff_t x = 0; x <= width; x++) {
        if (x < width && row[x * 4] == 0) continue;
        for (ptrdiff_t gap = last + 1; gap < x; gap++) {
            const bool from_left = last >= 0 && (x == width || gap - last <= x - gap);
            if (!from_left && x == width) return false;
            std::memcpy(row + gap * 4 + 1, row + (from_left ? last : x) * 4 + 1, 3);
        }
        last = x;
    }
    return true;
}

// Rows without any colour repeat the nearest row that has some.
void fill_transparent(const Frame& frame) {
    const size_t row_bytes = static_cast<size_t>(frame.size.width) * 4;
    uint8_t* const bytes = frame.bytes.get();
    int last = -1;
    for (int y = 0; y <= frame.size.height; y++) {
        const bool end = y == frame.size.height;
        if (!end && !fill_row(bytes + static_cast<size_t>(y) * row_bytes, frame.size.width)) {
            continue;
        }
        if (end && last < 0) return;
        for (int gap = last + 1; gap < y; gap++) {
            const bool from_above = last >= 0 && (end || gap - last <= y - gap);
            std::memcpy(bytes + static_cast<size_t>(gap) * row_bytes,
                        bytes + static_cast<size_t>(from_above ? last : y) * row_bytes, row_bytes);
        }
        last = y;
    }
}

}  // namespace

FramedObject fit_object(const Object& object, const Size& frame, double zoom,
                        double angle_degrees) {
    FramedObject framed;
    framed.frame = frame;
    framed.mask = object.mask;
    framed.outline = find_outline(object.mask);
    Reach reach = find_reach(framed.outline, middle_of(framed.outline), angle_degrees);
    const double limit = scale_limit(framed.outline, reach, frame);
    framed.scale = limit >= 1.0 ? 1.0 : std::min(limit, zoom);
    framed.zoom = zoom / framed.scale;
    if (framed.scale < 1.0) {
        const bool sides_left =
            std::min(object.mask.width(), object.mask.height()) * framed.scale >= 1.0;
        if (sides_left) {
            framed.mask = cut_mask(scale_mask(object.mask, framed.scale), object.soft);
            framed.outline = find_outline(framed.mask);
        }
        if (!sides_left || framed.outline.width == 0) {
            throw Error(Exit::cannot_place,
                        object.mask_name + ": nothing is left of the object when it is scaled by " +
                            short_text(framed.scale) + " for a frame of " + text(frame));
        }
        reach = find_reach(framed.outline, middle_of(framed.outline), angle_degrees);
    }
    find_anchors(framed, reach);
    return framed;
}

Frame mask_frame(const FramedObject& object) {
    Frame mask = to_frame(into_frame(object.mask, object, VIPS_EXTEND_BLACK));
    for (const Pixel& anchor : object.anchors)
        draw_anchor(mask, object, anchor);
    return mask;
}

Frame icon_frame(const FramedObject& object, const VImage& picture) {
    const VImage scaled = object.scale == 1.0 ? picture : scale_picture(picture, object.scale);
    Frame frame = colour_frame(into_frame(scaled, object, VIPS_EXTEND_COPY));
    if (picture.has_alpha()) fill_transparent(frame);
    return frame;
}

}  // namespace tool
