/* Sizes swept one by one: every depth of the pyramid, odd and even sides at every level, every
 * remainder of the bands and of the vector widths. */
#include <gtest/gtest.h>

#include "support/compare.h"
#include "support/scene.h"

namespace {

using support::blend_matches;
using support::scene;
using support::solid_scene;

scene zoomed(scene s, float zoom) {
    s.place.zoom = zoom;
    return s;
}

TEST(BlendSweep, OfEveryShortSideAndZoom) {
    for (int32_t side = 1; side <= 40; ++side) {
        for (const int32_t other : {side, side + 1, 47}) {
            for (const float zoom : {1.0F, 0.5F, 0.77F, 1.37F}) {
                const auto seed = static_cast<uint64_t>(side * 100 + other);
                const scene wide = solid_scene(101, 97, {23, 21, other, side}, seed);
                ASSERT_TRUE(blend_matches(zoomed(wide, zoom)));
                const scene tall = solid_scene(97, 101, {23, 21, side, other}, seed);
                ASSERT_TRUE(blend_matches(zoomed(tall, zoom)));
            }
        }
    }
}

/* An object that fills its frame has no margins, so these boxes have exactly the frame's size. At
 * zoom 1 the rectangle then starts left of and above the frame. */
TEST(BlendSweep, OfWholeFrames) {
    for (int32_t side = 1; side <= 68; ++side) {
        for (const int32_t other : {1, 2, 16, 19, 33, 68}) {
            const auto seed = static_cast<uint64_t>(side * 100 + other);
            const scene wide = solid_scene(other, side, {0, 0, other, side}, seed);
            ASSERT_TRUE(blend_matches(wide));
            const scene tall = solid_scene(side, other, {0, 0, side, other}, seed);
            ASSERT_TRUE(blend_matches(tall));
        }
    }
}

/* Shrunk whole frames reach every depth at every box size, at a place inside the frame. */
TEST(BlendSweep, OfEveryHeightAtEveryDepth) {
    for (int32_t height = 16; height <= 190; ++height) {
        const int32_t width = 17 + height % 8 + (height >= 64 ? 48 : 0) + (height >= 128 ? 64 : 0);
        const auto seed = static_cast<uint64_t>(height);
        scene s = solid_scene(width + 3, height + 3, {0, 0, width + 3, height + 3}, seed);
        s.mask.data[0] = 255;
        for (size_t i = 1; i < s.mask.data.size(); ++i) {
            s.mask.data[i] = static_cast<uint8_t>(s.icon.data[4 * i]);
        }
        s.mask.data.back() = 1;
        s.place.zoom = (static_cast<float>(height) + 0.3F) / static_cast<float>(height + 3);
        ASSERT_TRUE(blend_matches(s));
    }
}

/* Depth 4 from 256 pixels on, and not 5 from 512 on. */
TEST(BlendSweep, OfLargeObjects) {
    const int32_t sides[][2] = {{255, 255}, {256, 257}, {300, 271}, {513, 515}};
    for (const auto& side : sides) {
        scene s = solid_scene(side[0] + 2, side[1] + 2, {1, 1, side[0], side[1]}, 5);
        support::fill(s.mask, {40, 50, 100, 90}, 0);
        ASSERT_TRUE(blend_matches(s));
        ASSERT_TRUE(blend_matches(zoomed(s, 0.995F)));
    }
    scene turned = solid_scene(520, 500, {100, 90, 300, 310}, 6);
    turned.place.angle = 17.0F;
    ASSERT_TRUE(blend_matches(zoomed(turned, 0.9F)));
}

/* From 128 outputs on the last sample of the mask's resize may fall beyond the source's edge. */
TEST(BlendSweep, OfEveryLengthOfALongMask) {
    for (int32_t length = 126; length <= 258; ++length) {
        for (const bool upright : {false, true}) {
            scene s = upright ? solid_scene(26, 260, {0, 0, 26, 260}, 13)
                              : solid_scene(260, 26, {0, 0, 260, 26}, 13);
            for (size_t i = 0; i < s.mask.data.size(); ++i) {
                s.mask.data[i] = static_cast<uint8_t>(s.icon.data[4 * i] | 1);
            }
            ASSERT_TRUE(blend_matches(zoomed(s, (static_cast<float>(length) + 0.5F) / 260.0F)));
        }
    }
}

TEST(BlendSweep, OfEveryZoomOfOneObject) {
    for (int step = 1; step <= 180; ++step) {
        scene s = solid_scene(111, 107, {31, 30, 37, 35}, 12);
        s.place = {50 + step % 20, 55 - step % 7, static_cast<float>(step) / 80.0F, 0.0F};
        ASSERT_TRUE(blend_matches(s));
    }
}

}  // namespace
