// SPDX-License-Identifier: Apache-2.0
// Where a blend puts its rectangles, what it prints, and what becomes of the rotated icon.
#include <gtest/gtest.h>
#include <stdlib.h>

#include "blend/blend_region.h"
#include "blend/rotated_icon.h"
#include "support/scene.h"

namespace {

struct placed {
    std::vector<int32_t> box;  // size and corner of the zoomed box, corner of the bare one
    std::string printed;
};

placed place(int32_t dst_width, int32_t dst_height, int32_t center_x, int32_t center_y,
             int32_t width, int32_t height, float zoom, bool trace = false) {
    const blend_image dst = {dst_width, dst_height, nullptr};
    blend_box b = blend_box();
    b.center_x = center_x;
    b.center_y = center_y;
    b.crop_width = width;
    b.crop_height = height;
    b.zoom = zoom;
    testing::internal::CaptureStdout();
    place_blend_box(&dst, trace, &b);
    fflush(stdout);
    return {{b.zoom_width, b.zoom_height, b.zoom_left, b.zoom_top, b.crop_left, b.crop_top},
            testing::internal::GetCapturedStdout()};
}

TEST(PlaceBlendBox, FallsBackClampsAndTraces) {
    using box = std::vector<int32_t>;
    const std::string too_big = "Zoom factor is too big, return to zoom = 1\n";
    // Equal sizes fit, one more in either direction falls back; the message says so either way.
    const placed fits = place(82, 42, 60, 50, 41, 21, 2);
    EXPECT_EQ(fits.box, (box{82, 42, 19, 29, 40, 40}));
    EXPECT_EQ(fits.printed, "");
    for (const placed& p : {place(81, 42, 60, 50, 41, 21, 2), place(82, 41, 60, 50, 41, 21, 2)}) {
        EXPECT_EQ(p.box, (box{41, 21, 40, 40, 40, 40}));
        EXPECT_EQ(p.printed, too_big);
    }
    // Products beyond 32 bits saturate, halves of negative sizes round toward zero.
    EXPECT_EQ(place(200, 100, 5, 5, 41, 21, 1e30F).box, (box{41, 21, 0, 0, 0, 0}));
    EXPECT_EQ(place(200, 100, 5, 5, -7, -98, 1).box, (box{-7, -98, 8, 54, 8, 54}));
    EXPECT_EQ(place(200, 100, INT32_MIN, -1, 9, 9, 1).box, (box{9, 9, 0, 0, 0, 0}));
    const std::string numbers =
        "crop_mask_width = 61, crop_mask_height = 31\ncenter_x = 60, center_y = -50\n"
        "diff_x = 30, diff_y = 15\n";
    EXPECT_EQ(place(200, 100, 60, -50, 41, 21, 1.5F, true).printed, numbers);
    EXPECT_EQ(place(60, 100, 60, -50, 41, 21, 1.5F, true).printed, numbers + too_big);
}

// Without a size nothing is blended into the copy.
TEST(BlendRegion, FreesTheRotatedIcon) {
    model::frame frame = support::noise_picture(96, 80, 1);
    const model::bytes mask(frame.data.size() / 4, 255);
    const blend_image image = {96, 80, frame.data.data()};
    for (const int32_t width : {40, 0}) {
        model::bytes output(frame.data.size());
        const blend_image out_image = {-1, -1, output.data()};
        g_rotated_icon = static_cast<blend_image*>(malloc(sizeof(blend_image)));
        *g_rotated_icon = {1, 1, static_cast<uint8_t*>(malloc(4))};
        blend_box box = blend_box();
        box.x = 30;
        box.y = 20;
        box.crop_width = width;
        box.crop_height = 33;
        box.center_x = 44;
        box.center_y = 37;
        box.levels = box.margin_levels = 1;
        box.zoom = 1;
        place_blend_box(&image, false, &box);
        EXPECT_EQ(blend_region(&image, &image, mask.data(), &out_image, &box, nullptr), 0);
        EXPECT_EQ(g_rotated_icon, nullptr);
        EXPECT_EQ(output == frame.data, width == 0);
    }
}

}  // namespace
