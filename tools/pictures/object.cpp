// SPDX-License-Identifier: Apache-2.0
#include "pictures/object.h"

#include <algorithm>
#include <cmath>

#include "pictures/errors.h"

namespace tool {
namespace {

using vips::VImage;

constexpr double pi = 3.14159265358979323846;

VImage alpha_of(const VImage& picture, const std::string& path) {
    if (!picture.has_alpha()) {
        throw Error(Exit::bad_data,
                    path + ": has no alpha channel to mark the object; name a mask with --mask");
    }
    return picture.extract_band(picture.bands() - 1);
}

Span find_span(const uint8_t* row, int width) {
    const auto inside = [](uint8_t value) { return value != 0; };
    const uint8_t* const begin = std::find_if(row, row + width, inside);
    const uint8_t* end = row + width;
    while (end > begin && end[-1] == 0)
        end--;
    return {static_cast<int>(begin - row), static_cast<int>(end - row)};
}

}  // namespace

VImage cut_mask(const VImage& mask, bool soft) {
    return (soft ? mask : mask >= 128.0).copy_memory();
}

blend_image mask_record(const VImage& mask) {
    return {mask.width(), mask.height(),
            static_cast<uint8_t*>(const_cast<void*>(mask.data()))};  // the library only reads it
}

Size find_box_size(const VImage& mask) {
    const blend_image record = mask_record(mask);
    Size size{0, 0};
    vorn_get_icon_size(&record, &size.width, &size.height);
    return size;
}

Object load_object(const ObjectArguments& arguments, Wanted wanted, const Photo& destination) {
    Object object;
    object.soft = arguments.soft;
    const bool own_alpha = arguments.mask.empty();
    object.own_alpha = own_alpha;
    if (own_alpha || wanted == Wanted::mask_and_picture) {
        object.picture = load_source(arguments.source, destination);
    }
    VImage mask;
    if (own_alpha) {
        object.mask_name = arguments.source + " (alpha channel)";
        mask = alpha_of(object.picture, arguments.source);
    } else {
        object.mask_name = arguments.mask;
        mask = load_mask(arguments.mask);
        const Size source_size =
            object.picture.is_null() ? picture_size(arguments.source) : size_of(object.picture);
        if (size_of(mask) != source_size) {
            throw Error(Exit::bad_data, arguments.mask + ": the mask is " + text(size_of(mask)) +
                                            ", but " + arguments.source + " is " +
                                            text(source_size));
        }
    }
    object.mask = cut_mask(mask, arguments.soft);
    if (find_outline(object.mask).width == 0) {
        throw Error(Exit::bad_data, object.mask_name + ": marks no object: no value is " +
                                        (arguments.soft ? "above 0" : "128 or more (see --soft)"));
    }
    return object;
}

Outline find_outline(const VImage& mask) {
    const int width = mask.width();
    const auto* const bytes = static_cast<const uint8_t*>(mask.data());
    Outline outline;
    int begin = width;
    int end = 0;
    size_t height = 0;
    for (int y = 0; y < mask.height(); y++) {
        const Span span =
            find_span(bytes + static_cast<size_t>(y) * static_cast<size_t>(width), width);
        const bool empty = span.end <= span.begin;
        if (empty && outline.rows.empty()) continue;
        if (outline.rows.empty()) outline.top = y;
        outline.rows.push_back(span);
        if (empty) continue;
        height = outline.rows.size();
        begin = std::min(begin, span.begin);
        end = std::max(end, span.end);
    }
    outline.rows.resize(height);
    outline.left = begin;
    outline.width = std::max(end - begin, 0);
    return outline;
}

Point middle_of(const Outline& outline) {
    return {outline.left + outline.width / 2.0, outline.top + outline.height() / 2.0};
}

Turn turn_by(double angle_degrees) {
    const double angle = angle_degrees * pi / 180.0;
    return {std::cos(angle), std::sin(angle)};
}

Reach find_reach(const Outline& outline, const Point& centre, double angle_degrees) {
    const auto [cosine, sine] = turn_by(angle_degrees);
    Reach reach{};
    for (int row = 0; row < outline.height(); row++) {
        const Span span = outline.rows[static_cast<size_t>(row)];
        if (span.end <= span.begin) continue;
        for (const int column : {span.begin, span.end}) {
            for (const int edge : {row, row + 1}) {
                const double dx = column - centre.x;
                const double dy = outline.top + edge - centre.y;
                const double x = cosine * dx + sine * dy;
                const double y = cosine * dy - sine * dx;
                const std::array<double, 4> distance{-x, x, -y, y};
                for (size_t side = 0; side < 4; side++) {
                    if (distance[side] <= reach.distance[side]) continue;
                    reach.distance[side] = distance[side];
                    reach.pixel[side] = {std::min(column, span.end - 1), outline.top + row};
                }
            }
        }
    }
    return reach;
}

}  // namespace tool
