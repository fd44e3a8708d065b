#include <gtest/gtest.h>
#include <imageblend.h>
#include <math.h>

#include "support/compare.h"
#include "support/scene.h"

namespace {

using support::aliasing;
using support::blend_matches;
using support::run_blend;
using support::scene;
using support::solid_scene;

const uint8_t* pixel(const model::bytes& output, int32_t width, int32_t x, int32_t y) {
    return output.data() + (int64_t{y} * width + x) * 4;
}

TEST(Blend, OfRandomScenes) {
    const int calls = support::random_calls(3000);
    const aliasing ways[] = {aliasing::none, aliasing::none, aliasing::destination, aliasing::icon};
    for (int i = 0; i < calls; ++i) {
        const uint64_t seed = support::first_seed() + static_cast<uint64_t>(i);
        ASSERT_TRUE(blend_matches(support::random_scene(seed), ways[seed % 4]));
    }
}

scene flat_scene(int32_t width, int32_t height, support::rectangle object) {
    scene s = solid_scene(width, height, object, 1);
    s.icon = support::flat_picture(width, height, 17, 200);
    s.destination = support::flat_picture(width, height, 33, 100);
    return s;
}

/* (255 * 200 + 128) >> 8 = 199. */
TEST(Blend, MixesASmallObjectWithoutAPyramid) {
    scene s = flat_scene(40, 40, {5, 5, 10, 10});
    s.place.center_x = 20;
    s.place.center_y = 21;
    const support::blend_outcome done = run_blend(s);
    ASSERT_EQ(done.status, 0);
    for (int32_t y = 0; y < 40; ++y) {
        for (int32_t x = 0; x < 40; ++x) {
            const bool inside = x >= 15 && x < 25 && y >= 16 && y < 26;
            const uint8_t* const p = pixel(done.output, 40, x, y);
            ASSERT_EQ(p[0], inside ? 255 : 33) << x << "," << y;
            ASSERT_EQ(p[3], inside ? 199 : 100) << x << "," << y;
        }
    }
}

/* The box of a 40 x 40 square is 56 x 56 and stands 8 pixels left of and above its bare corner. */
TEST(Blend, StampsTheBoxWithItsMargins) {
    scene s = flat_scene(200, 200, {50, 50, 40, 40});
    s.place.center_x = 100;
    s.place.center_y = 110;
    const support::blend_outcome done = run_blend(s);
    ASSERT_EQ(done.status, 0);
    EXPECT_EQ(pixel(done.output, 200, 71, 100)[0], 33);
    EXPECT_EQ(pixel(done.output, 200, 72, 82)[0], 255);
    EXPECT_EQ(pixel(done.output, 200, 127, 137)[0], 255);
    EXPECT_EQ(pixel(done.output, 200, 128, 137)[0], 33);
    EXPECT_EQ(pixel(done.output, 200, 127, 138)[0], 33);
    EXPECT_EQ(pixel(done.output, 200, 100, 110)[1], 199);
    EXPECT_EQ(pixel(done.output, 200, 72, 82)[1], 100);
    EXPECT_TRUE(blend_matches(s));
}

TEST(Blend, LogsItsStepsInOrder) {
    scene s = solid_scene(80, 70, {3, 20, 40, 40}, 1);
    const model::log_lines opening = {{3, "LLF time_cost_start"},
                                      {4, "ImageBlending version 2.0, build time:"},
                                      {3,
                                       "LLF input param center[40,35],zoom=1.000000,"
                                       "angle=0.000000\n"},
                                      {4, "orign pic xl seam\n"},
                                      {6, "LLL crop_mask_width:51,crop_mask_height:56\n"}};
    model::log_lines expected = opening;
    expected.push_back({6, "LLF double check cropsize[51,56],maxsize[80,70]\n"});
    expected.push_back({3, " LLF time_cost_end"});
    EXPECT_TRUE(support::same_log(expected, run_blend(s).log));

    s.place.zoom = 1.5F;
    expected = opening;
    expected[2].text = "LLF input param center[40,35],zoom=1.500000,angle=0.000000\n";
    expected.push_back({6, "LLF double check cropsize[76,84],maxsize[80,70]\n"});
    expected.push_back({6, "LLF double check,Zoom factor is too big, return to zoom = 1\n"});
    const support::blend_outcome failed = run_blend(s);
    EXPECT_EQ(failed.status, -1);
    EXPECT_TRUE(support::same_log(expected, failed.log));
}

TEST(Blend, AcceptsABoxAsLargeAsTheDestination) {
    scene s = solid_scene(56, 60, {0, 0, 56, 60}, 3);
    EXPECT_EQ(run_blend(s).status, 0);
    s = solid_scene(112, 150, {40, 50, 40, 40}, 3); /* box of 56 x 56 */
    s.place.zoom = 2.0F;
    EXPECT_EQ(run_blend(s).status, 0);
    EXPECT_TRUE(blend_matches(s));
    s.place.zoom = 2.02F;
    EXPECT_EQ(run_blend(s).status, -1);
    EXPECT_TRUE(blend_matches(s));
}

TEST(Blend, KeepsTheRectangleInsideTheFrame) {
    const int32_t places[] = {INT32_MIN, -500, -21, -20, 0,  12, 28,  29,  30,
                              69,        70,   71,  72,  73, 99, 110, 500, INT32_MAX};
    for (const float zoom : {1.0F, 0.8F, 1.3F}) {
        for (const int32_t x : places) {
            for (const int32_t y : {-40, 29, 50, 71, 140}) {
                scene s = solid_scene(100, 101, {30, 31, 40, 37}, 4);
                s.place = {x, y, zoom, 0.0F};
                ASSERT_TRUE(blend_matches(s));
            }
        }
    }
}

/* The corner is rounded to single precision before it is cut to an integer. */
TEST(Blend, PlacesTheCornerInSinglePrecision) {
    scene s = solid_scene(200, 200, {50, 50, 30, 12}, 1);
    s.place = {100, 100, nextafterf(0.2F, 1.0F), 0.0F};
    const support::blend_outcome done = run_blend(s);
    EXPECT_EQ(pixel(done.output, 200, 97, 99)[0], 255);
    EXPECT_EQ(pixel(done.output, 200, 96, 99)[0], pixel(s.destination.data, 200, 96, 99)[0]);
    EXPECT_TRUE(blend_matches(s));
}

TEST(Blend, WithoutAnObjectOfAnySizeCopiesTheDestination) {
    for (const float angle : {0.0F, 45.0F}) {
        for (const float zoom : {1.0F, 0.5F, -1.0F}) {
            scene s = solid_scene(30, 20, {0, 0, 0, 0}, 5);
            s.place.angle = angle;
            s.place.zoom = zoom;
            const support::blend_outcome done = run_blend(s);
            EXPECT_TRUE(blend_matches(s));
            EXPECT_TRUE(done.status != 0 || done.output == s.destination.data);
        }
        for (const float zoom : {0.0F, 0.01F, -2.0F}) {
            scene s = solid_scene(30, 20, {8, 8, 9, 9}, 5);
            s.place.angle = angle;
            s.place.zoom = zoom;
            EXPECT_EQ(run_blend(s).output, s.destination.data);
            EXPECT_TRUE(blend_matches(s));
        }
    }
}

TEST(Blend, MayShareItsOutputWithAnInput) {
    for (const float zoom : {1.0F, 0.7F}) {
        for (const float angle : {0.0F, 20.0F}) {
            scene s = solid_scene(120, 110, {30, 30, 50, 45}, 6);
            s.place = {70, 40, zoom, angle};
            EXPECT_TRUE(blend_matches(s, aliasing::destination));
            EXPECT_TRUE(blend_matches(s, aliasing::icon));
            EXPECT_EQ(run_blend(s, aliasing::destination).output, run_blend(s).output);
            EXPECT_EQ(run_blend(s, aliasing::icon).output, run_blend(s).output);
            s.icon = s.destination;
            EXPECT_TRUE(blend_matches(s, aliasing::both));
        }
    }
}

/* A bar that is bright on the right and dark on the left becomes bright above and dark below. */
TEST(Blend, TurnsAPositiveAngleCounterClockwise) {
    scene s = flat_scene(101, 101, {20, 46, 61, 9});
    for (size_t i = 0; i < s.icon.data.size(); ++i) {
        if (i % 4 != 0) s.icon.data[i] = (i / 4) % 101 > 50 ? 240 : 10;
    }
    s.place = {50, 50, 1.0F, 90.0F};
    const support::blend_outcome done = run_blend(s);
    ASSERT_EQ(done.status, 0);
    EXPECT_EQ(pixel(done.output, 101, 50, 30)[2], 239);
    EXPECT_EQ(pixel(done.output, 101, 50, 70)[2], 10);
    EXPECT_EQ(pixel(done.output, 101, 30, 50)[2], 100);
    EXPECT_TRUE(blend_matches(s));
}

/* Whole turns resample too: the constant for pi is cut to eight digits, so that pixels may move. */
TEST(Blend, TurnsAtEveryAngleButZero) {
    for (const float angle : {0.0F, -0.0F, 360.0F, -360.0F, 1e-40F, 1e-3F, 3600.0F, 180.0F}) {
        scene s = solid_scene(97, 89, {30, 22, 33, 41}, 9);
        s.place.angle = angle;
        EXPECT_TRUE(blend_matches(s));
    }
}

/* Turning a long bar moves parts of it out of the frame and its box about the old centre. */
TEST(Blend, OfATurnedBoxThatReachesOutsideTheFrame) {
    for (int32_t at = 0; at <= 70; at += 7) {
        for (const float angle : {90.0F, 45.0F, -30.0F, 179.0F}) {
            for (const float zoom : {1.0F, 0.9F}) {
                scene s = solid_scene(90, 80, {at, 70 - at, 20, 10 + at / 10}, 10);
                support::fill(s.mask, {at, 10, 18, 60}, 180);
                s.place.angle = angle;
                s.place.zoom = zoom;
                ASSERT_TRUE(blend_matches(s));
            }
        }
    }
}

}  // namespace
