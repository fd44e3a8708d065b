// SPDX-License-Identifier: Apache-2.0
#include "pictures/layer.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "pictures/errors.h"

namespace tool {
namespace {

using vips::VImage;

// From pixels of a picture to pixels of the destination, both from the top left corner: turned and
// scaled about `from`, which comes to stand at `to`.
struct Transform {
    Point from, to;
    double zoom;
    Turn turn;
    bool moves_only() const { return zoom == 1.0 && turn.sine == 0.0 && turn.cosine == 1.0; }
};

// Half-open, in the destination.
struct Extent {
    double left, top, right, bottom;
};

Extent extent_of(const Transform& transform, const Reach& reach) {
    const auto& [left, right, up, down] = reach.distance;
    return {transform.to.x - left * transform.zoom, transform.to.y - up * transform.zoom,
            transform.to.x + right * transform.zoom, transform.to.y + down * transform.zoom};
}

// From the middle of the object to its anchor, in the destination.
Point anchor_offset(Anchor anchor, const Reach& reach, double zoom) {
    const auto& [left, right, up, down] = reach.distance;
    switch (anchor) {
        case Anchor::left:
            return {-left * zoom, 0.0};
        case Anchor::right:
            return {right * zoom, 0.0};
        case Anchor::top:
            return {0.0, -up * zoom};
        case Anchor::bottom:
            return {0.0, down * zoom};
        default:
            return {0.0, 0.0};
    }
}

Transform find_transform(const CleanObject& clean, const Placement& placement, const Reach& reach) {
    const Point offset = anchor_offset(placement.anchor, reach, placement.zoom);
    Transform transform{middle_of(clean.outline),
                        {placement.at.x - offset.x, placement.at.y - offset.y},
                        placement.zoom,
                        turn_by(static_cast<double>(placement.angle))};
    if (transform.moves_only()) {
        // To whole pixels.
        const Point from = transform.from, to = transform.to;
        transform.to = {from.x + std::floor(to.x - from.x), from.y + std::floor(to.y - from.y)};
    }
    return transform;
}

// Whole pixels of the destination around an extent, and around a side that lies far outside.
struct Window {
    int left, top, width, height;
};

Window window_around(const Extent& extent, const Size& destination, int reach) {
    // Surroundings fade towards the end of their picture too, which must not be that of the window.
    const int room = 2 * reach + 2;
    const auto inside = [&](double position, int side) {
        return static_cast<int>(std::clamp<double>(position, -room, side + room));
    };
    const int left = inside(std::floor(extent.left) - room, destination.width);
    const int top = inside(std::floor(extent.top) - room, destination.height);
    return {left, top, inside(std::ceil(extent.right) + room, destination.width) - left,
            inside(std::ceil(extent.bottom) + room, destination.height) - top};
}

// Means of n x n pixels; the transform then starts from these.
VImage shrink(const VImage& image, int n, Transform& transform) {
    const int width = (image.width() + n - 1) / n * n;
    const int height = (image.height() + n - 1) / n * n;
    transform.from = {transform.from.x / n, transform.from.y / n};
    transform.zoom *= n;
    return image.embed(0, 0, width, height, VImage::option()->set("extend", VIPS_EXTEND_BLACK))
        .shrink(n, n);
}

// Takes away what is finer than the pixels of a scale between a half and 1.
VImage soften(const VImage& image, double scale) {
    const double sigma = 0.45 * std::sqrt(1.0 / (scale * scale) - 1.0);
    if (sigma < 0.1) return image;
    return image.gaussblur(sigma, VImage::option()->set("min_ampl", 0.01));
}

// The window of a picture with alpha, scaled and turned. Colours are weighed by alpha.
VImage resample(const VImage& image, Transform transform, const Window& window) {
    VImage from = image.premultiply();
    const double n = std::floor(1.0 / transform.zoom);
    if (n >= 2.0) from = shrink(from, static_cast<int>(n), transform);
    if (transform.zoom < 1.0) from = soften(from, transform.zoom);
    const double across = transform.zoom * transform.turn.cosine;
    const double along = transform.zoom * transform.turn.sine;
    // libvips counts from the middle of the first pixel.
    const VImage turned = from.affine(
        {across, along, -along, across},
        VImage::option()
            ->set("interpolate", vips::VInterpolate::new_from_name("bicubic"))
            ->set("oarea", std::vector<int>{window.left, window.top, window.width, window.height})
            ->set("idx", 0.5 - transform.from.x)
            ->set("idy", 0.5 - transform.from.y)
            ->set("odx", transform.to.x - 0.5)
            ->set("ody", transform.to.y - 0.5)
            ->set("premultiplied", true)
            ->set("background", std::vector<double>{0, 0, 0, 0}));
    return turned.unpremultiply().rint().cast(VIPS_FORMAT_UCHAR);
}

VImage move(const VImage& image, const Transform& transform, const Window& window) {
    const double left = transform.to.x - transform.from.x - window.left;
    const double top = transform.to.y - transform.from.y - window.top;
    return image.embed(static_cast<int>(std::lround(left)), static_cast<int>(std::lround(top)),
                       window.width, window.height);
}

Frame into_window(const VImage& image, const Transform& transform, const Window& window) {
    return colour_frame(transform.moves_only() ? move(image, transform, window)
                                               : resample(image, transform, window));
}

// The source around the object, opaque, with what surroundings can need of it.
Frame surroundings_in(const CleanObject& clean, const VImage& picture, Transform transform,
                      const Window& window, int reach) {
    const double around = std::min(std::ceil(2 * reach / transform.zoom) + 4.0, 1e6);
    const int spare = static_cast<int>(around);
    const int left = std::max(clean.box.left - spare, 0);
    const int top = std::max(clean.box.top - spare, 0);
    const int right = std::min(clean.box.left + clean.box.width + spare, picture.width());
    const int bottom = std::min(clean.box.top + clean.box.height + spare, picture.height());
    transform.from.x += clean.box.left - left;
    transform.from.y += clean.box.top - top;
    const VImage part = picture.extract_band(0, VImage::option()->set("n", 3))
                            .extract_area(left, top, right - left, bottom - top);
    return into_window(part.bandjoin(255.0), transform, window);
}

std::vector<std::string> sides_cut(const Extent& extent, const Size& destination) {
    std::vector<std::string> sides;
    if (extent.left < 0.0) sides.emplace_back("left");
    if (extent.right > destination.width) sides.emplace_back("right");
    if (extent.top < 0.0) sides.emplace_back("top");
    if (extent.bottom > destination.height) sides.emplace_back("bottom");
    return sides;
}

void check_size(const Outline& outline, double zoom) {
    if (std::max(outline.width, outline.height()) * zoom >= 1.0) return;
    throw Error(Exit::cannot_place, "--zoom " + short_text(zoom) + ": the object of " +
                                        text(Size{outline.width, outline.height()}) +
                                        " would be smaller than a pixel");
}

void check_place(const Extent& extent, const Placement& placement, const Size& destination) {
    if (extent.right > 0.0 && extent.bottom > 0.0 && extent.left < destination.width &&
        extent.top < destination.height) {
        return;
    }
    throw Error(Exit::cannot_place, "--at " + text(placement.at) +
                                        ": the object would lie outside of the destination (" +
                                        text(destination) + ")");
}

}  // namespace

Layer make_layer(const CleanObject& clean, const VImage& picture, const Placement& placement,
                 const Size& destination, int reach) {
    check_size(clean.outline, placement.zoom);
    const auto angle = static_cast<double>(placement.angle);
    const Reach reached = find_reach(clean.outline, middle_of(clean.outline), angle);
    const Transform transform = find_transform(clean, placement, reached);
    const Extent extent = extent_of(transform, reached);
    check_place(extent, placement, destination);

    // Soft parts, such as a shadow, reach beyond the outline.
    const Reach soft = find_reach(clean.soft_outline, transform.from, angle);
    const int widest = reach < 0 ? IMAGEBLEND_SURROUNDINGS_WIDEST : reach;
    const Window window = window_around(extent_of(transform, soft), destination, widest);
    Layer layer{into_window(clean.image, transform, window),
                {},
                window.left,
                window.top,
                reach,
                sides_cut(extent, destination)};
    if (reach != 0) {
        layer.surroundings = surroundings_in(clean, picture, transform, window, widest);
    }
    return layer;
}

LayerRecords::LayerRecords(const Layer& from)
    : object(from.object.record()),
      surroundings(from.surroundings.record()),
      layer{&object, from.surroundings.bytes ? &surroundings : nullptr, from.reach, from.left,
            from.top} {}

}  // namespace tool
