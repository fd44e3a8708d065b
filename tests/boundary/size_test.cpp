#include <gtest/gtest.h>
#include <imageblend.h>

#include "support/compare.h"
#include "support/scene.h"

namespace {

using support::size_matches;

struct size_case {
    int32_t width;
    int32_t height;
    int32_t icon_width;
    int32_t icon_height;
};

TEST(IconSize, OfAMaskWithoutAnObjectIsTwoMinusTheSide) {
    const size_case cases[] = {{1, 1, 1, 1},
                               {100, 100, -98, -98},
                               {100, 1, -98, 1},
                               {0, 0, 2, 2},
                               {0, 5, 2, -3},
                               {-3, 4, 5, -2},
                               {-7, -7, 9, 9},
                               {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX},
                               {INT32_MAX, 0, 2 - INT32_MAX, 2}};
    uint8_t none[100 * 100] = {};
    for (const size_case& c : cases) {
        const blend_image mask{c.width, c.height, none};
        int32_t width = 0;
        int32_t height = 0;
        EXPECT_EQ(vorn_get_icon_size(&mask, &width, &height), 0);
        EXPECT_EQ(width, c.icon_width) << c.width << "x" << c.height;
        EXPECT_EQ(height, c.icon_height) << c.width << "x" << c.height;
    }
}

TEST(IconSize, CountsEveryNonZeroValueAnywhere) {
    for (const uint8_t value : {uint8_t{1}, uint8_t{127}, uint8_t{128}, uint8_t{255}}) {
        for (int32_t at = 0; at < 35; ++at) {
            model::frame mask = support::empty_mask(7, 5);
            mask.data[static_cast<size_t>(at)] = value;
            const model::size_result size = model::get_icon_size(mask);
            EXPECT_EQ(size.width, 1);
            EXPECT_EQ(size.height, 1);
            EXPECT_TRUE(size_matches(mask)) << "at " << at;
            mask.data[0] = value;
            EXPECT_TRUE(size_matches(mask)) << "from 0 to " << at;
            mask.data[34] = value;
            EXPECT_TRUE(size_matches(mask)) << "over all";
        }
    }
}

TEST(IconSize, OfRandomMasks) {
    const int calls = support::random_calls(1500);
    for (int i = 0; i < calls; ++i) {
        const support::scene s =
            support::random_scene(support::first_seed() + static_cast<uint64_t>(i));
        ASSERT_TRUE(size_matches(s.mask)) << support::describe(s);
    }
}

}  // namespace
