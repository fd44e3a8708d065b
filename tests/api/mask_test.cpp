// The box of a mask and its crop, against the model, with the layouts, buffers and frames that no
// whole call has.
#include <gtest/gtest.h>

#include <algorithm>

#include "api/mask_box.h"
#include "model/geometry.h"
#include "support/compare.h"
#include "support/guarded_bytes.h"
#include "support/log_capture.h"
#include "support/scene.h"

namespace {

using model::bytes;
using model::frame;
using support::guarded_bytes;

// A few samples in a frame of zeros; often near its edges.
frame specks(support::dice& dice, int32_t width, int32_t height) {
    frame mask = support::empty_mask(width, height);
    const int32_t margin = dice.between(0, 9);
    for (int32_t k = dice.between(0, 4); k > 0 && !mask.data.empty(); --k) {
        const int32_t x = std::clamp(dice.between(-margin, width + margin), 0, width - 1);
        const int32_t y = std::clamp(dice.between(-margin, height + margin), 0, height - 1);
        support::fill(mask, {x, y, 1, 1}, static_cast<uint8_t>(dice.between(1, 255)));
    }
    return mask;
}

// The samples as one byte of pixels of `layout.step` bytes that hold other values.
bytes spread(const frame& mask, const pixel_layout& layout) {
    const auto step = static_cast<size_t>(layout.step);
    bytes out(mask.data.size() * step, 99);
    for (size_t i = 0; i < mask.data.size(); ++i)
        out[i * step + static_cast<size_t>(layout.offset)] = mask.data[i];
    return out;
}

// The box, its log and its crop of `room` bytes agree with the model.
void check_box(const frame& mask, const pixel_layout& layout, bool clamp, bool margins,
               size_t room) {
    SCOPED_TRACE(std::to_string(mask.width) + "x" + std::to_string(mask.height));
    model::log_lines lines;
    const auto mode = margins ? model::margins::logged : model::margins::off;
    const auto [box, fits] = model::find_mask_box(mask, clamp, mode, lines);
    guarded_bytes samples(spread(mask, layout), 0, 0);
    model::mask_box found;
    support::clear_log();
    const int32_t status =
        find_mask_box(samples.data(), mask.width, mask.height, &found.x0, &found.y0, &found.width,
                      &found.height, nullptr, nullptr, 4, clamp, &layout, margins, &found.level);
    EXPECT_EQ(status, !fits ? -1 : lines.empty() ? 0 : 2);
    EXPECT_TRUE(support::same_log(lines, support::take_log()));
    EXPECT_EQ(found.level, box.level);

    guarded_bytes crop(bytes(room, 0xC7), 64, 64);
    int32_t level_zoom;
    crop_mask(samples.data(), mask.width, mask.height, crop.data(), &found.width, &found.height,
              &found.bare_width, &found.bare_height, &found.x0, &found.y0, &level_zoom, 4, clamp,
              &layout, margins, &found.level, 1.5F, room);
    model::log(lines, 6, "LLL crop_mask_width:%d,crop_mask_height:%d\n", box.width, box.height);
    EXPECT_TRUE(support::same_log(lines, support::take_log()));
    EXPECT_EQ((std::array{found.x0, found.y0, found.width, found.height, found.bare_width,
                          found.bare_height, found.level}),
              (std::array{box.x0, box.y0, box.width, box.height, box.bare_width, box.bare_height,
                          box.level}));
    const auto shorter = static_cast<float>(std::min(box.width, box.height));
    EXPECT_EQ(level_zoom, model::pyramid_level(model::truncate(shorter * 1.5F), clamp));
    // Rows that do not fit are left out.
    bytes expected = model::crop_mask(mask, box);
    const size_t row_bytes = static_cast<size_t>(std::max(box.width, 1));
    expected.resize(std::min(expected.size(), room / row_bytes * row_bytes));
    expected.resize(room, 0xC7);
    EXPECT_TRUE(crop.content() == expected && crop.intact());
}

TEST(MaskBox, AgreesWithTheModel) {
    support::dice dice(51);
    for (int round = 0; round < 600; ++round) {
        const int32_t width = dice.between(1, 400), height = dice.between(1, 90);
        const frame mask = specks(dice, width, height);
        const pixel_layout layout = {round % 4 == 0 ? round % 3 : 0, round % 4 == 0 ? 4 : 1};
        const int32_t pixels = width * height;
        check_box(mask, layout, dice.percent(50), dice.percent(70),
                  static_cast<size_t>(dice.between(1, dice.percent(30) ? pixels : 2 * pixels)));
        ASSERT_FALSE(HasFailure());
    }
    for (const int32_t side : {127, 128, 511, 512}) {
        frame mask = support::empty_mask(620, 640);
        support::fill(mask, {20, 100, side + 20, side}, 255);
        for (const bool clamp : {true, false})
            check_box(mask, {0, 1}, clamp, true, mask.data.size());
    }
    for (const auto& [width, height] : {std::pair(0, 10), std::pair(10, -3), std::pair(0, 0)}) {
        for (const bool margins : {true, false})
            check_box({width, height, {}}, {0, 1}, true, margins, 50);
    }
}

// A window of a frame with other samples around it, as part of a larger mask.
TEST(MaskView, ScansAndCopiesItsWindow) {
    support::dice dice(62);
    for (int round = 0; round < 400; ++round) {
        const int32_t width = dice.between(1, 200), height = dice.between(1, 30);
        const int32_t left = dice.between(-20, 50), top = dice.between(-20, 50);
        const int32_t step = 1 + round % 2 * 3, row_samples = width + dice.between(0, 9);
        const frame inner = specks(dice, width, height);
        frame outer = {row_samples, height, bytes(static_cast<size_t>(row_samples * height), 9)};
        frame whole = support::empty_mask(300, 200);
        for (int32_t i = 0; i < width * height; ++i) {
            const int32_t x = i % width, y = i / width;
            const uint8_t value = inner.data[static_cast<size_t>(i)];
            support::fill(outer, {x, y, 1, 1}, value);
            support::fill(whole, {left + x, top + y, 1, 1}, value);
        }
        guarded_bytes samples(spread(outer, {0, step}), 0, 0);
        const mask_view view = {
            samples.data(), {left, top, left + width, top + height}, row_samples, step};
        if (left >= 0 && top >= 0) {
            model::log_lines none;
            const auto box = model::find_mask_box(whole, true, model::margins::off, none).box;
            const mask_extent found = scan_mask(&view, 300, 200);
            ASSERT_TRUE(found.xmin == box.x0 && extent_width(&found) == box.width &&
                        found.ymin == box.y0 && extent_height(&found) == box.height)
                << width << "x" << height << " at " << left << "," << top;
        }
        model::mask_box box;
        box.x0 = dice.between(-30, 30);
        box.y0 = dice.between(-30, 30);
        box.width = dice.between(1, 60);
        box.height = dice.between(1, 60);
        const bytes expected = model::crop_mask(inner, box);
        guarded_bytes out(bytes(expected.size(), 0xC7), 64, 64);
        copy_mask_box(&view, left + box.x0, top + box.y0, box.width, box.height, out.data(),
                      expected.size());
        ASSERT_TRUE(out.content() == expected && out.intact());
    }
}

}  // namespace
