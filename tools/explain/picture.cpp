// SPDX-License-Identifier: Apache-2.0
#include "explain/picture.h"

#include <algorithm>
#include <cmath>

#include "pictures/errors.h"

namespace tool {
namespace {

using vips::VImage;

constexpr int half_width = (page_width - 3 * gap) / 2;
constexpr int label_width = 190;

constexpr const char* title_font = "sans bold 17";

const Ink object_ink{60, 220, 90};
const Ink box_ink{255, 205, 40};
const Ink seam_ink{255, 60, 60};
const Ink outline_ink{70, 200, 255};
const Ink place_ink{255, 110, 255};

Rectangle scaled(const Rectangle& box, double factor) {
    const auto at = [&](int position) { return static_cast<int>(std::lround(position * factor)); };
    const int left = at(box.left);
    const int top = at(box.top);
    return {left, top, at(box.left + box.width) - left, at(box.top + box.height) - top};
}

// A panel on the left or right half of the page: where its picture starts and how large it is.
struct Half {
    int left;
    int top;
    double factor;
    VImage picture;
};

Half start_half(Page& page, int left, int top, const std::string& title, const VImage& picture,
                int largest_height = 470) {
    page.write(title, left, top, black_ink, head_font, half_width);
    const Size size = fit_size(size_of(picture), {half_width, largest_height}, 6.0);
    return {left, top + caption_height, static_cast<double>(size.width) / picture.width(),
            scale_to(picture, size)};
}

// Sides of the box at which the margin is short. A turned box stands a pixel or two beside the
// object's middle, which is no lack of room.
std::vector<std::string> short_margins(const BlendStages& stages, bool turned) {
    const Rectangle& object = stages.object;
    const Rectangle& box = stages.box;
    const int wanted = turned ? stages.margin - 2 : stages.margin;
    std::vector<std::string> sides;
    if (object.left - box.left < wanted) sides.emplace_back("left");
    if (box.left + box.width - object.left - object.width < wanted) sides.emplace_back("right");
    if (object.top - box.top < wanted) sides.emplace_back("top");
    if (box.top + box.height - object.top - object.height < wanted) sides.emplace_back("bottom");
    return sides;
}

std::string size_text(const Rectangle& box) {
    return text(Size{box.width, box.height});
}

int add_source(Page& page, int top, int number, const BlendFacts& facts,
               const BlendStages& stages) {
    const VImage source = image_of(stages.source);
    const Half half =
        start_half(page, gap, top,
                   std::to_string(number) + "  Source: " + file_name(facts.source) +
                       facts.source_remark + " in a frame of " + text(size_of(source)),
                   source);
    const VImage mask = scale_to(image_of(stages.source_mask), size_of(half.picture));
    const VImage picture = draw_outline(half.picture, mask, outline_ink);
    const Rectangle box = scaled(stages.box, half.factor);
    draw_box(picture, scaled(stages.object, half.factor), object_ink);
    draw_box(picture, box, box_ink);
    const std::vector<std::string> sides = short_margins(stages, facts.turned);
    for (const std::string& side : sides)
        draw_side(picture, box, side, seam_ink);

    const int below = page.put(picture, gap, half.top) + 8;
    int x = page.write_key("edge of the mask", gap, below, outline_ink);
    x = page.write_key("mask's box, " + size_text(stages.object), x, below, object_ink);
    page.write_key(
        "with margins of " + std::to_string(stages.margin) + ", " + size_text(stages.box), x, below,
        box_ink);
    if (!sides.empty()) {
        page.write_key("short margin (seam) at the " + list(sides), gap, below + caption_height,
                       seam_ink);
    }
    return below + 2 * caption_height;
}

int add_destination(Page& page, int top, int number, const BlendFacts& facts,
                    const BlendPictures& pictures) {
    const BlendStages& stages = pictures.stages;
    const VImage destination = frame_picture(pictures.destination, false);
    const int left = 2 * gap + half_width;
    const Half half =
        start_half(page, left, top,
                   std::to_string(number) + "  Destination: " + file_name(facts.destination) +
                       ", a frame of " + text(size_of(destination)),
                   destination);
    const Rectangle place = scaled(stages.place, half.factor);
    // The object's part of the box, at the zoom that the box got.
    const Rectangle inner =
        scaled({stages.object.left - stages.box.left, stages.object.top - stages.box.top,
                stages.object.width, stages.object.height},
               half.factor * facts.zoom);
    draw_box(half.picture,
             {place.left + inner.left, place.top + inner.top, inner.width, inner.height},
             object_ink);
    draw_box(half.picture, place, box_ink);
    for (const std::string& side : facts.seams)
        draw_side(half.picture, place, side, seam_ink);
    draw_cross(half.picture, static_cast<int>(std::lround(facts.asked.x * half.factor)),
               static_cast<int>(std::lround(facts.asked.y * half.factor)), place_ink);

    const int below = page.put(half.picture, left, half.top) + 8;
    int x = page.write_key("asked for: " + text(facts.placement.at), left, below, place_ink);
    x = page.write_key("mask", x, below, object_ink);
    page.write_key("blended rectangle, " + size_text(stages.place) + " at " +
                       std::to_string(stages.place.left) + "," + std::to_string(stages.place.top),
                   x, below, box_ink);
    page.write_key("verdict: " + facts.verdict, left, below + caption_height,
                   facts.good ? object_ink : seam_ink);
    return below + 2 * caption_height;
}

struct Row {
    const char* name;
    const char* formula;
    VImage (*image)(const BlendStages& stages, size_t level);
};

const Row rows[] = {
    {"mask", "way down →\neach level halves the one before it: 1 4 6 4 1 filter",
     [](const BlendStages& s, size_t l) { return image_of(s.levels[l].mask); }},
    {"source", "way down →\nhalved in the same way",
     [](const BlendStages& s, size_t l) { return image_of(s.levels[l].source); }},
    {"destination", "way down →\nhalved in the same way",
     [](const BlendStages& s, size_t l) { return image_of(s.levels[l].destination); }},
    {"blended Laplacian",
     "level minus expanded coarser level, of source and destination, mixed by the mask: "
     "(m·a + (255−m)·b) / 256",
     [](const BlendStages& s, size_t l) {
         return image_of(visible_laplacian(s, l, s.levels[l].blended_laplacian));
     }},
    {"collapse", "← way up\nblended Laplacian plus the expanded coarser result",
     [](const BlendStages& s, size_t l) { return image_of(s.levels[l].result); }},
};

std::string gain_text(double gain) {
    char digits[32];
    std::snprintf(digits, sizeof digits, "%.1f", gain);
    return digits;
}

int add_levels(Page& page, int top, int number, const BlendStages& stages) {
    const int count = static_cast<int>(stages.levels.size());
    const std::string title =
        count == 1
            ? "Too small for a pyramid: the pictures are mixed by the mask alone"
            : "Pyramids: " + std::to_string(count - 1) + (count == 2 ? " level" : " levels") +
                  " below the full size, enlarged here to one size";
    page.write(std::to_string(number) + "  " + title, gap, top, black_ink, head_font);
    top += caption_height + 4;
    const Plane& finest = stages.levels[0].mask;
    const int column = (page_width - 2 * gap - label_width) / std::max(count, 4);
    const Size cell = fit_size({finest.width, finest.height}, {column - 10, 250}, 8.0);
    for (int l = 0; l < count; l++) {
        const Plane& plane = stages.levels[static_cast<size_t>(l)].mask;
        page.write("level " + std::to_string(l) + ": " + text(Size{plane.width, plane.height}),
                   gap + label_width + l * column, top, black_ink, text_font);
    }
    top += caption_height;
    for (const Row& row : rows) {
        const Size name = page.write(row.name, gap, top, black_ink, head_font, label_width - 14);
        std::string formula = row.formula;
        if (row.image == rows[3].image && count > 1) {
            formula += "; shown ×" + gain_text(stages.gain) + " around grey, the top as it is";
        }
        page.write(formula, gap, top + name.height + 8, grey_ink, text_font, label_width - 14);
        for (int l = 0; l < count; l++) {
            page.put(scale_to(row.image(stages, static_cast<size_t>(l)), cell),
                     gap + label_width + l * column, top);
        }
        top += std::max(cell.height, 130) + 10;
    }
    return top;
}

// The place with some surroundings, inside the frame.
Rectangle surroundings(const Rectangle& place, const Size& frame) {
    const int around = std::max(24, std::max(place.width, place.height) / 10);
    const int left = std::clamp(place.left - around, 0, frame.width - 1);
    const int top = std::clamp(place.top - around, 0, frame.height - 1);
    const int right = std::clamp(place.left + place.width + around, left + 1, frame.width);
    const int bottom = std::clamp(place.top + place.height + around, top + 1, frame.height);
    return {left, top, right - left, bottom - top};
}

void add_results(Page& page, int top, int number, const BlendPictures& pictures) {
    const BlendStages& stages = pictures.stages;
    const VImage output = frame_picture(pictures.output, false);
    const Rectangle area = surroundings(stages.place, size_of(output));
    const auto cut = [&](const VImage& image) {
        return image.extract_area(area.left, area.top, area.width, area.height);
    };
    const int right = 2 * gap + half_width;
    const int height = 640;
    const Half pasted =
        start_half(page, gap, top, std::to_string(number) + "  A plain paste under the mask",
                   cut(image_of(stages.paste)), height);
    const Half blended = start_half(
        page, right, top, std::to_string(number + 1) + "  The blended result", cut(output), height);
    const int below = page.put(pasted.picture, pasted.left, pasted.top) + 8;
    page.put(blended.picture, blended.left, blended.top);
    page.write_key("level 0 of the collapse is the library's own result, byte for byte", right,
                   below, object_ink);
}

}  // namespace

int add_title(Page& page, const BlendFacts& facts) {
    const Placement& placement = facts.placement;
    page.write(file_name(facts.source) + " → " + file_name(facts.destination), gap, 18, black_ink,
               title_font);
    page.write("at " + text(placement.at) + ", zoom " + short_text(placement.zoom) + ", angle " +
                   short_text(static_cast<double>(placement.angle)) + "°",
               gap, 50, grey_ink, text_font);
    return 84;
}

void add_blend(Page& page, int top, int number, const BlendFacts& facts,
               const BlendPictures& pictures) {
    top = std::max(add_source(page, top, number, facts, pictures.stages),
                   add_destination(page, top, number + 1, facts, pictures));
    top = add_levels(page, top + 12, number + 2, pictures.stages);
    add_results(page, top + 12, number + 3, pictures);
}

}  // namespace tool
