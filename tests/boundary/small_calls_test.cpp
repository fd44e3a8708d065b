// SPDX-License-Identifier: Apache-2.0
// The three functions that look at a mask or cut it out.
#include <gtest/gtest.h>
#include <imageblend.h>
#include <math.h>
#include <stdio.h>

#include <atomic>
#include <thread>
#include <vector>

#include "support/compare.h"
#include "support/log_capture.h"
#include "support/scene.h"

namespace {

using support::cutout_matches;
using support::scene;
using support::solid_scene;

::testing::AssertionResult verify_matches(scene s, int32_t center_x, int32_t center_y, float zoom,
                                          float angle = 0) {
    s.place = {center_x, center_y, zoom, angle};
    return support::verify_matches(s);
}

TEST(SmallCalls, OfRandomScenes) {
    for (const uint64_t seed : support::seeds(3000)) {
        const scene s = support::random_scene(seed);
        ASSERT_TRUE(support::verify_matches(s));
        ASSERT_TRUE(cutout_matches(s));
        ASSERT_TRUE(support::size_matches(s.mask)) << support::describe(s);
    }
}

TEST(Cutout, TakesAlphaFromTheMaskAndLogs) {
    uint8_t source[4 * 4 * 3];
    for (size_t i = 0; i < sizeof source; ++i)
        source[i] = static_cast<uint8_t>(i);
    uint8_t samples[4 * 3] = {0, 0, 0, 0, 0, 1, 0, 255, 0, 0, 0, 0};
    model::bytes pixels(12);
    const blend_image source_record{4, 3, source}, mask{4, 3, samples};
    blend_image icon{0, 0, pixels.data()};
    support::clear_log();
    EXPECT_EQ(vorn_create_rgb_icon(&source_record, &mask, &icon, 1.0F), 0);
    EXPECT_TRUE(icon.width == 3 && icon.height == 1);
    EXPECT_EQ(pixels, (model::bytes{255, 21, 22, 23, 0, 0, 0, 0, 255, 29, 30, 31}));
    char pointer[64];
    snprintf(pointer, sizeof pointer,
             "src_imageptr:%p , src_patchimage:", static_cast<void*>(source));
    const std::string line = support::take_log().back().text;
    EXPECT_EQ(line.rfind(pointer, 0), 0U) << line;
}

TEST(Cutout, OfOddSizesAndZooms) {
    // no object; for a single row or column that is a negative number of bytes
    for (const auto& [width, height] : {std::pair(100, 100), std::pair(100, 1), std::pair(1, 100)})
        EXPECT_TRUE(cutout_matches(solid_scene(width, height, {0, 0, 0, 0}, 2)));
    scene s = solid_scene(20, 13, {3, 2, 17, 11}, 5);
    // the source's own width is the length of its rows; past its end the edge pixels are read
    for (const int32_t width : {1, 5, 19, 20, 21, 40}) {
        s.icon = support::noise_picture(width, 13, 6);
        EXPECT_TRUE(cutout_matches(s));
    }
}

// A 40 x 40 square has 8 pixels of margin: its box is 56 x 56, placed from x - 20.
TEST(Verify, KnownVerdictsOfASquare) {
    const struct {
        int32_t center_x, center_y, status;
        const char* first_line;
    } table[] = {{100, 100, 0, "xl=72,xr=56,yu=72,yd=56\n"},
                 {27, 28, 1, "xl=-1,xr=129,yu=0,yd=128\n"},
                 // the right edge lies at 1 + 156 - 1 + 56 - 20 = 192 = 200 - 8
                 {157, 156, 1, "xl=129,xr=-1,yu=128,yd=0\n"},
                 {0, 220, 1, "dst xl overflow\n"}};
    scene s = solid_scene(200, 200, {50, 50, 40, 40}, 1);
    for (const auto& known : table) {
        s.place = {known.center_x, known.center_y, 1, 0};
        const model::outcome done = support::run_verify(s);
        EXPECT_EQ(done.status, known.status);
        EXPECT_EQ(done.log[0], (model::log_line{5, known.first_line}));
        EXPECT_TRUE(support::verify_matches(s));
    }
}

TEST(Verify, OfLargeBoxes) {
    const scene wide = solid_scene(60, 60, {8, 20, 44, 20}, 1);  // a box as wide as the frame
    for (int32_t center = -10; center < 70; ++center) {
        EXPECT_TRUE(verify_matches(wide, center, 30, 1));
        EXPECT_TRUE(verify_matches(wide, 30, center, 0.75F));
    }
    const scene square = solid_scene(112, 150, {40, 50, 40, 40}, 1);  // box of 56 x 56
    for (const float zoom : {2.0F, 2.01F, 2.0178F, 2.018F, 2.02F, 2.6F, 2.7F})
        EXPECT_TRUE(verify_matches(square, 56, 75, zoom));
    // in double precision the corner would be one less
    EXPECT_TRUE(verify_matches(square, 100, 100, nextafterf(0.2F, 1.0F)));
    // the rotated box has a level without the upper limit, and so a larger margin
    const scene large = solid_scene(800, 800, {140, 140, 520, 520}, 1);
    for (const float angle : {0.0F, 360.0F, 90.0F})
        EXPECT_TRUE(verify_matches(large, 400, 400, 1, angle));
}

// They may run on any thread beside a blend.
TEST(SmallCalls, RunBesideABlend) {
    std::atomic<int> wrong{0};
    std::atomic<bool> stop{false};
    std::vector<std::thread> helpers;
    for (uint64_t seed = 1; seed <= 3; ++seed) {
        helpers.emplace_back([&wrong, &stop, seed] {
            scene s = support::placed(solid_scene(60, 50, {10, 10, 20, 17}, seed), 1, 15);
            const int32_t verdict = model::verify_icon_pos(s.mask, s.place).status;
            const model::bytes cut = model::create_rgb_icon(s.icon, s.mask).pixels;
            model::bytes pixels(cut.size());
            const blend_image source{60, 50, s.icon.data.data()}, mask{60, 50, s.mask.data.data()};
            blend_image icon{0, 0, pixels.data()};
            while (!stop) {
                int32_t width = 0, height = 0;
                vorn_get_icon_size(&mask, &width, &height);
                const int32_t judged = vorn_verify_icon_pos(mask.data, 60, 50, 0, 0, 30, 25, 1, 15);
                vorn_create_rgb_icon(&source, &mask, &icon, 1);
                wrong += width != 20 || height != 17 || judged != verdict || pixels != cut;
            }
        });
    }
    // the second is large enough for threads
    const scene blends[] = {support::placed(solid_scene(96, 90, {30, 28, 25, 33}, 9), 1, 25),
                            support::placed(solid_scene(840, 820, {8, 9, 825, 803}, 10), 1, 1)};
    for (const scene& s : blends) {
        const model::bytes expected =
            model::image_blending(s.icon, s.destination, s.mask, s.place).pixels;
        for (int i = s.seed == 9 ? 60 : 1; i > 0; --i)
            EXPECT_EQ(support::run_blend(s).pixels, expected);
    }
    stop = true;
    for (std::thread& helper : helpers)
        helper.join();
    EXPECT_EQ(wrong, 0);
}

}  // namespace
