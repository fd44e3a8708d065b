// The box cut out of a mask, and of a rotated one.
#include <gtest/gtest.h>

#include <algorithm>

#include "api/mask_box.h"
#include "support/compare.h"
#include "support/guarded_bytes.h"
#include "support/log_capture.h"
#include "support/scene.h"

namespace {

using model::bytes;
using model::frame;
using support::guarded_bytes;

constexpr pixel_layout MASK = {0, 1};

struct cut {
    int32_t width = 0, height = 0, bare_width = 0, bare_height = 0, x0 = 0, y0 = 0;
    int32_t level_zoom = 0, level_box = 0;
    bytes pixels;
    bool intact = true;
};

struct wanted {
    bool margins = true;
    float zoom = 1;
    size_t room = 0;  // bytes of the crop buffer; 0 is the whole frame
};

cut crop(const frame& mask, const wanted& w) {
    const size_t room = w.room == 0 ? mask.data.size() : w.room;
    guarded_bytes out(bytes(room, 0xC7), 64, 64);
    cut c;
    support::clear_log();
    crop_mask(mask.data.data(), mask.width, mask.height, out.data(), &c.width, &c.height,
              &c.bare_width, &c.bare_height, &c.x0, &c.y0, &c.level_zoom, 4, true, &MASK, w.margins,
              &c.level_box, w.zoom, room);
    c.pixels = out.content();
    c.intact = out.intact();
    return c;
}

// `before_x`, `before_y`: the corner of the box before the rotation.
cut crop_rotated(const frame& mask, int32_t before_x, int32_t before_y, int32_t center_x,
                 int32_t center_y, float zoom = 1) {
    guarded_bytes out(bytes(mask.data.size(), 0xC7), 64, 64);
    const mask_view view = view_of_mask(mask.data.data(), mask.width, mask.height, &MASK);
    cut c;
    c.x0 = before_x;
    c.y0 = before_y;
    support::clear_log();
    crop_rotated_mask(&view, mask.width, mask.height, &c.width, &c.height, &c.bare_width,
                      &c.bare_height, &c.x0, &c.y0, center_x, center_y, &c.level_zoom, 4, true,
                      true, &c.level_box, zoom);
    copy_mask_box(&view, c.x0, c.y0, c.width, c.height, out.data(), mask.data.size());
    c.pixels = out.content();
    c.intact = out.intact();
    return c;
}

frame noise_object(int32_t width, int32_t height, support::rectangle r) {
    support::dice dice(61);
    frame mask = support::empty_mask(width, height);
    for (int32_t y = r.y; y < r.y + r.height; ++y)
        for (int32_t x = r.x; x < r.x + r.width; ++x)
            mask.data[static_cast<size_t>(y * width + x)] =
                static_cast<uint8_t>(dice.between(1, 255));
    return mask;
}

// The samples of a rectangle, 0 outside the frame, then what the buffer held.
bytes samples_of(const frame& mask, const cut& c, size_t room) {
    bytes out;
    for (int32_t y = c.y0; y < c.y0 + c.height; ++y) {
        for (int32_t x = c.x0; x < c.x0 + c.width; ++x) {
            const bool inside = x >= 0 && y >= 0 && x < mask.width && y < mask.height;
            out.push_back(inside ? mask.data[static_cast<size_t>(y * mask.width + x)] : 0);
        }
    }
    out.resize(room, 0xC7);
    return out;
}

testing::AssertionResult logged_size(int32_t width, int32_t height) {
    return support::same_log({{6, "LLL crop_mask_width:" + std::to_string(width) +
                                      ",crop_mask_height:" + std::to_string(height) + "\n"}},
                             support::take_log());
}

TEST(CropMask, CopiesTheBox) {
    const frame mask = noise_object(90, 70, {20, 30, 25, 17});
    const cut wide = crop(mask, {});
    EXPECT_TRUE(logged_size(41, 33));
    EXPECT_EQ(wide.x0, 12);
    EXPECT_EQ(wide.y0, 22);
    EXPECT_EQ(wide.bare_width, 25);
    EXPECT_EQ(wide.bare_height, 17);
    EXPECT_EQ(wide.pixels, samples_of(mask, wide, mask.data.size()));
    const cut bare = crop(mask, {false, 1, 0});
    EXPECT_TRUE(logged_size(25, 17));
    EXPECT_EQ(bare.pixels, samples_of(mask, bare, mask.data.size()));
    EXPECT_TRUE(wide.intact && bare.intact);
    // The seams are named before the size.
    const cut edge = crop(noise_object(90, 70, {0, 30, 25, 17}), {});
    EXPECT_TRUE(support::same_log(
        {{4, "orign pic xl seam\n"}, {6, "LLL crop_mask_width:33,crop_mask_height:33\n"}},
        support::take_log()));
    EXPECT_EQ(edge.x0, 0);
}

TEST(CropMask, LeavesOutWhatDoesNotFit) {
    const frame mask = noise_object(90, 70, {20, 30, 25, 17});
    const bytes whole = crop(mask, {false, 1, 0}).pixels;
    for (const size_t room : {1U, 24U, 25U, 60U, 424U}) {
        const cut part = crop(mask, {false, 1, room});
        EXPECT_TRUE(part.intact) << room;
        for (size_t i = 0; i < room; ++i)
            EXPECT_TRUE(part.pixels[i] == whole[i] || part.pixels[i] == 0xC7) << room << ":" << i;
    }
    const cut none = crop(support::empty_mask(20, 20), {});
    EXPECT_TRUE(logged_size(-18, -18));
    EXPECT_TRUE(none.intact && none.pixels == bytes(400, 0xC7));
    EXPECT_EQ(none.level_zoom, -4);
}

TEST(CropMask, LevelOfTheZoomedBox) {
    // The margined box has 56 x 76 pixels, the bare one 40 x 60.
    const frame mask = noise_object(200, 200, {50, 50, 40, 60});
    struct known {
        float zoom;
        int32_t level;
    };
    for (const known k : {known{1, 1}, known{1.142F, 1}, known{1.143F, 2}, known{0.285F, -1},
                          known{0.286F, 1}, known{2.3F, 3}, known{4.58F, 4}, known{30, 4},
                          known{0.01F, -4}, known{0, -4}, known{-2, -4}}) {
        const cut c = crop(mask, {true, k.zoom, 0});
        EXPECT_EQ(c.level_zoom, k.level) << k.zoom;
        EXPECT_EQ(c.level_box, 1);
    }
    EXPECT_EQ(crop(mask, {false, 0.4F, 0}).level_zoom, 1);
    EXPECT_EQ(crop(mask, {false, 0.39F, 0}).level_zoom, -1);
}

TEST(CropRotatedMask, KeepsOrCentresTheBox) {
    const frame mask = noise_object(90, 70, {20, 30, 25, 17});
    const cut kept = crop_rotated(mask, 12, 22, 70, 60);
    EXPECT_TRUE(support::same_log({}, support::take_log()));
    EXPECT_EQ(kept.x0, 12);
    EXPECT_EQ(kept.y0, 22);
    EXPECT_EQ(kept.pixels, samples_of(mask, kept, mask.data.size()));
    for (const auto& [x, y] : {std::pair(12, 21), std::pair(13, 22)}) {
        const cut centred = crop_rotated(mask, x, y, 40, 35, 2);
        EXPECT_EQ(centred.x0, 40 - 41 / 2);
        EXPECT_EQ(centred.y0, 35 - 33 / 2);
        EXPECT_EQ(centred.level_zoom, 2);
        EXPECT_EQ(centred.level_box, 1);
        EXPECT_EQ(centred.pixels, samples_of(mask, centred, mask.data.size()));
    }
    // A re-centred box may reach outside the frame, which reads as 0.
    for (const auto& [x, y] : {std::pair(3, 3), std::pair(86, 66), std::pair(-300, 10)}) {
        const cut outside = crop_rotated(mask, 0, 0, x, y);
        EXPECT_EQ(outside.x0, x - 20);
        EXPECT_EQ(outside.pixels, samples_of(mask, outside, mask.data.size()));
        EXPECT_TRUE(outside.intact);
    }
    crop_rotated(noise_object(90, 70, {65, 30, 25, 17}), 0, 0, 40, 35);
    EXPECT_TRUE(support::same_log({{4, "orign pic xr seam\n"}}, support::take_log()));
    // An object that was rotated out of the frame.
    const cut none = crop_rotated(support::empty_mask(30, 21), 0, 0, 15, 10);
    EXPECT_EQ(none.width, -28);
    EXPECT_EQ(none.x0, 15 + 14);
    EXPECT_EQ(none.y0, 10 + 9);
    EXPECT_TRUE(none.intact && none.pixels == bytes(630, 0xC7));
}

// A window of a frame with other samples around it, as part of a larger mask.
TEST(MaskView, ScansAndCopiesItsWindow) {
    support::dice dice(62);
    for (int round = 0; round < 400; ++round) {
        const int32_t width = dice.between(1, 200), height = dice.between(1, 30);
        const int32_t left = dice.between(-20, 50), top = dice.between(-20, 50);
        const int32_t step = 1 + round % 2 * 3, row_samples = width + dice.between(0, 9);
        frame inner = support::empty_mask(width, height);
        for (int32_t k = dice.between(0, 3); k > 0; --k)
            inner.data[static_cast<size_t>(
                dice.between(0, static_cast<int32_t>(inner.data.size()) - 1))] = 7;
        bytes samples(static_cast<size_t>(row_samples * height * step), 9);
        mask_extent expected = {299, 199, 0, 0};
        for (int32_t i = 0; i < width * height; ++i) {
            const int32_t x = i % width, y = i / width;
            const uint8_t value = inner.data[static_cast<size_t>(i)];
            samples[static_cast<size_t>((y * row_samples + x) * step)] = value;
            if (value == 0) continue;
            expected.xmin = std::min<int64_t>(expected.xmin, left + x);
            expected.ymin = std::min<int64_t>(expected.ymin, top + y);
            expected.xmax = std::max<int64_t>(expected.xmax, left + x);
            expected.ymax = std::max<int64_t>(expected.ymax, top + y);
        }
        const mask_view view = {
            samples.data(), {left, top, left + width, top + height}, row_samples, step};
        if (left >= 0 && top >= 0) {
            const mask_extent found = scan_mask(&view, 300, 200);
            ASSERT_TRUE(found.xmin == expected.xmin && found.xmax == expected.xmax &&
                        found.ymin == expected.ymin && found.ymax == expected.ymax)
                << width << "x" << height << " at " << left << "," << top;
        }
        cut box;
        box.x0 = dice.between(-30, 30);
        box.y0 = dice.between(-30, 30);
        box.width = dice.between(1, 60);
        box.height = dice.between(1, 60);
        const auto size = static_cast<size_t>(box.width * box.height);
        guarded_bytes out(bytes(size, 0xC7), 64, 64);
        copy_mask_box(&view, left + box.x0, top + box.y0, box.width, box.height, out.data(), size);
        ASSERT_TRUE(out.content() == samples_of(inner, box, size) && out.intact());
    }
}

}  // namespace
