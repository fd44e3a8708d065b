// SPDX-License-Identifier: Apache-2.0
// Where the outline is, and where the picture has it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "prepare/distance.h"
#include "prepare/scenes.h"

namespace {

using namespace prepare;

// The definition: the nearest of all pixels of the other kind, then the filter along rows and
// columns.
std::vector<int> searched_distance(const picture& alpha, int32_t reach) {
    const int32_t width = alpha.width, height = alpha.height;
    std::vector<int> raw(alpha.data.size()), rows(raw), smooth(raw);
    const auto index = [&](int32_t x, int32_t y) {
        return static_cast<size_t>(std::clamp(y, 0, height - 1) * width +
                                   std::clamp(x, 0, width - 1));
    };
    const auto filter = [](int a, int b, int c, int d, int e) {
        return static_cast<int>(std::floor((a + 4 * b + 6 * c + 4 * d + e + 8) / 16.0));
    };
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            const bool inside = *alpha.at(x, y) >= 128;
            double nearest = reach;
            for (int32_t v = 0; v < height; ++v) {
                for (int32_t u = 0; u < width; ++u) {
                    if ((*alpha.at(u, v) >= 128) != inside)
                        nearest = std::min(nearest, std::hypot(u - x, v - y) - 0.5);
                }
            }
            const int length = static_cast<int>(std::floor(nearest * 16 + 0.5));
            raw[index(x, y)] = inside ? length : -length;
        }
    }
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x)
            rows[index(x, y)] = filter(raw[index(x - 2, y)], raw[index(x - 1, y)], raw[index(x, y)],
                                       raw[index(x + 1, y)], raw[index(x + 2, y)]);
    }
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x)
            smooth[index(x, y)] =
                filter(rows[index(x, y - 2)], rows[index(x, y - 1)], rows[index(x, y)],
                       rows[index(x, y + 1)], rows[index(x, y + 2)]);
    }
    return smooth;
}

TEST(SignedDistance, IsThatOfASearchOfAllPixels) {
    for (const uint64_t seed : support::seeds(40)) {
        support::dice dice(seed);
        picture alpha(dice.between(1, 75), dice.between(1, 40), 1);
        const int32_t dots = dice.between(0, 4);
        for (int32_t i = 0; i < dots; ++i) {
            const int32_t x = dice.between(0, alpha.width - 1),
                          y = dice.between(0, alpha.height - 1);
            for (int32_t v = y; v < std::min(alpha.height, y + 1 + 7 * i); ++v)
                std::fill(alpha.at(x, v), alpha.at(x, v) + std::min(alpha.width - x, 1 + 9 * i),
                          static_cast<uint8_t>(i == 3 ? 127 : 128 + i));
        }
        const int32_t reach = dice.percent(50) ? 16 : DISTANCE_LONGEST;
        std::vector<int16_t> distance(alpha.data.size());
        ASSERT_TRUE(
            signed_distance(alpha.data.data(), alpha.width, alpha.height, reach, distance.data()));
        const std::vector<int> expected = searched_distance(alpha, reach);
        for (size_t i = 0; i < distance.size(); ++i)
            ASSERT_EQ(distance[i], expected[i]) << "seed " << seed << ", pixel " << i;
    }
}

struct drawn_object {
    const char* name;
    shape outline;
};

std::vector<drawn_object> objects() {
    return {{"disc", disc(88.3, 80.6, 41.5)},
            {"box with a thin bar", both(box(60.4, 70.2, 112.7, 120.9), bar(70, 75, 90, 33, 7))},
            {"bottle", both(box(66, 78, 108, 140), box(81, 36, 93, 90))}};
}

picture photo(const shape& outline, uint64_t seed) {
    return composite(texture(176, 176, {{190, 120, 70}}, 34, seed), coverage(176, 176, outline),
                     texture(176, 176, {{90, 130, 150}}, 34, seed + 1));
}

// Mean difference of the object's alpha to the exact one, over the pixels of its edge.
double alpha_error(const cleaned& made, const picture& exact) {
    double sum = 0;
    int edge = 0;
    for (int32_t y = 0; y < made.box.height; ++y) {
        for (int32_t x = 0; x < made.box.width; ++x) {
            const int wanted = *exact.at(x + made.box.left, y + made.box.top);
            const int difference = std::abs(*made.object.at(x, y) - wanted);
            if (difference == 0 && (wanted == 0 || wanted == 255)) continue;
            sum += difference;
            ++edge;
        }
    }
    return edge > 0 ? sum / edge : 0;
}

TEST(OutlineFit, FindsTheEdgeOfAMaskThatIsTooTightOrTooWide) {
    uint64_t seed = 1;
    for (const drawn_object& object : objects()) {
        const picture exact = coverage(176, 176, object.outline);
        for (int offset = -2; offset <= 8; ++offset, ++seed) {
            SCOPED_TRACE(std::string(object.name) + " " + std::to_string(offset));
            picture mask = hard(coverage(176, 176, object.outline, offset));
            const cleaned made = clean(photo(object.outline, seed), &mask);
            EXPECT_EQ(made.findings.alpha, IMAGEBLEND_ALPHA_HARD);
            EXPECT_NEAR(made.findings.moved, -offset, 0.9);
            EXPECT_EQ(made.findings.fit, std::abs(made.findings.moved) < 0.75f
                                             ? IMAGEBLEND_FIT_KEPT
                                             : IMAGEBLEND_FIT_MOVED);
            EXPECT_LT(alpha_error(made, exact), 64);
        }
    }
}

TEST(OutlineFit, TakesLooseOutlinesAsDrawn) {
    const shape object = disc(88, 88, 30);
    const picture far_mask = hard(coverage(176, 176, disc(88, 88, 50)));
    const picture square_mask = hard(coverage(176, 176, box(40, 36, 138, 136)));
    for (const picture& drawn : {far_mask, square_mask}) {
        picture mask = drawn;
        const cleaned made = clean(photo(object, 5), &mask);
        EXPECT_TRUE(made.findings.fit == IMAGEBLEND_FIT_BEYOND ||
                    made.findings.fit == IMAGEBLEND_FIT_UNCLEAR);
        EXPECT_EQ(made.findings.moved, 0);
        EXPECT_LT(alpha_error(made, drawn), 128);
    }
    // A dot on a disc is not the disc.
    picture dot = hard(coverage(176, 176, disc(88, 88, 2)));
    EXPECT_EQ(clean(photo(disc(88, 88, 9), 6), &dot).findings.moved, 0);
    // Nothing but noise to see.
    for (uint64_t seed = 1; seed <= 20; ++seed) {
        picture mask = hard(coverage(176, 176, object));
        const cleaned made = clean(texture(176, 176, {{128, 128, 128}}, 30, seed), &mask);
        EXPECT_TRUE(made.findings.fit == IMAGEBLEND_FIT_BEYOND ||
                    made.findings.fit == IMAGEBLEND_FIT_UNCLEAR)
            << seed << ": " << made.findings.moved;
    }
}

TEST(OutlineFit, AddsGrowthOfAnySizeToIt) {
    const shape object = disc(88.3, 87.6, 36.5);
    const picture source = photo(object, 7);
    for (const float grow : {-16.0f, -3.5f, 1.0f, 16.0f}) {
        for (const int offset : {0, 5}) {
            SCOPED_TRACE("grown by " + std::to_string(grow) + " from " + std::to_string(offset));
            picture mask = hard(coverage(176, 176, object, offset));
            const cleaned fitted = clean(source, &mask, {1, grow});
            EXPECT_LT(alpha_error(fitted, coverage(176, 176, object, grow)), 80);
            const cleaned as_drawn = clean(source, &mask, {0, grow});
            EXPECT_EQ(as_drawn.findings.fit, IMAGEBLEND_FIT_NONE);
            EXPECT_LT(alpha_error(as_drawn,
                                  coverage(176, 176, object, offset + static_cast<double>(grow))),
                      64);
        }
        // Softness that is there is kept inside of the new outline, and grows outside of the old.
        picture soft = coverage(176, 176, object);
        const cleaned grown = clean(source, &soft, {0, grow});
        EXPECT_LT(alpha_error(grown, coverage(176, 176, object, grow)), 64);
    }
}

}  // namespace
