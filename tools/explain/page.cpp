// SPDX-License-Identifier: Apache-2.0
#include "explain/page.h"

#include <algorithm>
#include <cmath>

namespace tool {
namespace {

using vips::VImage;

constexpr int line_width = 3;
constexpr int border = 20;
constexpr int key_size = 14;
constexpr const char* key_font = "sans 10";

void fill(const VImage& image, const Ink& ink, const Rectangle& area) {
    if (area.width < 1 || area.height < 1) return;
    image.draw_rect(ink, area.left, area.top, area.width, area.height,
                    VImage::option()->set("fill", true));
}

// A line with a dark edge of one pixel.
void draw_line(const VImage& image, const Ink& ink, const Rectangle& line) {
    fill(image, {0, 0, 0}, {line.left - 1, line.top - 1, line.width + 2, line.height + 2});
    fill(image, ink, line);
}

VImage text_shape(const std::string& text, const char* font, int wrap) {
    char* const markup = g_markup_escape_text(text.c_str(), -1);
    vips::VOption* const options = VImage::option()->set("font", font)->set("dpi", 96);
    if (wrap > 0) options->set("width", wrap);
    try {
        VImage shape = VImage::text(markup, options);
        g_free(markup);
        return shape;
    } catch (const vips::VError&) {
        g_free(markup);
        throw;
    }
}

}  // namespace

std::string file_name(const std::string& path) {
    constexpr long longest = 32;
    char* const whole = g_filename_display_basename(path.c_str());
    const bool fits = g_utf8_strlen(whole, -1) <= longest;
    char* const part = g_utf8_substring(whole, 0, fits ? g_utf8_strlen(whole, -1) : longest - 1);
    std::string name = std::string(part) + (fits ? "" : "…");
    g_free(part);
    g_free(whole);
    return name;
}

VImage draw_outline(const VImage& picture, const VImage& mask, const Ink& ink) {
    const VImage inside = mask.extract_band(0) >= 128.0;
    const VImage edge = inside.rank(3, 3, 8) - inside.rank(3, 3, 0);
    return edge.ifthenelse(ink, picture).cast(VIPS_FORMAT_UCHAR).copy_memory();
}

VImage image_of(const Plane& plane) {
    // Only read.
    const VImage image =
        VImage::new_from_memory(const_cast<uint8_t*>(plane.bytes.data()), plane.bytes.size(),
                                plane.width, plane.height, plane.channels, VIPS_FORMAT_UCHAR);
    VImage colour;
    if (plane.channels == 1) {
        colour = image.bandjoin(image).bandjoin(image);
    } else {
        colour = image.extract_band(plane.channels - 3, VImage::option()->set("n", 3));
    }
    // In memory of its own, as the plane may go away.
    return colour.copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB))
        .copy_memory();
}

VImage scale_to(const VImage& image, const Size& size) {
    const double across = static_cast<double>(size.width) / image.width();
    const double down = static_cast<double>(size.height) / image.height();
    const VImage scaled = image.resize(
        across, VImage::option()
                    ->set("vscale", down)
                    ->set("kernel", across > 1.0 ? VIPS_KERNEL_NEAREST : VIPS_KERNEL_LINEAR));
    return scaled
        .embed(0, 0, size.width, size.height, VImage::option()->set("extend", VIPS_EXTEND_COPY))
        .copy_memory();
}

Size fit_size(const Size& size, const Size& limit, double largest_scale) {
    const double scale = std::min({static_cast<double>(limit.width) / size.width,
                                   static_cast<double>(limit.height) / size.height, largest_scale});
    return {std::max(1, static_cast<int>(std::lround(size.width * scale))),
            std::max(1, static_cast<int>(std::lround(size.height * scale)))};
}

void draw_side(const VImage& image, const Rectangle& box, const std::string& side, const Ink& ink) {
    const int right = box.left + box.width;
    const int bottom = box.top + box.height;
    if (side == "left") draw_line(image, ink, {box.left, box.top, line_width, box.height});
    if (side == "right") {
        draw_line(image, ink, {right - line_width, box.top, line_width, box.height});
    }
    if (side == "top") draw_line(image, ink, {box.left, box.top, box.width, line_width});
    if (side == "bottom") {
        draw_line(image, ink, {box.left, bottom - line_width, box.width, line_width});
    }
}

void draw_box(const VImage& image, const Rectangle& box, const Ink& ink) {
    for (const char* const side : {"left", "right", "top", "bottom"})
        draw_side(image, box, side, ink);
    // Again without the dark edges that cross at the corners.
    fill(image, ink, {box.left, box.top, line_width, box.height});
    fill(image, ink, {box.left + box.width - line_width, box.top, line_width, box.height});
}

void draw_cross(const VImage& image, int x, int y, const Ink& ink) {
    constexpr int arm = 9;
    const Rectangle across{x - arm, y - 1, 2 * arm + 1, line_width};
    const Rectangle down{x - 1, y - arm, line_width, 2 * arm + 1};
    draw_line(image, ink, across);
    draw_line(image, ink, down);
    fill(image, ink, across);
}

int Page::put(const VImage& picture, int left, int top) {
    items_.push_back({picture, {}, left, top});
    height_ = std::max(height_, top + picture.height());
    return top + picture.height();
}

Size Page::write(const std::string& text, int left, int top, const Ink& ink, const char* font,
                 int wrap) {
    VImage shape = text_shape(text, font, wrap);
    items_.push_back({shape, ink, left, top});
    height_ = std::max(height_, top + shape.height());
    return size_of(shape);
}

int Page::write_key(const std::string& text, int left, int top, const Ink& ink) {
    const VImage patch = (VImage::black(key_size, key_size) + ink).cast(VIPS_FORMAT_UCHAR);
    put(patch, left, top);
    const Size size = write(text, left + key_size + 6, top + 1, black_ink, key_font);
    return left + key_size + 6 + size.width + 18;
}

VImage Page::render() const {
    VImage page =
        (VImage::black(width_, height_ + border, VImage::option()->set("bands", 3)) + 247.0)
            .cast(VIPS_FORMAT_UCHAR)
            .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB))
            .copy_memory();
    for (const Item& item : items_) {
        if (item.ink.empty()) {
            page.draw_image(item.image, item.left, item.top);
        } else {
            page.draw_mask(item.ink, item.image, item.left, item.top);
        }
    }
    return page;
}

}  // namespace tool
