#include <gtest/gtest.h>
#include <imageblend.h>
#include <stdio.h>

#include "support/compare.h"
#include "support/log_capture.h"
#include "support/scene.h"

namespace {

using support::cutout_matches;
using support::scene;

TEST(Cutout, OfRandomScenes) {
    const int calls = support::random_calls(1500);
    for (int i = 0; i < calls; ++i) {
        ASSERT_TRUE(cutout_matches(
            support::random_scene(support::first_seed() + static_cast<uint64_t>(i))));
    }
}

TEST(Cutout, TakesAlphaFromTheMaskAndColourFromTheSource) {
    scene s = support::solid_scene(4, 3, {1, 1, 1, 1}, 1);
    s.mask.data = {0, 0, 0, 0, 0, 1, 0, 255, 0, 0, 0, 0};
    for (size_t i = 0; i < s.icon.data.size(); ++i)
        s.icon.data[i] = static_cast<uint8_t>(i);
    const support::cutout_outcome cut = support::run_cutout(s);
    EXPECT_EQ(cut.status, 0);
    EXPECT_EQ(cut.width, 3);
    EXPECT_EQ(cut.height, 1);
    EXPECT_EQ(cut.pixels, (model::bytes{255, 21, 22, 23, 0, 0, 0, 0, 255, 29, 30, 31}));
}

TEST(Cutout, LogsTheSizesAndTheSourcePointer) {
    uint8_t source[4 * 2 * 2] = {};
    uint8_t samples[2 * 2] = {0, 9, 0, 9};
    uint8_t pixels[1 * 2 * 4] = {};
    const blend_image source_record{2, 2, source};
    const blend_image mask{2, 2, samples};
    blend_image icon{0, 0, pixels};
    support::clear_log();
    EXPECT_EQ(vorn_create_rgb_icon(&source_record, &mask, &icon, 1.0F), 0);
    const model::log_lines lines = support::take_log();
    char pointer[64];
    snprintf(pointer, sizeof pointer,
             "src_imageptr:%p , src_patchimage:", static_cast<void*>(source));
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0], (model::log_line{6, "LLL crop_mask_width:1,crop_mask_height:2\n"}));
    EXPECT_EQ(lines[1], (model::log_line{4, "create_rgb_icon crop mask width:1 , height:2\n"}));
    EXPECT_EQ(lines[2].priority, 3);
    EXPECT_EQ(lines[2].text.rfind(pointer, 0), 0U) << lines[2].text;
}

TEST(Cutout, WithoutAnObjectWritesNoPixel) {
    scene s = support::solid_scene(100, 100, {0, 0, 0, 0}, 2);
    const support::cutout_outcome cut = support::run_cutout(s);
    EXPECT_EQ(cut.status, 0);
    EXPECT_EQ(cut.width, -98);
    EXPECT_EQ(cut.height, -98);
    EXPECT_TRUE(cutout_matches(s));
}

/* 98 columns short of nothing times one row: a negative number of bytes. */
TEST(Cutout, FailsWhereTheBoxHasANegativeNumberOfBytes) {
    const scene s = support::solid_scene(100, 1, {0, 0, 0, 0}, 3);
    const support::cutout_outcome cut = support::run_cutout(s);
    EXPECT_EQ(cut.status, -1);
    ASSERT_EQ(cut.log.size(), 3U);
    EXPECT_EQ(cut.log[2], (model::log_line{3, "src_patchimage memory alloc failed return\n"}));
    EXPECT_TRUE(cutout_matches(s));
    EXPECT_TRUE(cutout_matches(support::solid_scene(1, 100, {0, 0, 0, 0}, 3)));
}

TEST(Cutout, IsTheSameAtEveryZoom) {
    scene s = support::random_scene(11);
    const support::cutout_outcome at_one = support::run_cutout(s);
    for (const float zoom : {0.5F, 2.0F, 0.0F, -1.0F, 1e30F}) {
        s.place.zoom = zoom;
        EXPECT_EQ(support::run_cutout(s).pixels, at_one.pixels) << zoom;
        EXPECT_TRUE(cutout_matches(s));
    }
}

/* The source's own width is the length of its rows; past its end the edge pixels are read. */
TEST(Cutout, ReadsASourceOfAnotherWidthByItsOwnRows) {
    for (const int32_t width : {1, 5, 19, 20, 21, 40}) {
        scene s = support::solid_scene(20, 13, {3, 2, 17, 11}, 5);
        s.icon = support::noise_picture(width, 13, 6);
        EXPECT_TRUE(cutout_matches(s));
    }
}

}  // namespace
