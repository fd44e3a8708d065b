// SPDX-License-Identifier: Apache-2.0
// The box of a mask and its crop, against the model, with the layouts and buffers that no whole
// call has.
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
    const model::mask_box box = model::find_mask_box(mask, clamp, margins, lines);
    guarded_bytes samples(spread(mask, layout), 0, 0);
    const mask_view view = view_of_mask(samples.data(), mask.width, mask.height, &layout);
    mask_box found;
    support::clear_log();
    EXPECT_EQ(find_mask_box(&view, clamp, margins, &found), !box.fits ? -1 : lines.empty() ? 0 : 2);
    EXPECT_TRUE(support::same_log(lines, support::take_log()));
    EXPECT_EQ((std::array{found.x0, found.y0, found.crop_mask_width, found.crop_mask_height,
                          found.bare_width, found.bare_height, found.level}),
              (std::array{box.x0, box.y0, box.width, box.height, box.bare_width, box.bare_height,
                          box.level}));
    if (!clamp) return;

    guarded_bytes crop(bytes(room, 0xC7), 64, 64);
    crop_mask(&view, margins, crop.data(), room, &found);
    model::log(lines, 6, "LLL crop_mask_width:%d,crop_mask_height:%d\n", box.width, box.height);
    EXPECT_TRUE(support::same_log(lines, support::take_log()));
    // Rows that do not fit are left out.
    bytes expected = model::crop_mask(mask, box);
    const size_t row_bytes = static_cast<size_t>(std::max(box.width, 1));
    expected.resize(std::min(expected.size(), room / row_bytes * row_bytes));
    expected.resize(room, 0xC7);
    EXPECT_TRUE(crop.holds(expected));
}

TEST(MaskBox, AgreesWithTheModel) {
    support::dice dice(51);
    for (uint64_t seed = 1; seed <= 300; ++seed) {
        const frame mask = support::random_scene(seed).mask;
        const bool in_pixels = dice.percent(25);
        const pixel_layout layout = {in_pixels ? dice.between(0, 3) : 0, in_pixels ? 4 : 1};
        const auto samples = static_cast<int32_t>(mask.data.size());
        const int32_t room = dice.between(1, dice.percent(30) ? samples : 2 * samples);
        check_box(mask, layout, dice.percent(80), dice.percent(70), static_cast<size_t>(room));
        ASSERT_FALSE(HasFailure());
    }
}

}  // namespace
