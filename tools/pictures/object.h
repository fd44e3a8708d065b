// SPDX-License-Identifier: Apache-2.0
// The object that is to be pasted: a picture and the mask that marks the object in it.
#ifndef IMAGEBLEND_TOOLS_PICTURES_OBJECT_H
#define IMAGEBLEND_TOOLS_PICTURES_OBJECT_H

#include <imageblend.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>
#include <vips/vips8>

#include "pictures/picture.h"

namespace tool {

struct ObjectArguments {
    std::string source;
    std::string mask;   // empty: the alpha channel of the source
    bool soft = false;  // keep the values of the mask instead of cutting it at 128
};

struct Object {
    std::string mask_name;  // for messages
    vips::VImage picture;   // null unless it was asked for
    vips::VImage mask;      // one 8-bit band in memory, of the picture's size
    bool soft;
    bool own_alpha;  // the mask is the picture's alpha channel
};

enum class Wanted { mask, mask_and_picture };
// Fails when there is no mask, when it has not the picture's size, or when it holds no object.
// The picture comes in the colours of the destination.
Object load_object(const ObjectArguments& arguments, Wanted wanted, const Photo& destination = {});

// 255 from 128 on and 0 below; a soft mask stays as it is. In memory.
vips::VImage cut_mask(const vips::VImage& mask, bool soft);
// The record that the library takes; it points into the mask, which must be in memory.
blend_image mask_record(const vips::VImage& mask);

// The size that the library reports for the object.
Size find_box_size(const vips::VImage& mask);

// Columns begin .. end - 1; empty where end is not above begin.
struct Span {
    int begin;
    int end;
};

// The object's bounding box, and for each of its rows the columns that the object lies between.
struct Outline {
    int left = 0;
    int top = 0;
    int width = 0;  // 0: no object
    std::vector<Span> rows;
    int height() const { return static_cast<int>(rows.size()); }
};
Outline find_outline(const vips::VImage& mask);

struct Pixel {
    int x;
    int y;
};

// In pixels from the top left corner.
struct Point {
    double x;
    double y;
};
Point middle_of(const Outline& outline);

// Of an angle in degrees, counter-clockwise; exactly 1 and 0 for 0.
struct Turn {
    double cosine, sine;
};
Turn turn_by(double angle_degrees);

// How far the object reaches from a point that it is turned about, and the pixels of the unturned
// mask that reach so far: left, right, up, down. Nothing is below 0.
struct Reach {
    std::array<double, 4> distance;
    std::array<Pixel, 4> pixel;
};
Reach find_reach(const Outline& outline, const Point& centre, double angle_degrees);

}  // namespace tool

#endif
