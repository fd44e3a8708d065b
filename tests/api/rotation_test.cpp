// The rotation of a frame and its mask, by a sample-wise reference and by known angles.
#include "api/rotation.h"

#include <gtest/gtest.h>
#include <math.h>

#include <algorithm>

#include "kernels/naive.h"
#include "pool/faults.h"
#include "support/guarded_bytes.h"
#include "support/scene.h"

namespace {

using naive::bytes;
using naive::extent;
using support::guarded_bytes;

struct turned {
    bytes mask, icon;
};

// The rotated frames whole: the mask is zero outside its window, and the colours are those of
// `window` alone.
turned run(const rotation& turn, const bytes& mask, const bytes& icon, const pixel_window& window) {
    const pixel_layout layout = {0, 1};
    const int32_t width = turn.width, height = turn.height;
    guarded_bytes mask_in(mask, 0, 0), icon_in(icon, 0, 0);
    const mask_view upright = view_of_mask(mask_in.data(), width, height, &layout);
    const mask_extent extent = scan_mask(&upright, width, height);
    rotated_mask rotated;
    EXPECT_TRUE(make_rotated_mask(&turn, mask_in.data(), &extent, &rotated));
    turned result = {bytes(mask.size()), {}};
    const pixel_window& reach = rotated.view.window;
    EXPECT_TRUE(reach.x_begin >= 0 && reach.y_begin >= 0 && reach.x_end <= width &&
                reach.y_end <= height);
    for (int32_t y = reach.y_begin; y < reach.y_end; ++y) {
        for (int32_t x = reach.x_begin; x < reach.x_end; ++x) {
            result.mask[static_cast<size_t>(y * width + x)] =
                rotated.view
                    .samples[(y - reach.y_begin) * rotated.view.row_samples + (x - reach.x_begin)];
        }
    }
    free_rotated_mask(&rotated);
    const int32_t columns = window.x_end - window.x_begin, rows = window.y_end - window.y_begin;
    guarded_bytes colours(bytes(naive::plane_bytes({columns, rows}, 4)), 64, 64);
    colour_rotation work = {turn, icon_in.data(), window, colours.data()};
    rotate_colours(&work, 1, rows / 2, rows);
    rotate_colours(&work, 0, 0, rows / 2);
    EXPECT_TRUE(colours.intact());
    result.icon = bytes(icon.size(), 0xC7);
    for (int32_t y = window.y_begin; y < window.y_end; ++y) {
        const uint8_t* const row = colours.data() + 4 * (y - window.y_begin) * columns;
        std::copy_n(row, 4 * columns, result.icon.data() + 4 * (y * width + window.x_begin));
    }
    return result;
}

pixel_window whole(extent size) {
    return {0, 0, size.width, size.height};
}

int64_t truncated(float value) {
    if (value != value) return 0;
    return static_cast<int64_t>(std::clamp(value, -1e9F, 1e9F));
}

// The source pixel of (x, y), or -1 outside the frame.
int64_t source_of(float angle, int32_t center_x, int32_t center_y, extent size, int32_t x,
                  int32_t y) {
    const auto t = static_cast<float>(static_cast<double>(angle) * -3.1415926 / 180.0);
    const auto c = static_cast<float>(cos(static_cast<double>(t)));
    const auto s = static_cast<float>(sin(static_cast<double>(t)));
    const auto fx = static_cast<float>(center_x), fy = static_cast<float>(center_y);
    const float dx = static_cast<float>(x) - fx, dy = static_cast<float>(y) - fy;
    const int64_t sy = truncated((fy + c * dy) - s * dx);
    const int64_t sx = truncated((fx + s * dy) + c * dx);
    const bool inside = sx >= 0 && sy >= 0 && sx < size.width && sy < size.height;
    return inside ? sy * size.width + sx : -1;
}

// Noise in a rectangle, or everywhere.
bytes object_mask(extent size, support::dice& dice, bool everywhere) {
    bytes mask = naive::data(4, naive::plane_bytes(size, 1), 1);
    if (everywhere) return mask;
    const int32_t left = dice.between(0, size.width - 1), right = dice.between(left, size.width);
    const int32_t top = dice.between(0, size.height - 1), bottom = dice.between(top, size.height);
    for (size_t p = 0; p < mask.size(); ++p) {
        const auto at = static_cast<int32_t>(p);
        const int32_t x = at % size.width, y = at / size.width;
        if (x < left || x >= right || y < top || y >= bottom) mask[p] = 0;
    }
    return mask;
}

TEST(Rotation, ManyAnglesAndCentres) {
    support::dice dice(71);
    const float angles[] = {0,   1e-3F, 30,     45,  89.5F, 90,    135,    179.9F,
                            180, 270,   359.9F, 360, -90,   12345, -0.25F, 720};
    for (int round = 0; round < 500; ++round) {
        const extent size = {dice.between(1, round % 9 == 0 ? 600 : 70), dice.between(1, 60)};
        const int32_t cx = dice.between(-5, size.width + 5), cy = dice.between(-5, size.height + 5);
        const float angle = round % 2 == 0 ? angles[static_cast<size_t>(round / 2) % 16]
                                           : static_cast<float>(dice.between(-4000, 4000)) / 10;
        const bytes mask = object_mask(size, dice, round % 5 == 0);
        const bytes icon = naive::data(4, naive::plane_bytes(size, 4), 2);
        pixel_window window = whole(size);
        if (round % 3 == 0) {
            window.x_begin = dice.between(0, size.width);
            window.y_end = dice.between(0, size.height);
        }
        turned actual =
            run(make_rotation(angle, cx, cy, size.width, size.height), mask, icon, window);
        turned expected = {bytes(mask.size()), bytes(icon.size(), 0xC7)};
        for (size_t p = 0; p < mask.size(); ++p) {
            const auto at = static_cast<int32_t>(p);
            const int32_t x = at % size.width, y = at / size.width;
            const int64_t from = source_of(angle, cx, cy, size, x, y);
            if (from >= 0) expected.mask[p] = mask[static_cast<size_t>(from)];
            if (x < window.x_begin || y >= window.y_end) continue;
            actual.icon[4 * p] = 0xC7;  // holds nothing of use
            for (size_t k = 1; k < 4; ++k)
                expected.icon[4 * p + k] = from < 0 ? 0 : icon[4 * static_cast<size_t>(from) + k];
        }
        ASSERT_EQ(actual.mask, expected.mask) << angle << " about " << cx << "," << cy;
        ASSERT_EQ(actual.icon, expected.icon) << angle << " about " << cx << "," << cy;
    }
}

TEST(Rotation, TheConstantsOfTheAngle) {
    const rotation none = make_rotation(0, 7, -9, 30, 20);
    EXPECT_EQ(none.cosine, 1.0F);
    EXPECT_EQ(none.sine, 0.0F);
    EXPECT_EQ(none.center_x, 7);
    EXPECT_EQ(none.center_y, -9);
    EXPECT_EQ(none.width, 30);
    EXPECT_EQ(none.height, 20);
    // The half turn falls short by the digits that pi is cut to.
    const auto turn = [](float angle) { return make_rotation(angle, 0, 0, 9, 9); };
    EXPECT_EQ(turn(180).cosine, -1.0F);
    EXPECT_NEAR(turn(180).sine, -1.50996e-7, 1e-11);
    EXPECT_NEAR(turn(360).sine, 3.01992e-7, 1e-11);
    EXPECT_EQ(turn(90).sine, -1.0F);
    EXPECT_NEAR(turn(90).cosine, 7.54979e-8, 1e-12);
    EXPECT_NEAR(turn(30).sine, -0.5, 1e-6);
}

// Turned by 90 degrees the object's right end is its upper one: counter-clockwise.
TEST(Rotation, Direction) {
    const extent size = {41, 41};
    bytes mask(naive::plane_bytes(size, 1));
    mask[20 * 41 + 30] = 9;
    const turned up =
        run(make_rotation(90, 20, 20, 41, 41), mask, bytes(4 * mask.size()), whole(size));
    const auto at = std::find(up.mask.begin(), up.mask.end(), 9) - up.mask.begin();
    EXPECT_NEAR(static_cast<double>(at % 41), 20, 1);
    EXPECT_NEAR(static_cast<double>(at / 41), 10, 1);
}

TEST(Rotation, ExactAndDegenerateAngles) {
    const extent size = {23, 17};
    bytes mask = naive::data(4, naive::plane_bytes(size, 1), 3);
    mask[0] = 201;
    const bytes icon = naive::data(4, naive::plane_bytes(size, 4), 4);
    const auto turn = [&](float angle) {
        return run(make_rotation(angle, 11, 8, 23, 17), mask, icon, whole(size));
    };
    EXPECT_EQ(turn(0).mask, mask);
    // Not a number truncates to 0: every pixel shows the first.
    const float nothing[] = {NAN, INFINITY, -INFINITY};
    for (const float angle : nothing) {
        EXPECT_EQ(turn(angle).mask, bytes(mask.size(), mask[0]));
        EXPECT_EQ(turn(angle).icon[4 * 100 + 2], icon[2]);
    }
    // Positions between -1 and 0 read row and column 0, those from -1 on nothing.
    const auto first = [&](float cosine) {
        return run({cosine, 0, 1, 1, 23, 17}, mask, icon, whole(size)).mask[0];
    };
    EXPECT_EQ(first(0.5F), mask[0]);
    EXPECT_EQ(first(1), mask[0]);
    rotated_mask rotated;
    const mask_extent extent = {0, 22, 0, 16};
    const faults::scope no_memory(faults::call::allocation, faults::every());
    const rotation quarter = make_rotation(90, 11, 8, 23, 17);
    EXPECT_FALSE(make_rotated_mask(&quarter, mask.data(), &extent, &rotated));
}

TEST(Rotation, FramesWithoutPixels) {
    const int64_t blocks = faults::live_blocks();
    const uint8_t none[4] = {9, 9, 9, 9};
    for (const extent size : {extent{0, 5}, extent{5, 0}, extent{-5, 5}, extent{0, 0}}) {
        const rotation turn = make_rotation(30, 1, 1, size.width, size.height);
        const mask_extent extent = {int64_t{size.width} - 1, int64_t{size.height} - 1, 0, 0};
        rotated_mask rotated;
        ASSERT_TRUE(make_rotated_mask(&turn, none, &extent, &rotated));
        const pixel_window& window = rotated.view.window;
        EXPECT_TRUE(window.x_begin >= window.x_end || window.y_begin >= window.y_end);
        free_rotated_mask(&rotated);
    }
    EXPECT_EQ(faults::live_blocks(), blocks);
}

}  // namespace
