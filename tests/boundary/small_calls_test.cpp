/* The three functions that look at a mask or cut it out. */
#include <gtest/gtest.h>
#include <imageblend.h>
#include <math.h>
#include <stdio.h>

#include "support/compare.h"
#include "support/log_capture.h"
#include "support/scene.h"

namespace {

using support::cutout_matches;
using support::run_verify;
using support::same_log;
using support::scene;
using support::solid_scene;
using support::verify_matches;

scene placed(scene s, int32_t center_x, int32_t center_y, float zoom = 1.0F, float angle = 0.0F) {
    s.place = {center_x, center_y, zoom, angle};
    return s;
}

TEST(SmallCalls, OfRandomScenes) {
    const int calls = support::random_calls(3000);
    for (int i = 0; i < calls; ++i) {
        const scene s = support::random_scene(support::first_seed() + static_cast<uint64_t>(i));
        ASSERT_TRUE(verify_matches(s));
        if (i % 2 == 0) continue;
        ASSERT_TRUE(cutout_matches(s));
        ASSERT_TRUE(support::size_matches(s.mask)) << support::describe(s);
    }
}

TEST(IconSize, OfEverySampleAndOfNone) {
    for (const uint8_t value : {uint8_t{1}, uint8_t{127}, uint8_t{128}, uint8_t{255}}) {
        for (int32_t at = 0; at < 35; ++at) {
            model::frame mask = support::empty_mask(7, 5);
            mask.data[static_cast<size_t>(at)] = value;
            EXPECT_TRUE(support::size_matches(mask)) << "at " << at;
            mask.data[34] = value;
            EXPECT_TRUE(support::size_matches(mask)) << "from " << at;
        }
    }
    /* without an object, two less the side */
    const int32_t sides[][4] = {{1, 1, 1, 1},
                                {100, 1, -98, 1},
                                {0, 5, 2, -3},
                                {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX},
                                {INT32_MAX, 0, 2 - INT32_MAX, 2}};
    uint8_t none[100] = {};
    for (const auto& c : sides) {
        const blend_image mask{c[0], c[1], none};
        int32_t width = 0, height = 0;
        EXPECT_EQ(vorn_get_icon_size(&mask, &width, &height), 0);
        EXPECT_TRUE(width == c[2] && height == c[3]) << c[0] << "x" << c[1];
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
    const model::log_lines lines = support::take_log();
    char pointer[64];
    snprintf(pointer, sizeof pointer,
             "src_imageptr:%p , src_patchimage:", static_cast<void*>(source));
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0], (model::log_line{6, "LLL crop_mask_width:3,crop_mask_height:1\n"}));
    EXPECT_EQ(lines[1], (model::log_line{4, "create_rgb_icon crop mask width:3 , height:1\n"}));
    EXPECT_EQ(lines[2].priority, 3);
    EXPECT_EQ(lines[2].text.rfind(pointer, 0), 0U) << lines[2].text;
}

TEST(Cutout, OfOddSizesAndZooms) {
    /* no object; for a single row or column that is a negative number of bytes */
    for (const auto& [width, height] : {std::pair(100, 100), std::pair(100, 1), std::pair(1, 100)})
        EXPECT_TRUE(cutout_matches(solid_scene(width, height, {0, 0, 0, 0}, 2)));
    EXPECT_EQ(support::run_cutout(solid_scene(100, 1, {0, 0, 0, 0}, 2)).status, -1);
    scene s = solid_scene(20, 13, {3, 2, 17, 11}, 5);
    for (const float zoom : {0.5F, 2.0F, 0.0F, -1.0F, 1e30F})
        EXPECT_TRUE(cutout_matches(placed(s, 0, 0, zoom)));
    /* the source's own width is the length of its rows; past its end the edge pixels are read */
    for (const int32_t width : {1, 5, 19, 20, 21, 40}) {
        s.icon = support::noise_picture(width, 13, 6);
        EXPECT_TRUE(cutout_matches(s));
    }
}

/* A 40 x 40 square has 8 pixels of margin: its box is 56 x 56, placed from x - 20. */
TEST(Verify, KnownVerdictsOfASquare) {
    const scene square = solid_scene(200, 200, {50, 50, 40, 40}, 1);
    struct known {
        int32_t center_x, center_y, status;
        model::log_lines log;
    };
    const known table[] = {
        {100, 100, 0, {{5, "xl=72,xr=56,yu=72,yd=56\n"}}},
        {27, 28, 1, {{5, "xl=-1,xr=129,yu=0,yd=128\n"}, {5, "dst pic xl seam\n"}}},
        /* the right edge lies at 1 + 156 - 1 + 56 - 20 = 192 = 200 - 8 */
        {157, 156, 1, {{5, "xl=129,xr=-1,yu=128,yd=0\n"}, {5, "dst pic xr seam\n"}}},
        {0,
         220,
         1,
         {{5, "dst xl overflow\n"},
          {5, "dst yd overflow\n"},
          {5, "xl=-8,xr=156,yu=136,yd=-64\n"},
          {5, "dst pic xl seam\n"},
          {5, "dst pic yd seam\n"}}}};
    for (const known& k : table) {
        const support::verify_outcome done = run_verify(placed(square, k.center_x, k.center_y));
        EXPECT_EQ(done.status, k.status);
        EXPECT_TRUE(same_log(k.log, done.log));
    }
}

TEST(Verify, OfSizesPlacesAndAngles) {
    for (int32_t side = 1; side <= 70; ++side) {
        for (const float angle : {0.0F, 360.0F, 33.0F}) {
            const scene s = solid_scene(130, 120, {25, 20, side, 75}, 7);
            EXPECT_TRUE(verify_matches(placed(s, 60, 50, 1.0F, angle)));
            EXPECT_TRUE(verify_matches(placed(s, 40, 85, 0.7F, angle)));
        }
    }
    const scene wide = solid_scene(60, 60, {8, 20, 44, 20}, 1); /* a box as wide as the frame */
    for (int32_t center = -10; center < 70; ++center) {
        EXPECT_TRUE(verify_matches(placed(wide, center, 30)));
        EXPECT_TRUE(verify_matches(placed(wide, 30, center, 0.75F)));
    }
    const scene square = solid_scene(112, 150, {40, 50, 40, 40}, 1); /* box of 56 x 56 */
    for (const float zoom : {2.0F, 2.01F, 2.0178F, 2.018F, 2.02F, 2.6F, 2.7F})
        EXPECT_TRUE(verify_matches(placed(square, 56, 75, zoom)));
    /* in double precision the corner would be one less */
    EXPECT_TRUE(verify_matches(placed(square, 100, 100, nextafterf(0.2F, 1.0F))));
    /* the rotated box has a level without the upper limit, and so a larger margin */
    const scene large = solid_scene(800, 800, {140, 140, 520, 520}, 1);
    for (const float angle : {0.0F, 360.0F, 90.0F}) {
        EXPECT_TRUE(verify_matches(placed(large, 400, 400, 1, angle)));
        EXPECT_TRUE(verify_matches(placed(large, 400, 400, 1.2F, angle)));
    }
}

}  // namespace
