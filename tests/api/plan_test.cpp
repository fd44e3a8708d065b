// SPDX-License-Identifier: Apache-2.0
// The plan of a call says what the call then does: verdict and seams those of the log, and the box
// where the output changes.
#include "api/plan.h"

#include <gtest/gtest.h>

#include <map>

#include "support/compare.h"
#include "support/scene.h"

namespace {

using support::scene;

// The plan of a scene, for as long as it is looked at.
struct planned {
    object_plan object{};
    placement_check check{};
    blend_plan blend{};

    explicit planned(const scene& s) {
        measure_object(s.mask.data.data(), s.mask.width, s.mask.height, &object);
        turn_object(s.place.angle, &object);
        const placement place = {s.place.center_x, s.place.center_y, s.place.zoom};
        const blend_image destination = {s.destination.width, s.destination.height, nullptr};
        check = check_placement(&object, &place);
        blend = plan_blend(&object, &place, &destination);
    }
};

// The sides of which lines like "dst xl overflow" or "dst pic xl seam" tell.
int32_t sides_in(const model::log_lines& log, const std::string& what) {
    const std::map<std::string, int32_t> names = {
        {"xl", SIDE_LEFT}, {"xr", SIDE_RIGHT}, {"yu", SIDE_TOP}, {"yd", SIDE_BOTTOM}};
    int32_t sides = 0;
    for (const model::log_line& line : log) {
        for (const auto& [name, side] : names)
            if (line.text == "dst " + name + what || line.text == "dst pic " + name + what)
                sides |= side;
    }
    return sides;
}

void check_verdict(const scene& s, const placement_check& check) {
    const model::outcome said = model::verify_icon_pos(s.mask, s.place);
    EXPECT_EQ(said.status, !check.fits ? -1 : check.seams != 0 ? 1 : 0);
    EXPECT_EQ(check.seams, sides_in(said.log, " seam\n"));
    EXPECT_EQ(check.overflows, sides_in(said.log, " overflow\n"));
}

// The pixels that are opaque in the output, of a destination without an opaque one.
void check_place(scene s, const blend_plan& plan) {
    for (size_t i = 0; i < s.destination.data.size(); i += 4)
        s.destination.data[i] = 0;
    const model::outcome made = model::image_blending(s.icon, s.destination, s.mask, s.place);
    EXPECT_EQ(made.status, plan.fits ? 0 : -1);
    if (!plan.fits) return;
    const blend_box& box = plan.box;
    const bool blends =
        box.crop_width > 0 && box.crop_height > 0 && box.zoom_width > 0 && box.zoom_height > 0;
    model::frame expected = {s.mask.width, s.mask.height,
                             model::bytes(s.destination.data.size() / 4)};
    for (int64_t y = box.top; blends && y < int64_t{box.top} + box.zoom_height; ++y) {
        for (int64_t x = box.left; x < int64_t{box.left} + box.zoom_width; ++x) {
            const int64_t at = y * s.mask.width + x;
            if (at >= 0 && at < static_cast<int64_t>(expected.data.size()))
                expected.data[static_cast<size_t>(at)] = 255;
        }
    }
    for (size_t i = 0; i < expected.data.size(); ++i)
        ASSERT_EQ(made.pixels[4 * i], expected.data[i]) << "pixel " << i;
    // Where the wanted box lies within the frame it stays, but for what rounding takes.
    const auto stays = [](int64_t wanted, int32_t place, int32_t size, int32_t frame_size) {
        return wanted < 1 || wanted + size + 1 >= frame_size || place == wanted;
    };
    EXPECT_TRUE(!blends || (stays(box.wanted_left, box.left, box.zoom_width, s.mask.width) &&
                            stays(box.wanted_top, box.top, box.zoom_height, s.mask.height)));
}

TEST(Plan, SaysWhatTheCallsDo) {
    for (const uint64_t seed : support::seeds(1500)) {
        const scene s = support::random_scene(seed);
        SCOPED_TRACE(support::describe(s));
        const planned plan(s);
        check_verdict(s, plan.check);
        check_place(s, plan.blend);
        ASSERT_FALSE(HasFailure());
    }
}

}  // namespace
