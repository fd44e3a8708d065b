// Where a blend puts its rectangles, what it prints, and blends that no whole call asks for.
#include <gtest/gtest.h>
#include <stdlib.h>

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

std::vector<int32_t> of(const placed& p) {
    return {p.box.zoom_width, p.box.zoom_height, p.box.zoom_left,
            p.box.zoom_top,   p.box.crop_left,   p.box.crop_top};
}

TEST(PlaceBlendBox, FallsBackClampsAndTraces) {
    using corners = std::vector<int32_t>;
    const std::string too_big = "Zoom factor is too big, return to zoom = 1\n";
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
    const std::string numbers =
        "crop_mask_width = 61, crop_mask_height = 31\ncenter_x = 60, center_y = -50\n"
        "diff_x = 30, diff_y = 15\n";
    EXPECT_EQ(place(200, 100, 60, -50, 41, 21, 1.5F, 1).printed, numbers);
    EXPECT_EQ(place(60, 100, 60, -50, 41, 21, 1.5F, -1).printed, numbers + too_big);
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
    const int32_t zw = model::truncate(static_cast<float>(c.width) * c.zoom);
    const int32_t zh = model::truncate(static_cast<float>(c.height) * c.zoom);
    const bytes mask = naive::data(4, size_t{w} * h, 3);
    model::frame expected = dst;
    if (zw > 0 && zh > 0) {
        bytes object = model::read_rectangle(src, center_x - c.width / 2, center_y - c.height / 2,
                                             c.width, c.height);
        if (c.zoom != 1.0F) object = model::resample_linear(object, {c.width, c.height}, {zw, zh});
        const bytes under = model::read_rectangle(dst, c.expected_x, c.expected_y, zw, zh);
        const bytes cut(mask.begin(), mask.begin() + zw * zh);
        model::write_rectangle(expected, c.expected_x, c.expected_y, zw, zh,
                               model::pyramid_blend(object, under, cut, zw, zh, c.levels));
    }
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

TEST(BlendRegion, OfOddDepthsAndSizes) {
    check_region({30, 20, 40, 33, 2, 1, 1, 22, 12});
    // The last place that is left alone, and the first that is moved to one pixel before the edge.
    check_region({55 + 8, 46 + 8, 40, 33, 1, 1, 1, 55, 46});
    check_region({56 + 8, 47 + 8, 40, 33, 1, 1, 1, 55, 46});
    check_region({35 + 12, 29 + 12, 40, 33, 2, 1, 1.5F, 35, 29});
    check_region({36 + 12, 30 + 12, 40, 33, 2, 1, 1.5F, 35, 29});
    // A margin depth below 0 has no margin; without a level the pictures are mixed.
    check_region({30, 20, 40, 33, 1, -4, 1, 30, 20});
    for (const int32_t levels : {0, -1, -4}) {
        check_region({30, 20, 11, 9, levels, -1, 1, 30, 20});
        check_region({30, 20, 11, 9, levels, 1, 1.3F, 20, 10});
    }
    // A box without a size leaves a copy.
    check_region({3, 3, 0, 5, 1, 1, 1, 0, 0});
    check_region({3, 3, -8, 5, 1, 1, 1, 0, 0});
    check_region({3, 3, 5, 5, 1, 1, 0.1F, 0, 0});
}

}  // namespace
