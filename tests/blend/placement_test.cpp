// Where a blend puts its rectangles: the placed boxes, the clamped margins and the mixed pixels.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>

#include "blend/blend_region.h"
#include "blend/rotated_icon.h"
#include "kernels/naive.h"
#include "model/geometry.h"
#include "model/pyramid.h"
#include "model/resample.h"
#include "support/compare.h"
#include "support/guarded_bytes.h"

namespace {

using naive::bytes;

struct placed {
    blend_box box;
    std::string printed;
};

placed place(int32_t dst_width, int32_t dst_height, int32_t center_x, int32_t center_y,
             int32_t width, int32_t height, float zoom, int32_t trace = 0) {
    const blend_image dst = {dst_width, dst_height, nullptr};
    placed result = {};
    testing::internal::CaptureStdout();
    place_blend_box(&dst, center_x, center_y, width, height, trace, zoom, &result.box);
    fflush(stdout);
    result.printed = testing::internal::GetCapturedStdout();
    return result;
}

using corners = std::vector<int32_t>;

corners of(const placed& p) {
    return {p.box.zoom_width, p.box.zoom_height, p.box.zoom_left,
            p.box.zoom_top,   p.box.crop_left,   p.box.crop_top};
}

TEST(PlaceBlendBox, CentresAndClamps) {
    const std::string too_big = "Zoom factor is too big, return to zoom = 1\n";
    EXPECT_EQ(of(place(200, 100, 60, 50, 41, 21, 1)), (corners{41, 21, 40, 40, 40, 40}));
    EXPECT_EQ(of(place(200, 100, 60, 50, 41, 21, 1.5F)), (corners{61, 31, 30, 35, 40, 40}));
    EXPECT_EQ(of(place(200, 100, 10, 9, 41, 21, 1.5F)), (corners{61, 31, 0, 0, 0, 0}));
    EXPECT_EQ(of(place(200, 100, 60, 50, 41, 21, 0.01F)), (corners{0, 0, 60, 50, 40, 40}));
    // Equal sizes fit, one more in either direction falls back; the message says so either way.
    const placed fits = place(82, 42, 60, 50, 41, 21, 2);
    EXPECT_EQ(of(fits), (corners{82, 42, 19, 29, 40, 40}));
    EXPECT_EQ(fits.printed, "");
    for (const placed& p : {place(81, 42, 60, 50, 41, 21, 2), place(82, 41, 60, 50, 41, 21, 2)}) {
        EXPECT_EQ(of(p), (corners{41, 21, 40, 40, 40, 40}));
        EXPECT_EQ(p.printed, too_big);
    }
    // Products beyond 32 bits saturate, halves of negative sizes round toward zero.
    EXPECT_EQ(of(place(200, 100, 5, 5, 41, 21, 1e30F)), (corners{41, 21, 0, 0, 0, 0}));
    EXPECT_EQ(of(place(200, 100, 5, 5, -7, -98, 1)), (corners{-7, -98, 8, 54, 8, 54}));
    EXPECT_EQ(of(place(200, 100, INT32_MIN, -1, 9, 9, 1)), (corners{9, 9, 0, 0, 0, 0}));
}

TEST(PlaceBlendBox, Trace) {
    EXPECT_EQ(place(200, 100, 60, -50, 41, 21, 1.5F, 1).printed,
              "crop_mask_width = 61, crop_mask_height = 31\ncenter_x = 60, center_y = -50\n"
              "diff_x = 30, diff_y = 15\n");
    EXPECT_EQ(place(60, 100, 60, 50, 41, 21, 1.5F, -1).printed,
              "crop_mask_width = 61, crop_mask_height = 31\ncenter_x = 60, center_y = 50\n"
              "diff_x = 30, diff_y = 15\nZoom factor is too big, return to zoom = 1\n");
}

// One call of blend_region on noise of 96 x 80 pixels.
struct region_case {
    int32_t x, y, width, height, levels, margin_levels;
    float zoom;
    int32_t expected_x, expected_y;  // of the blended rectangle
};

void check_region(const region_case& c) {
    SCOPED_TRACE(std::to_string(c.x) + "," + std::to_string(c.y) + " zoom " +
                 std::to_string(c.zoom) + " levels " + std::to_string(c.levels));
    constexpr int32_t w = 96, h = 80, center_x = 44, center_y = 37;
    model::frame src = {w, h, naive::data(4, size_t{4} * w * h, 1)};
    model::frame dst = {w, h, naive::data(4, size_t{4} * w * h, 2)};
    const auto zw = static_cast<int32_t>(static_cast<float>(c.width) * c.zoom);
    const auto zh = static_cast<int32_t>(static_cast<float>(c.height) * c.zoom);
    const bytes mask = naive::data(4, naive::plane_bytes({zw, zh}, 1), 3);

    const int32_t left = std::max(center_x - c.width / 2, 0);
    const int32_t top = std::max(center_y - c.height / 2, 0);
    bytes object = model::read_rectangle(src, left, top, c.width, c.height);
    if (c.zoom != 1.0F) object = model::resample_linear(object, {c.width, c.height}, {zw, zh});
    const bytes under = model::read_rectangle(dst, c.expected_x, c.expected_y, zw, zh);
    model::frame expected = dst;
    model::write_rectangle(expected, c.expected_x, c.expected_y, zw, zh,
                           model::pyramid_blend(object, under, mask, zw, zh, c.levels));

    support::guarded_bytes out(bytes(dst.data.size(), 0xC7), 64, 64);
    const blend_image src_image = {w, h, src.data.data()}, dst_image = {w, h, dst.data.data()};
    const blend_image out_image = {-1, -1, out.data()};
    g_rotated_icon = static_cast<blend_image*>(malloc(sizeof(blend_image)));
    *g_rotated_icon = {1, 1, static_cast<uint8_t*>(malloc(4))};
    ASSERT_EQ(
        blend_region(&src_image, &dst_image, mask.data(), &out_image, c.x, c.y, c.width, c.height,
                     center_x, center_y, c.levels, c.margin_levels, 0, c.zoom, nullptr),
        0);
    EXPECT_EQ(g_rotated_icon, nullptr);
    EXPECT_TRUE(support::same_pixels(expected.data, out.content(), w));
    EXPECT_TRUE(out.intact());
}

TEST(BlendRegion, PlacesTheRectangle) {
    check_region({30, 20, 40, 33, 2, 1, 1, 22, 12});
    check_region({9, 9, 40, 33, 2, 1, 1, 1, 1});  // column and row 1 at the least
    check_region({-50, -50, 40, 33, 2, 4, 1, 1, 1});
    // The last place that is left alone, and the first that is moved to one pixel before the edge.
    check_region({55 + 8, 46 + 8, 40, 33, 1, 1, 1, 55, 46});
    check_region({56 + 8, 47 + 8, 40, 33, 1, 1, 1, 55, 46});
    check_region({900, 900, 40, 33, 1, 1, 1, 55, 46});
    // Zoomed: the margin is scaled, and the limit is a float.
    check_region({30, 20, 40, 33, 1, 1, 0.5F, 26, 16});
    check_region({30, 20, 40, 33, 2, 1, 1.5F, 18, 8});
    check_region({35 + 12, 29 + 12, 40, 33, 2, 1, 1.5F, 35, 29});
    check_region({36 + 12, 30 + 12, 40, 33, 2, 1, 1.5F, 35, 29});
    check_region({2, 3, 40, 33, 2, 3, 1.5F, 1, 1});
    // A margin depth below 0 has no margin.
    check_region({30, 20, 40, 33, 1, -4, 1, 30, 20});
}

TEST(BlendRegion, WithoutALevelThePicturesAreMixed) {
    for (const int32_t levels : {0, -1, -4}) {
        check_region({30, 20, 11, 9, levels, -1, 1, 30, 20});
        check_region({30, 20, 11, 9, levels, 1, 1.3F, 20, 10});
    }
}

TEST(BlendRegion, ABoxWithoutSizeLeavesACopy) {
    const bytes src(size_t{4} * 20 * 10, 1);
    bytes dst = naive::data(4, src.size(), 2);
    const blend_image src_image = {20, 10, const_cast<uint8_t*>(src.data())};
    const blend_image dst_image = {20, 10, dst.data()};
    for (const int32_t width : {0, -8, 5}) {
        const float zoom = width == 5 ? 0.1F : 1.0F;
        support::guarded_bytes out(bytes(dst.size(), 0xC7), 64, 64);
        const blend_image out_image = {20, 10, out.data()};
        EXPECT_EQ(blend_region(&src_image, &dst_image, dst.data(), &out_image, 3, 3, width, 5, 9, 5,
                               1, 1, 0, zoom, nullptr),
                  0);
        EXPECT_EQ(out.content(), dst);
        EXPECT_TRUE(out.intact());
    }
}

}  // namespace
