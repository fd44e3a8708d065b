// The box of a mask: size, level, margins, and the log's seams in their order.
#include "api/mask_box.h"

#include <gtest/gtest.h>

#include "support/compare.h"
#include "support/log_capture.h"
#include "support/scene.h"

namespace {

using model::frame;
using model::log_lines;

constexpr pixel_layout MASK = {0, 1};

struct found {
    int32_t status, x0, y0, width, height, bare_width, bare_height, level;
};

bool operator==(const found& a, const found& b) {
    return a.status == b.status && a.x0 == b.x0 && a.y0 == b.y0 && a.width == b.width &&
           a.height == b.height && a.bare_width == b.bare_width && a.bare_height == b.bare_height &&
           a.level == b.level;
}

std::ostream& operator<<(std::ostream& out, const found& f) {
    return out << f.status << ": " << f.x0 << "," << f.y0 << " " << f.width << "x" << f.height
               << " bare " << f.bare_width << "x" << f.bare_height << " level " << f.level;
}

found find(const frame& mask, bool clamp = true, bool margins = true,
           const pixel_layout& layout = MASK) {
    found f = {};
    support::clear_log();
    f.status =
        find_mask_box(mask.data.data(), mask.width, mask.height, &f.x0, &f.y0, &f.width, &f.height,
                      &f.bare_width, &f.bare_height, 4, clamp, &layout, margins, &f.level);
    return f;
}

frame with(int32_t width, int32_t height, support::rectangle object) {
    frame mask = support::empty_mask(width, height);
    support::fill(mask, object, 255);
    return mask;
}

// The log after a search: one line for each letter of `sides` (l, r, u, d).
testing::AssertionResult seams(const std::string& sides) {
    log_lines expected;
    for (const char side : sides) {
        const std::string name = side == 'l' || side == 'r' ? "x" : "y";
        expected.push_back({4, "orign pic " + name + side + " seam\n"});
    }
    return support::same_log(expected, support::take_log());
}

TEST(MaskBox, KnownBoxes) {
    frame dot = support::empty_mask(100, 100);
    dot.data[0] = 1;
    EXPECT_EQ(find(dot), (found{0, 0, 0, 1, 1, 1, 1, -4}));
    EXPECT_TRUE(seams(""));
    EXPECT_EQ(find(with(200, 200, {50, 50, 40, 40})), (found{0, 42, 42, 56, 56, 40, 40, 1}));
    EXPECT_TRUE(seams(""));
    EXPECT_EQ(find(with(200, 200, {3, 50, 40, 40})), (found{2, 0, 42, 51, 56, 40, 40, 1}));
    EXPECT_TRUE(seams("l"));
    EXPECT_EQ(find(with(200, 100, {0, 0, 200, 100})), (found{2, 0, 0, 200, 100, 200, 100, 2}));
    EXPECT_TRUE(seams("lrud"));
    // Two far samples make the box; their values do not matter.
    frame pair = support::empty_mask(90, 70);
    pair.data[20 * 90 + 60] = 1;
    pair.data[50 * 90 + 30] = 128;
    EXPECT_EQ(find(pair), (found{0, 22, 12, 47, 47, 31, 31, 1}));
}

TEST(MaskBox, SeamsStartWhereTheMarginDoesNotFit) {
    struct edge {
        support::rectangle object;
        found box;
        std::string sides;
    };
    // Margin 8 around a square of 20 in a frame of 100 x 90.
    const edge edges[] = {
        {{8, 8, 20, 20}, {0, 0, 0, 36, 36, 20, 20, 1}, ""},
        {{7, 8, 20, 20}, {2, 0, 0, 35, 36, 20, 20, 1}, "l"},
        {{8, 7, 20, 20}, {2, 0, 0, 36, 35, 20, 20, 1}, "u"},
        {{72, 62, 20, 20}, {0, 64, 54, 36, 36, 20, 20, 1}, ""},
        {{73, 62, 20, 20}, {2, 65, 54, 35, 36, 20, 20, 1}, "r"},
        {{72, 63, 20, 20}, {2, 64, 55, 36, 35, 20, 20, 1}, "d"},
        {{0, 70, 20, 20}, {2, 0, 62, 28, 28, 20, 20, 1}, "ld"},
        {{80, 0, 20, 20}, {2, 72, 0, 28, 28, 20, 20, 1}, "ru"},
    };
    for (const edge& e : edges) {
        EXPECT_EQ(find(with(100, 90, e.object)), e.box);
        EXPECT_TRUE(seams(e.sides)) << e.object.x << "," << e.object.y;
    }
}

TEST(MaskBox, LevelAndMarginFollowTheShorterSide) {
    struct step {
        int32_t side, level, open_level, margin;
    };
    for (const step s :
         {step{1, -4, -4, 0}, step{7, -2, -2, 0}, step{15, -1, -1, 0}, step{16, 1, 1, 8},
          step{31, 1, 1, 8}, step{32, 1, 1, 8}, step{63, 1, 1, 8}, step{64, 2, 2, 16},
          step{127, 2, 2, 16}, step{128, 3, 3, 32}, step{255, 3, 3, 32}, step{256, 4, 4, 64},
          step{511, 4, 4, 64}, step{512, 4, 5, 64}}) {
        const frame wide = with(760, 800, {100, 130, s.side + 20, s.side});
        const frame high = with(800, 760, {130, 100, s.side, s.side + 20});
        const int32_t m = s.margin;
        EXPECT_EQ(find(wide), (found{0, 100 - m, 130 - m, s.side + 20 + 2 * m, s.side + 2 * m,
                                     s.side + 20, s.side, s.level}));
        EXPECT_EQ(find(high).level, s.level);
        EXPECT_EQ(find(high, false).level, s.open_level);
    }
}

TEST(MaskBox, WithoutMarginsAndWithoutBareSizes) {
    const frame mask = with(60, 50, {0, 30, 25, 20});
    EXPECT_EQ(find(mask, true, false), (found{0, 0, 30, 25, 20, 25, 20, 1}));
    EXPECT_TRUE(seams(""));
    found f = {};
    EXPECT_EQ(find_mask_box(mask.data.data(), 60, 50, &f.x0, &f.y0, &f.width, &f.height, nullptr,
                            nullptr, 4, true, &MASK, true, &f.level),
              2);
    EXPECT_EQ(f.width, 33);
    EXPECT_TRUE(seams("ld"));
}

TEST(MaskBox, NoObjectAndNoFrame) {
    EXPECT_EQ(find(support::empty_mask(100, 100)), (found{0, 99, 99, -98, -98, -98, -98, -4}));
    EXPECT_EQ(find(support::empty_mask(1, 5)), (found{0, 0, 4, 1, -3, 1, -3, -4}));
    EXPECT_TRUE(seams(""));
    const log_lines fatal = {{6, "fital error!\n"}};
    const uint8_t none[1] = {0};
    const frame narrow = {0, 10, {none, none + 1}}, flat = {10, -3, {none, none + 1}};
    EXPECT_EQ(find(narrow), (found{-1, -1, 9, 2, -8, 2, -8, -4}));
    EXPECT_TRUE(support::same_log(fatal, support::take_log()));
    EXPECT_EQ(find(flat), (found{-1, 9, -4, -8, 5, -8, 5, -4}));
    EXPECT_TRUE(support::same_log(fatal, support::take_log()));
    EXPECT_EQ(find(narrow, true, false).status, 0);
    EXPECT_TRUE(seams(""));
}

TEST(MaskBox, OtherLayouts) {
    frame mask = {40, 30, model::bytes(size_t{4} * 40 * 30)};
    const auto set = [&](int32_t x, int32_t y, int32_t channel) {
        mask.data[static_cast<size_t>(4 * (y * 40 + x) + channel)] = 9;
    };
    set(11, 7, 3);
    set(19, 22, 3);
    set(0, 0, 2);
    set(39, 29, 0);
    EXPECT_EQ(find(mask, true, false, {3, 4}), (found{0, 11, 7, 9, 16, 9, 16, -1}));
    EXPECT_EQ(find(mask, true, false, {2, 4}), (found{0, 0, 0, 1, 1, 1, 1, -4}));
}

TEST(MaskBox, RandomMasks) {
    support::dice dice(51);
    for (int round = 0; round < 400; ++round) {
        frame mask = support::empty_mask(dice.between(1, 400), dice.between(1, 70));
        int32_t xmin = mask.width - 1, ymin = mask.height - 1, xmax = 0, ymax = 0;
        for (int32_t k = dice.between(1, 4); k > 0; --k) {
            const int32_t x = dice.between(0, mask.width - 1), y = dice.between(0, mask.height - 1);
            mask.data[static_cast<size_t>(y * mask.width + x)] = 1;
            xmin = std::min(xmin, x);
            ymin = std::min(ymin, y);
            xmax = std::max(xmax, x);
            ymax = std::max(ymax, y);
        }
        const found f = find(mask, true, false);
        EXPECT_EQ(f, (found{0, xmin, ymin, xmax - xmin + 1, ymax - ymin + 1, xmax - xmin + 1,
                            ymax - ymin + 1, f.level}));
    }
}

}  // namespace
