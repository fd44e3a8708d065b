// SPDX-License-Identifier: Apache-2.0
// A page of pictures, boxes and captions that grows downwards.
#ifndef IMAGEBLEND_TOOLS_EXPLAIN_PAGE_H
#define IMAGEBLEND_TOOLS_EXPLAIN_PAGE_H

#include <string>
#include <vector>
#include <vips/vips8>

#include "explain/stages.h"
#include "pictures/picture.h"

namespace tool {

using Ink = std::vector<double>;  // red, green, blue
const Ink black_ink{25, 25, 25};
const Ink grey_ink{105, 105, 105};

constexpr int page_width = 1600;
constexpr int gap = 24;
constexpr int caption_height = 22;
constexpr const char* head_font = "sans bold 12";
constexpr const char* text_font = "sans 10";

// The name of a file as readable text, the end of a long one left out.
std::string file_name(const std::string& path);

// Colour pictures of a plane: its last three channels, or its mask in grey.
vips::VImage image_of(const Plane& plane);

// Scaled to exactly this size; enlarged pixels stay visible.
vips::VImage scale_to(const vips::VImage& image, const Size& size);
// The largest size with the picture's proportions that lies in the limits.
Size fit_size(const Size& size, const Size& limit, double largest_scale);

// Lines and crosses on a picture in memory, with a dark edge that keeps them visible anywhere.
// Half-open lines: [from, to) of the other axis.
void draw_box(const vips::VImage& image, const Rectangle& box, const Ink& ink);
void draw_side(const vips::VImage& image, const Rectangle& box, const std::string& side,
               const Ink& ink);
void draw_cross(const vips::VImage& image, int x, int y, const Ink& ink);

// Draws the edge of a mask of the picture's size, where it passes 128.
vips::VImage draw_outline(const vips::VImage& picture, const vips::VImage& mask, const Ink& ink);

class Page {
  public:
    explicit Page(int width) : width_(width) {}
    // Returns the row below the picture.
    int put(const vips::VImage& picture, int left, int top);
    // Plain text, wrapped at a width above 0. Returns its size.
    Size write(const std::string& text, int left, int top, const Ink& ink, const char* font,
               int wrap = 0);
    // A patch of colour with its meaning. Returns the column behind it.
    int write_key(const std::string& text, int left, int top, const Ink& ink);
    vips::VImage render() const;

  private:
    struct Item {
        vips::VImage image;
        Ink ink;  // empty: a picture, otherwise the shape of a text
        int left, top;
    };
    int width_;
    int height_ = 0;
    std::vector<Item> items_;
};

}  // namespace tool

#endif
