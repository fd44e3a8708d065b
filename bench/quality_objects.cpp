// SPDX-License-Identifier: Apache-2.0
#include "quality_objects.h"

#include <cmath>
#include <map>

namespace {

constexpr float PI = 3.14159265f;

cv::Point2f polar(cv::Point2f centre, float radius, float degrees) {
    return centre + cv::Point2f(radius * std::cos(degrees * PI / 180.0f),
                                -radius * std::sin(degrees * PI / 180.0f));
}

// A light glazed jar: a smooth outline, two handles with large holes, small holes in the belly.
drawing draw_jar() {
    drawing jar = empty_drawing(250, 260);
    const surface glaze = {{196, 222, 236}, 70, 0.55f, 5, 40, 11};
    const surface clay = {{150, 186, 208}, 6, 0.3f, 4, 20, 12};
    for (const float x : {48.0f, 202.0f})
        add_part(&jar, ellipse_line(jar, {x, 96}, 28, 34, 11), clay);
    std::vector<cv::Point2f> outline;
    const auto half_width = [](float y) {
        const float belly = 84.0f * std::sin(PI * std::pow(y / 216.0f, 1.25f) * 0.86f + 0.22f);
        return std::max(belly, 30.0f + 6.0f * std::cos(y / 9.0f));
    };
    for (float y = 0; y <= 216; y += 0.5f)
        outline.push_back({125 + half_width(y), 22 + y});
    for (float y = 216; y >= 0; y -= 0.5f)
        outline.push_back({125 - half_width(y), 22 + y});
    add_part(&jar, polygon(jar, outline), glaze);
    add_part(&jar, ellipse(jar, {125, 24}, 43, 9), clay);
    float radius = 1.5f;
    for (float x = 75; x <= 175; x += 20, radius += 0.8f) {
        cut_out(&jar, ellipse(jar, {x, 150}, radius, radius));
    }
    return jar;
}

void grow_branch(drawing* weed, cv::RNG* random, cv::Point2f foot, float length, float degrees,
                 float thickness) {
    if (thickness < 1.5f) return;
    const surface bark = {{38, 44, 40}, thickness * 0.7f, 0.0f, 6, 8, 21};
    const cv::Point2f bend = polar(foot, length * 0.5f, degrees);
    const cv::Point2f tip = polar(bend, length * 0.5f, degrees + random->uniform(-14.0f, 14.0f));
    add_part(weed, line(*weed, {foot, bend, tip}, thickness), bark);
    for (const float side : {-1.0f, 1.0f}) {
        grow_branch(weed, random, tip, length * random->uniform(0.66f, 0.8f),
                    degrees + side * random->uniform(16.0f, 34.0f), thickness * 0.72f);
    }
    if (thickness > 2.2f) return;
    const cv::Mat leaf = ellipse(*weed, tip, 7, 3.2f, -degrees);
    add_part(weed, leaf, {{40, 58, 44}, 4, 0.1f, 8, 6, random->next()});
}

// A dark plant in a cornered pot: twigs of 1.5 to 6 pixels that enclose holes, and a straight pole.
drawing draw_weed() {
    drawing weed = empty_drawing(240, 270);
    cv::RNG random(5);
    add_part(&weed, line(weed, {{146, 220}, {168, 12}}, 2.4f), {{60, 60, 66}, 1.5f, 0.2f, 0, 1, 1});
    grow_branch(&weed, &random, {120, 212}, 60, 94, 8);
    const surface pot = {{44, 52, 74}, 12, 0.15f, 9, 30, 22};
    add_part(&weed, polygon(weed, {{78, 204}, {162, 204}, {150, 262}, {90, 262}}), pot);
    add_part(&weed, polygon(weed, {{72, 196}, {168, 196}, {168, 212}, {72, 212}}), pot);
    return weed;
}

std::vector<cv::Point2f> toothed(cv::Point2f centre, float inner, float outer, int teeth,
                                 float share) {
    std::vector<cv::Point2f> outline;
    const float step = 360.0f / static_cast<float>(teeth);
    for (int i = 0; i < teeth; i++) {
        const float start = step * static_cast<float>(i) + 7.0f;
        outline.push_back(polar(centre, inner, start));
        outline.push_back(polar(centre, outer, start + 0.06f * step));
        outline.push_back(polar(centre, outer, start + (share - 0.06f) * step));
        outline.push_back(polar(centre, inner, start + share * step));
    }
    return outline;
}

// A cogwheel of rough rusty metal: corners, crevices down to 3 pixels, a strongly textured surface.
drawing draw_gear() {
    drawing gear = empty_drawing(240, 240);
    const surface rust = {{62, 96, 150}, 9, 0.1f, 30, 24, 31};
    add_part(&gear, polygon(gear, toothed({120, 120}, 86, 112, 15, 0.56f)), rust);
    add_part(&gear, ellipse(gear, {120, 120}, 52, 52), {{70, 104, 146}, 14, 0.2f, 26, 20, 32});
    cut_out(&gear, ellipse(gear, {120, 120}, 24, 24));
    for (int i = 0; i < 5; i++) {
        const float degrees = 72.0f * static_cast<float>(i) + 20.0f;
        const cv::Point2f from = polar({120, 120}, 60, degrees),
                          to = polar({120, 120}, 95, degrees);
        cut_out(&gear, line(gear, {from, to}, 3.0f + static_cast<float>(i)));
    }
    return gear;
}

// A hanging lamp: a round pale shade below a chain of rings and a rod of 3 pixels.
drawing draw_lamp() {
    drawing lamp = empty_drawing(230, 280);
    const surface brass = {{70, 150, 190}, 3, 0.5f, 6, 10, 41};
    for (float y = 14; y < 80; y += 12) {
        add_part(&lamp, ellipse_line(lamp, {115, y}, 3.6f, 6.5f, 2.2f), brass);
    }
    add_part(&lamp, line(lamp, {{115, 84}, {115, 126}}, 3), brass);
    const surface paper = {{205, 216, 228}, 60, 0.2f, 7, 60, 42};
    add_part(&lamp, ellipse(lamp, {115, 176}, 98, 62), paper);
    cut_out(&lamp, ellipse(lamp, {115, 262}, 78, 52));
    for (int i = -3; i <= 3; i++) {
        const float x = 115 + 22.0f * static_cast<float>(i);
        add_part(&lamp, line(lamp, {{x, 205}, {x + 2, 258}}, 1.8f), brass);
        add_part(&lamp, ellipse(lamp, {x + 2, 260}, 4, 5), brass);
    }
    return lamp;
}

// A dark wheel: spokes of 1.6 pixels, large holes between them.
drawing draw_wheel() {
    drawing wheel = empty_drawing(250, 250);
    const cv::Point2f hub(125, 125);
    const surface steel = {{120, 112, 108}, 1.2f, 0.4f, 3, 8, 51};
    for (int i = 0; i < 12; i++) {
        const float degrees = 30.0f * static_cast<float>(i);
        const float skew = i % 2 == 0 ? 70.0f : -70.0f;
        add_part(&wheel,
                 line(wheel, {polar(hub, 10, degrees + skew), polar(hub, 106, degrees)}, 1.6f),
                 steel);
    }
    add_part(&wheel, ellipse_line(wheel, hub, 109, 109, 15), {{40, 40, 42}, 7, 0.15f, 10, 10, 52});
    add_part(&wheel, ellipse_line(wheel, hub, 100, 100, 4), steel);
    add_part(&wheel, ellipse(wheel, hub, 15, 15), {{90, 84, 80}, 9, 0.5f, 6, 10, 53});
    return wheel;
}

// A fallen leaf: points, deep notches, veins and holes that insects have eaten.
drawing draw_leaf() {
    drawing leaf = empty_drawing(250, 260);
    const cv::Point2f heart(125, 140);
    std::vector<cv::Point2f> outline;
    for (int i = 0; i < 720; i++) {
        const float degrees = static_cast<float>(i) * 0.5f;
        const float from_stalk = std::abs(std::remainder(degrees - 270.0f, 360.0f)) / 180.0f;
        const float lobes = std::pow(std::abs(std::cos((degrees - 90.0f) * PI / 72.0f)), 0.8f);
        const float saw = std::abs(std::remainder(degrees, 9.0f)) / 4.5f;
        outline.push_back(
            polar(heart, (44 + 62 * lobes + 7 * saw) * (0.55f + 0.45f * from_stalk), degrees));
    }
    const surface blade = {{40, 120, 190}, 5, 0.05f, 24, 30, 61};
    const surface vein = {{70, 160, 215}, 1, 0.0f, 6, 8, 62};
    add_part(&leaf, polygon(leaf, outline), blade);
    for (const float degrees : {18.0f, 54.0f, 90.0f, 126.0f, 162.0f}) {
        add_part(&leaf, line(leaf, {heart, polar(heart, 78, degrees)}, 2), vein);
    }
    add_part(&leaf, line(leaf, {{125, 140}, {128, 200}, {118, 250}}, 3.4f), vein);
    cv::RNG random(6);
    for (float radius = 1.5f; radius < 9; radius += 1.5f) {
        const cv::Point2f at =
            polar(heart, random.uniform(20.0f, 50.0f), random.uniform(0.0f, 180.0f));
        cut_out(&leaf, ellipse(leaf, at, radius, radius * 0.8f));
    }
    return leaf;
}

}  // namespace

drawing draw_object(const std::string& name) {
    static const std::map<std::string, drawing (*)()> objects = {
        {"jar", draw_jar},   {"weed", draw_weed},   {"gear", draw_gear},
        {"lamp", draw_lamp}, {"wheel", draw_wheel}, {"leaf", draw_leaf}};
    return objects.at(name)();
}
