// SPDX-License-Identifier: Apache-2.0
// Records that a call cannot use: null pointers, sizes that differ, sides below 1.
#include <gtest/gtest.h>
#include <imageblend.h>

#include "support/compare.h"
#include "support/log_capture.h"
#include "support/scene.h"

namespace {

using support::blend_matches;
using support::placed;
using support::scene;
using support::solid_scene;

TEST(Frames, NullPointersAreRefusedInSilence) {
    model::bytes colours(8 * 8 * 4, 100), samples(8 * 8, 255), result(8 * 8 * 4, 0x5C);
    const model::bytes before = result;
    int32_t width = -77, height = -78;
    support::clear_log();
    for (int part = 0; part < 8; ++part) {  // a null record or null pixels in turn
        blend_image mask{8, 8, samples.data()}, icon{8, 8, colours.data()};
        blend_image output{8, 8, result.data()}, destination{8, 8, colours.data()};
        blend_image* r[] = {&mask, &icon, &output, &destination};
        if (part % 2 == 0) {
            r[part / 2] = nullptr;
        } else {
            r[part / 2]->data = nullptr;
        }
        EXPECT_EQ(vorn_imageBlending(r[1], r[3], r[0], r[2], 0, 0, 4, 4, 1.0F, 0.0F), -1) << part;
        EXPECT_TRUE(part >= 6 || vorn_create_rgb_icon(r[1], r[0], r[2], 1.0F) == -1) << part;
        EXPECT_TRUE(part >= 2 || vorn_get_icon_size(r[0], &width, &height) == -1) << part;
        EXPECT_TRUE(output.width == 8 && output.height == 8);
    }
    const blend_image mask{8, 8, samples.data()};
    EXPECT_EQ(vorn_get_icon_size(&mask, nullptr, &height), -1);
    EXPECT_EQ(vorn_get_icon_size(&mask, &width, nullptr), -1);
    EXPECT_EQ(vorn_verify_icon_pos(nullptr, 8, 8, 0, 0, 4, 4, 1.0F, 0.0F), -1);
    EXPECT_TRUE(width == -77 && height == -78 && result == before && support::take_log().empty());
}

// A destination too small for the box fails there first.
TEST(Frames, SizesThatDifferAreRefusedWithOneLine) {
    const int32_t sizes[][2] = {{49, 40}, {51, 40}, {50, 39}, {50, 41}, {35, 40}};
    for (const auto& size : sizes) {
        for (const float angle : {0.0F, 10.0F}) {
            scene s = placed(solid_scene(50, 40, {10, 10, 20, 17}, 3), 1, angle);
            s.destination = support::noise_picture(size[0], size[1], 8);
            EXPECT_TRUE(blend_matches(s));
            s.icon = s.destination;
            EXPECT_TRUE(blend_matches(s));
            s.destination = support::noise_picture(50, 40, 8);
            EXPECT_TRUE(blend_matches(s));
        }
    }
    scene s = solid_scene(50, 40, {10, 10, 20, 17}, 3);
    s.icon = support::noise_picture(49, 41, 8);
    const model::log_line line = {
        6, "LLF frame sizes differ icon[49,41],destination[50,40],mask[50,40]\n"};
    EXPECT_EQ(support::run_blend(s).log.back(), line);
}

TEST(Frames, WithSidesBelowOneOrOfAnyLengthHaveNoPixel) {
    const int32_t sides[][2] = {
        {0, 0},  {0, 5},  {5, 0},  {-1, 7},        {7, -1},        {-4, -4},       {-50, -60},
        {-2, 0}, {-9, 3}, {1, -1}, {INT32_MIN, 1}, {1, INT32_MIN}, {INT32_MIN, 0}, {0, INT32_MAX}};
    for (const auto& side : sides) {
        scene s;
        s.icon = s.destination = s.mask = {side[0], side[1], {}};
        for (const float zoom : {1.0F, 0.0F, 0.1F, -1.0F, -2.5F}) {
            for (const float angle : {0.0F, 30.0F}) {
                s.place = {3, 2, zoom, angle};
                EXPECT_TRUE(blend_matches(s));
                EXPECT_TRUE(support::verify_matches(s));
            }
        }
        EXPECT_TRUE(support::size_matches(s.mask));
        s.icon.data = model::bytes(64);
        const bool extreme = side[0] == INT32_MIN || side[1] == INT32_MIN || side[1] == INT32_MAX;
        EXPECT_TRUE(extreme || support::cutout_matches(s));
    }
}

}  // namespace
