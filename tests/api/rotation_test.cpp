// The rotated mask and colours against the model, inside and at the edges of their windows.
#include "api/rotation.h"

#include <gtest/gtest.h>
#include <math.h>

#include "kernels/naive.h"
#include "model/geometry.h"
#include "pool/faults.h"
#include "support/guarded_bytes.h"
#include "support/scene.h"

namespace {

using model::frame;
using naive::bytes;
using support::guarded_bytes;

// The rotated mask, zero outside the window that the object can reach.
frame rotated(const rotation& turn, const frame& mask) {
    const pixel_layout layout = {0, 1};
    guarded_bytes samples(mask.data, 0, 0);
    const mask_view upright = view_of_mask(samples.data(), turn.width, turn.height, &layout);
    const mask_extent extent = scan_mask(&upright, turn.width, turn.height);
    rotated_mask result;
    EXPECT_TRUE(make_rotated_mask(&turn, samples.data(), &extent, &result));
    const pixel_window& reach = result.view.window;
    EXPECT_TRUE(reach.x_begin >= 0 && reach.y_begin >= 0 && reach.x_end <= turn.width &&
                reach.y_end <= turn.height);
    frame whole = support::empty_mask(mask.width, mask.height);
    copy_mask_box(&result.view, 0, 0, mask.width, mask.height, whole.data.data(),
                  whole.data.size());
    free_rotated_mask(&result);
    return whole;
}

// The colours of a window, filled in two bands.
void check_colours(const rotation& turn, const frame& icon, const frame& expected,
                   const pixel_window& window) {
    const int32_t columns = window.x_end - window.x_begin, rows = window.y_end - window.y_begin;
    guarded_bytes in(icon.data, 0, 0);
    guarded_bytes colours(bytes(naive::plane_bytes({columns, rows}, 4)), 64, 64);
    colour_rotation work = {turn, in.data(), window, colours.data()};
    rotate_colours(&work, 1, rows / 2, rows);
    rotate_colours(&work, 0, 0, rows / 2);
    ASSERT_TRUE(colours.intact());
    frame actual = {columns, rows, colours.content()};
    // Byte 0 of the pixels holds nothing of use.
    ASSERT_EQ(model::read_rectangle(actual, 0, 0, columns, rows),
              model::read_rectangle(expected, window.x_begin, window.y_begin, columns, rows));
}

TEST(Rotation, ManyAnglesAndCentres) {
    support::dice dice(71);
    const float angles[] = {0,   1e-3F, 30,    45,     89.5F, 90,  135, 179.9F,   180,      359.9F,
                            360, -90,   12345, -0.25F, 720,   270, NAN, INFINITY, -INFINITY};
    for (int round = 0; round < 500; ++round) {
        const int32_t width = dice.between(1, round % 9 == 0 ? 600 : 70);
        const int32_t height = dice.between(1, 60);
        const int32_t x = dice.between(-5, width + 5), y = dice.between(-5, height + 5);
        const float angle = round % 2 == 0 ? dice.one_of(angles)
                                           : static_cast<float>(dice.between(-4000, 4000)) / 10;
        SCOPED_TRACE(std::to_string(angle) + " about " + std::to_string(x) + "," +
                     std::to_string(y));
        const frame icon = support::noise_picture(width, height, 2);
        frame mask = support::empty_mask(width, height);
        support::fill(mask, {dice.between(-9, width - 1), dice.between(-9, height - 1), 40, 30}, 1);
        for (size_t i = 0; i < mask.data.size(); ++i)
            mask.data[i] = static_cast<uint8_t>(mask.data[i] * icon.data[4 * i]);
        const rotation turn = make_rotation(angle, x, y, width, height);
        const model::rotation reference = model::make_rotation(x, y, angle);
        ASSERT_EQ(rotated(turn, mask).data, model::rotate(mask, 1, reference).data);
        pixel_window window = {0, 0, width, height};
        if (round % 3 == 0) window.x_begin = dice.between(0, width - 1);
        if (round % 3 == 0) window.y_end = dice.between(1, height);
        check_colours(turn, icon, model::rotate(icon, 4, reference), window);
        ASSERT_FALSE(HasFatalFailure());
    }
}

TEST(Rotation, FramesWithoutPixelsAndWithoutMemory) {
    const int64_t blocks = faults::live_blocks();
    const uint8_t none[4] = {9, 9, 9, 9};
    rotated_mask result;
    for (const auto& [width, height] : {std::pair(0, 5), std::pair(5, 0), std::pair(-5, 5)}) {
        const rotation turn = make_rotation(30, 1, 1, width, height);
        const mask_extent extent = {int64_t{width} - 1, int64_t{height} - 1, 0, 0};
        ASSERT_TRUE(make_rotated_mask(&turn, none, &extent, &result));
        const pixel_window& window = result.view.window;
        EXPECT_TRUE(window.x_begin >= window.x_end || window.y_begin >= window.y_end);
        free_rotated_mask(&result);
    }
    const rotation turn = make_rotation(90, 1, 1, 2, 2);
    const mask_extent extent = {0, 1, 0, 1};
    const faults::scope no_memory(faults::call::allocation, faults::every());
    EXPECT_FALSE(make_rotated_mask(&turn, none, &extent, &result));
    EXPECT_EQ(faults::live_blocks(), blocks);
}

}  // namespace
