#include <gtest/gtest.h>
#include <imageblend.h>
#include <math.h>

#include "support/compare.h"
#include "support/scene.h"

namespace {

using support::run_verify;
using support::same_log;
using support::scene;
using support::solid_scene;
using support::verify_matches;
using support::verify_outcome;

scene placed(scene s, int32_t center_x, int32_t center_y, float zoom = 1.0F, float angle = 0.0F) {
    s.place = {center_x, center_y, zoom, angle};
    return s;
}

TEST(Verify, OfRandomScenes) {
    const int calls = support::random_calls(3000);
    for (int i = 0; i < calls; ++i) {
        ASSERT_TRUE(verify_matches(
            support::random_scene(support::first_seed() + static_cast<uint64_t>(i))));
    }
}

/* A 40 x 40 square has 8 pixels of margin: its box is 56 x 56, placed from x - 20. */
TEST(Verify, OfASquareWithMargins) {
    const scene square = solid_scene(200, 200, {50, 50, 40, 40}, 1);
    const verify_outcome middle = run_verify(placed(square, 100, 100));
    EXPECT_EQ(middle.status, 0);
    EXPECT_TRUE(same_log({{5, "xl=72,xr=56,yu=72,yd=56\n"}}, middle.log));

    const verify_outcome left = run_verify(placed(square, 27, 28));
    EXPECT_EQ(left.status, 1);
    EXPECT_TRUE(same_log({{5, "xl=-1,xr=129,yu=0,yd=128\n"}, {5, "dst pic xl seam\n"}}, left.log));

    /* the right edge lies at 1 + 156 - 1 + 56 - 20 = 192 = 200 - 8 */
    const verify_outcome right = run_verify(placed(square, 157, 156));
    EXPECT_EQ(right.status, 1);
    EXPECT_TRUE(same_log({{5, "xl=129,xr=-1,yu=128,yd=0\n"}, {5, "dst pic xr seam\n"}}, right.log));

    const verify_outcome corner = run_verify(placed(square, 0, 220));
    EXPECT_EQ(corner.status, 1);
    EXPECT_TRUE(same_log({{5, "dst xl overflow\n"},
                          {5, "dst yd overflow\n"},
                          {5, "xl=-8,xr=156,yu=136,yd=-64\n"},
                          {5, "dst pic xl seam\n"},
                          {5, "dst pic yd seam\n"}},
                         corner.log));
}

TEST(Verify, RepairsASmallObjectOnTheLeftButNotOnTheRight) {
    const scene small = solid_scene(60, 60, {20, 20, 10, 10}, 1);
    const verify_outcome left = run_verify(placed(small, 2, 30));
    EXPECT_EQ(left.status, 0);
    EXPECT_TRUE(same_log({{5, "dst xl overflow\n"}, {5, "xl=0,xr=53,yu=25,yd=25\n"}}, left.log));
    const verify_outcome right = run_verify(placed(small, 58, 30));
    EXPECT_EQ(right.status, 1);
    EXPECT_TRUE(same_log(
        {{5, "dst xr overflow\n"}, {5, "xl=50,xr=-3,yu=25,yd=25\n"}, {5, "dst pic xr seam\n"}},
        right.log));
}

TEST(Verify, OfAWideObjectAtEveryCentre) {
    const scene wide =
        solid_scene(60, 60, {8, 20, 44, 20}, 1); /* its box is as wide as the frame */
    for (int32_t center = -10; center < 70; ++center) {
        EXPECT_TRUE(verify_matches(placed(wide, center, 30)));
        EXPECT_TRUE(verify_matches(placed(wide, 30, center, 0.75F)));
    }
}

TEST(Verify, AcceptsABoxAsWideAsTheFrameAndNoMore) {
    const scene square = solid_scene(112, 150, {40, 50, 40, 40}, 1); /* box of 56 x 56 */
    EXPECT_EQ(run_verify(placed(square, 56, 75, 2.0F)).status, 1);
    const verify_outcome wider = run_verify(placed(square, 56, 75, 2.02F));
    EXPECT_EQ(wider.status, -1);
    EXPECT_TRUE(same_log({{6, "fital error,Zoom factor is too big\n"}}, wider.log));
    for (const float zoom : {2.0F, 2.01F, 2.0178F, 2.018F, 2.02F, 2.6F, 2.7F}) {
        EXPECT_TRUE(verify_matches(placed(square, 56, 75, zoom)));
    }
}

/* 30 * 0.20000002 is 6.0000005; half of it taken from 100 rounds to 97 in single precision, where
 * double precision would leave a little less and cut it to 96. */
TEST(Verify, PlacesTheCornerInSinglePrecision) {
    const scene small = solid_scene(200, 200, {50, 50, 30, 12}, 1);
    const verify_outcome done = run_verify(placed(small, 100, 100, nextafterf(0.2F, 1.0F)));
    ASSERT_EQ(done.log.size(), 1U);
    EXPECT_EQ(done.log[0].text.rfind("xl=97,", 0), 0U) << done.log[0].text;
}

TEST(Verify, OfSolidBoxesOfEverySize) {
    for (int32_t side = 1; side <= 70; ++side) {
        for (const float angle : {0.0F, 360.0F, 33.0F}) {
            const scene s = solid_scene(130, 120, {25, 20, side, 75}, 7);
            EXPECT_TRUE(verify_matches(placed(s, 60, 50, 1.0F, angle)));
            EXPECT_TRUE(verify_matches(placed(s, 40, 85, 0.7F, angle)));
        }
    }
}

/* The rotated box takes its level without the upper limit: 512 pixels have 128 of margin, where
 * the upright box has 64. */
TEST(Verify, OfALargeObjectTurnedHasALargerBox) {
    const scene s = solid_scene(800, 800, {140, 140, 520, 520}, 1);
    EXPECT_TRUE(verify_matches(placed(s, 400, 400)));
    EXPECT_TRUE(verify_matches(placed(s, 400, 400, 1.0F, 360.0F)));
    EXPECT_TRUE(verify_matches(placed(s, 400, 400, 1.0F, 90.0F)));
    EXPECT_EQ(run_verify(placed(s, 400, 400, 1.2F)).status, 1);
    EXPECT_EQ(run_verify(placed(s, 400, 400, 1.2F, 360.0F)).status, -1);
}

TEST(Verify, OfFramesWithASideBelowOneFails) {
    uint8_t sample = 1;
    const int32_t sides[][2] = {{0, 0}, {0, 5}, {5, 0}, {-1, 7}, {-4, -4}, {INT32_MIN, INT32_MIN}};
    for (const auto& side : sides) {
        scene s;
        s.mask = {side[0], side[1], {}};
        EXPECT_EQ(vorn_verify_icon_pos(&sample, side[0], side[1], 0, 0, 3, 3, 1.0F, 0.0F), -1);
        EXPECT_TRUE(verify_matches(placed(s, 3, 3)));
        EXPECT_TRUE(verify_matches(placed(s, 3, 3, 0.0F, 45.0F)));
    }
}

}  // namespace
