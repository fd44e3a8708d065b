// SPDX-License-Identifier: Apache-2.0
// Sizes swept one by one: every depth of the pyramid, odd and even sides at every level, every
// remainder of the bands and of the vector widths.
#include <gtest/gtest.h>

#include "support/compare.h"
#include "support/scene.h"

namespace {

using support::blend_matches;
using support::placed;
using support::scene;
using support::solid_scene;

// A mask that is set everywhere, with all values, so that the box is the frame.
scene whole_frame(int32_t width, int32_t height, uint64_t seed) {
    scene s = solid_scene(width, height, {0, 0, width, height}, seed);
    for (size_t i = 0; i < s.mask.data.size(); ++i)
        s.mask.data[i] = static_cast<uint8_t>(s.icon.data[4 * i] | 1);
    return s;
}

TEST(BlendSweep, OfEveryShortSideAndZoom) {
    for (int32_t side = 1; side <= 40; ++side) {
        for (const int32_t other : {side, side + 1, 47}) {
            for (const float zoom : {1.0F, 0.5F, 0.77F, 1.37F}) {
                const auto seed = static_cast<uint64_t>(side * 100 + other);
                ASSERT_TRUE(
                    blend_matches(placed(solid_scene(101, 97, {23, 21, other, side}, seed), zoom)));
                ASSERT_TRUE(
                    blend_matches(placed(solid_scene(97, 101, {23, 21, side, other}, seed), zoom)));
            }
        }
    }
}

// At zoom 1 the rectangle of a whole frame starts left of and above it. Shrunk whole frames reach
// every depth at every box size, at a place inside the frame.
TEST(BlendSweep, OfWholeFrames) {
    for (int32_t side = 1; side <= 68; ++side) {
        for (const int32_t other : {1, 2, 16, 19, 33, 68}) {
            const auto seed = static_cast<uint64_t>(side * 100 + other);
            ASSERT_TRUE(blend_matches(whole_frame(other, side, seed)));
            ASSERT_TRUE(blend_matches(whole_frame(side, other, seed)));
        }
    }
    for (int32_t height = 16; height <= 190; ++height) {
        const int32_t width = 17 + height % 8 + (height >= 64 ? 48 : 0) + (height >= 128 ? 64 : 0);
        const scene s = whole_frame(width + 3, height + 3, static_cast<uint64_t>(height));
        const float side = static_cast<float>(height);
        ASSERT_TRUE(blend_matches(placed(s, (side + 0.3F) / (side + 3))));
    }
}

// Depth 4 from 256 pixels on, and not 5 from 512 on.
TEST(BlendSweep, OfLargeObjects) {
    const int32_t sides[][2] = {{255, 255}, {256, 257}, {300, 271}, {513, 515}};
    for (const auto& side : sides) {
        scene s = solid_scene(side[0] + 2, side[1] + 2, {1, 1, side[0], side[1]}, 5);
        support::fill(s.mask, {40, 50, 100, 90}, 0);
        ASSERT_TRUE(blend_matches(s));
        ASSERT_TRUE(blend_matches(placed(s, 0.995F)));
    }
    ASSERT_TRUE(blend_matches(placed(solid_scene(520, 500, {100, 90, 300, 310}, 6), 0.9F, 17)));
}

// From 128 outputs on the last sample of the mask's resize may fall beyond the source's edge.
TEST(BlendSweep, OfEveryLengthOfALongMask) {
    const scene wide = whole_frame(260, 26, 13), high = whole_frame(26, 260, 13);
    for (int32_t length = 126; length <= 258; ++length) {
        const float zoom = (static_cast<float>(length) + 0.5F) / 260.0F;
        ASSERT_TRUE(blend_matches(placed(wide, zoom)));
        ASSERT_TRUE(blend_matches(placed(high, zoom)));
    }
}

// Turning a long bar moves parts of it out of the frame and its box about the old centre.
TEST(BlendSweep, OfTurnedBoxesThatReachOutsideTheFrame) {
    for (int32_t at = 0; at <= 70; at += 7) {
        for (const float angle : {90.0F, 45.0F, -30.0F, 179.0F}) {
            for (const float zoom : {1.0F, 0.9F}) {
                scene s = solid_scene(90, 80, {at, 70 - at, 20, 10 + at / 10}, 10);
                support::fill(s.mask, {at, 10, 18, 60}, 180);
                ASSERT_TRUE(blend_matches(placed(s, zoom, angle)));
            }
        }
    }
}

}  // namespace
