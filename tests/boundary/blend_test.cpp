// SPDX-License-Identifier: Apache-2.0
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
    const aliasing ways[] = {aliasing::none,        aliasing::part_of_destination,
                             aliasing::destination, aliasing::icon,
                             aliasing::none,        aliasing::part_of_icon};
    for (const uint64_t seed : support::seeds(3000))
        ASSERT_TRUE(blend_matches(support::random_scene(seed), ways[seed % 6]));
}

TEST(Blend, LogsItsStepsInOrder) {
    const scene s = solid_scene(80, 70, {3, 20, 40, 40}, 1);
    const model::log_lines expected = {
        {3, "LLF time_cost_start"},
        {4, "ImageBlending version 2.0, build time:"},
        {3, "LLF input param center[40,35],zoom=1.000000,angle=0.000000\n"},
        {4, "orign pic xl seam\n"},
        {6, "LLL crop_mask_width:51,crop_mask_height:56\n"},
        {6, "LLF double check cropsize[51,56],maxsize[80,70]\n"},
        {3, " LLF time_cost_end"}};
    EXPECT_TRUE(support::same_log(expected, run_blend(s).log));
}

TEST(Blend, OfSpecialPlacements) {
    const struct {
        support::rectangle object;
        model::placement place;
    } table[] = {
        // a box of 56 x 56 as large as the destination, and a little larger
        {{40, 50, 40, 40}, {60, 60, 2.0F, 0}},
        {{40, 50, 40, 40}, {60, 60, 2.02F, 0}},
        // the corner is rounded to single precision before it is cut to an integer
        {{50, 50, 30, 12}, {100, 100, nextafterf(0.2F, 1.0F), 0}},
        // whole turns resample too, as the constant for pi is cut to eight digits
        {{30, 22, 33, 41}, {60, 60, 1, 360}},
        {{30, 22, 33, 41}, {60, 60, 1, 3600}},
        // no turn in single precision
        {{30, 22, 33, 41}, {60, 60, 1, 1e-45F}},
    };
    for (const auto& [object, place] : table) {
        scene s = solid_scene(112, 150, object, 3);
        s.place = place;
        EXPECT_TRUE(blend_matches(s));
    }
}

// The zoomed box is a little longer than a whole number of pixels, and a sum with it is not.
TEST(Blend, AtAZoomJustAboveOne) {
    scene s = solid_scene(150, 152, {60, 62, 40, 40}, 4);
    for (int32_t centre = 115; centre < 130; ++centre) {
        s.place = {centre, centre, nextafterf(1.0F, 2.0F), 0};
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
