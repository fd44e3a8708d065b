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

TEST(Blend, OfRandomScenes) {
    const int calls = support::random_calls(3000);
    const aliasing ways[] = {aliasing::none, aliasing::none, aliasing::destination, aliasing::icon};
    for (int i = 0; i < calls; ++i) {
        const uint64_t seed = support::first_seed() + static_cast<uint64_t>(i);
        ASSERT_TRUE(blend_matches(support::random_scene(seed), ways[seed % 4]));
    }
}

/* An object under 16 pixels is mixed without a pyramid: (255 * 200 + 128) >> 8 = 199. */
TEST(Blend, MixesASmallObjectAtItsPlace) {
    scene s = solid_scene(40, 40, {5, 5, 10, 10}, 1);
    s.icon = support::flat_picture(40, 40, 17, 200);
    s.destination = support::flat_picture(40, 40, 33, 100);
    s.place.center_y = 21;
    const support::blend_outcome done = run_blend(s);
    ASSERT_EQ(done.status, 0);
    for (int32_t y = 0; y < 40; ++y) {
        for (int32_t x = 0; x < 40; ++x) {
            const bool inside = x >= 15 && x < 25 && y >= 16 && y < 26;
            const uint8_t* const p = done.output.data() + (y * 40 + x) * 4;
            ASSERT_EQ(p[0], inside ? 255 : 33) << x << "," << y;
            ASSERT_EQ(p[3], inside ? 199 : 100) << x << "," << y;
        }
    }
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

TEST(Blend, OfSpecialPlacements) {
    struct special {
        support::rectangle object;
        model::placement place;
    };
    const float above_a_fifth = nextafterf(0.2F, 1.0F);
    const special table[] = {
        /* a box of 56 x 56 as large as the destination, and a little larger */
        {{40, 50, 40, 40}, {60, 60, 2.0F, 0}},
        {{40, 50, 40, 40}, {60, 60, 2.02F, 0}},
        /* the corner is rounded to single precision before it is cut to an integer */
        {{50, 50, 30, 12}, {100, 100, above_a_fifth, 0}},
        /* no object and no size */
        {{0, 0, 0, 0}, {60, 60, 1, 0}},
        {{0, 0, 0, 0}, {60, 60, -1, 45}},
        {{8, 8, 9, 9}, {60, 60, 0, 45}},
        {{8, 8, 9, 9}, {60, 60, -2, 0}},
        /* whole turns resample too, as the constant for pi is cut to eight digits */
        {{30, 22, 33, 41}, {60, 60, 1, 360}},
        {{30, 22, 33, 41}, {60, 60, 1, -360}},
        {{30, 22, 33, 41}, {60, 60, 1, 3600}},
        {{30, 22, 33, 41}, {60, 60, 1, 1e-40F}},
        {{30, 22, 33, 41}, {60, 60, 1, -0.0F}},
    };
    for (const special& t : table) {
        scene s = solid_scene(112, 150, t.object, 3);
        s.place = t.place;
        EXPECT_TRUE(blend_matches(s));
    }
}

TEST(Blend, MayShareItsOutputWithAnInput) {
    for (const float zoom : {1.0F, 0.7F}) {
        for (const float angle : {0.0F, 20.0F}) {
            scene s = solid_scene(120, 110, {30, 30, 50, 45}, 6);
            s.place = {70, 40, zoom, angle};
            EXPECT_TRUE(blend_matches(s, aliasing::destination));
            EXPECT_TRUE(blend_matches(s, aliasing::icon));
            s.icon = s.destination;
            EXPECT_TRUE(blend_matches(s, aliasing::both));
        }
    }
}

}  // namespace
