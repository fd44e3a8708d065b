// SPDX-License-Identifier: Apache-2.0
// Objects in their destination: what changes, what it changes to, and what stays.
#include <gtest/gtest.h>

#include <algorithm>

#include "prepare/scenes.h"

namespace {

using namespace prepare;

// The object's pixel that lies over one of the destination's; null if none.
const uint8_t* object_over(const random_layer& scene, int32_t x, int32_t y) {
    return pixel_at(scene.object, x - scene.left, y - scene.top);
}

bool object_within(const random_layer& scene, int32_t x, int32_t y, int32_t reach) {
    for (int32_t v = y - reach; v <= y + reach; ++v) {
        for (int32_t u = x - reach; u <= x + reach; ++u) {
            const uint8_t* over = object_over(scene, u, v);
            if (over != nullptr && over[0] != 0) return true;
        }
    }
    return false;
}

// The object over an opaque or transparent pixel, to three levels.
void expect_composite(const uint8_t* over, const uint8_t* under, const uint8_t* made) {
    const double alpha = over[0] / 255.0, rest = (1 - alpha) * under[0] / 255.0;
    EXPECT_NEAR(made[0], 255 * (alpha + rest), 1.0);
    for (int c = 1; c <= 3; ++c)
        EXPECT_NEAR(made[c], (over[c] * alpha + under[c] * rest) / (alpha + rest), 3.0);
}

// The calls that a caller makes who blends elsewhere; imageblend_paste does the same.
picture paste_in_steps(const imageblend_layer& layer, const picture& destination, int32_t* reach) {
    picture source = destination, output = destination;
    blend_image under = source.record(), record = output.record();
    frame_buffers buffers = place(layer, destination);
    imageblend_frames& frames = buffers.frames;
    *reach = 0;
    if (frames.box.width == 0) return output;
    EXPECT_EQ(imageblend_lay(&layer, &under, &frames, reach), 0);
    const picture icon = buffers.icon, mask = buffers.mask;
    picture blended(frames.box.width, frames.box.height);
    blend_image result = blended.record();
    EXPECT_EQ(vorn_imageBlending(&frames.icon, &frames.destination, &frames.mask, &result, 0, 0,
                                 frames.center_x, frames.center_y, 1.0f, 0.0f),
              0);
    EXPECT_EQ(imageblend_finish(&frames, &result, &record), 0);
    EXPECT_EQ(source, destination);
    return output;
}

TEST(Paste, ChangesNothingButTheObjectsPixelsAndThoseExactly) {
    size_t seen = 0;
    const std::vector<uint64_t> seeds = support::seeds(60);
    for (const uint64_t seed : seeds) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        random_layer scene(seed);
        const picture object = scene.object, surroundings = scene.surroundings;
        picture made = scene.destination;
        blend_image record, around, output = made.record();
        const imageblend_layer layer = scene.layer(&record, &around);
        int32_t reach = -7, reach_in_steps;
        ASSERT_EQ(imageblend_paste(&layer, &output, &reach), 0);
        EXPECT_EQ(made, paste_in_steps(layer, scene.destination, &reach_in_steps));
        EXPECT_EQ(reach, reach_in_steps);
        EXPECT_TRUE(scene.object == object && scene.surroundings == surroundings);
        ASSERT_GE(reach, 0);
        if (layer.reach >= 0) {
            EXPECT_LE(reach, layer.reach);
        }
        for (int32_t y = 0; y < made.height && !HasFailure(); ++y) {
            for (int32_t x = 0; x < made.width && !HasFailure(); ++x) {
                const uint8_t* over = object_over(scene, x, y);
                const uint8_t *before = scene.destination.at(x, y), *after = made.at(x, y);
                if (over != nullptr && (over[0] == 255 || (over[0] != 0 && reach == 0))) {
                    expect_composite(over, before, after);
                    ++seen;
                } else if (reach <= 7 && !object_within(scene, x, y, reach)) {
                    EXPECT_TRUE(std::equal(before, before + 4, after)) << x << ", " << y;
                }
            }
        }
    }
    // A single seed may lie outside of everything.
    if (seeds.size() >= 60) {
        EXPECT_GT(seen, 50 * seeds.size());
    }
}

// An object that stands a pixel off would fail at each of them.
TEST(Paste, PutsOddAndEvenSizesWhereTheyBelong) {
    for (int32_t size = 0; size < 49; ++size) {
        random_layer scene(1);
        scene.destination = texture(61, 58, {{20, 30, 40}}, 10, 2);
        scene.object = texture(1 + size % 7, 1 + size / 7, {{220, 200, 210}}, 20, 3);
        for (size_t i = 0; i < scene.object.data.size(); i += 4)
            scene.object.data[i] = 255;
        scene.left = 20 + size % 3;
        scene.top = 57 - size % 8;
        picture made = scene.destination;
        blend_image record = scene.object.record(), output = made.record();
        const imageblend_layer layer = {&record, nullptr, 12, scene.left, scene.top};
        ASSERT_EQ(imageblend_paste(&layer, &output, nullptr), 0);
        for (int32_t y = 0; y < made.height; ++y) {
            for (int32_t x = 0; x < made.width; ++x) {
                const uint8_t* over = object_over(scene, x, y);
                if (over != nullptr) {
                    expect_composite(over, scene.destination.at(x, y), made.at(x, y));
                } else {
                    ASSERT_TRUE(
                        std::equal(made.at(x, y), made.at(x, y) + 4, scene.destination.at(x, y)));
                }
            }
        }
    }
}

// A shadow that the mask marks and the surroundings hold falls once.
TEST(Paste, LaysNothingTwiceThatTheSurroundingsHold) {
    picture made = texture(90, 90, {{200, 180, 160}}, 1, 2), object(60, 60, 4, 0);
    picture around = texture(60, 60, {{200, 180, 160}}, 1, 3);
    for (size_t i = 0; i < around.data.size(); i += 4)
        around.data[i] = 255;
    for (size_t i = 0; i < made.data.size(); i += 4)
        made.data[i] = 255;
    for (int32_t y = 20; y < 40; ++y) {
        for (int32_t x = 20; x < 40; ++x) {
            *object.at(x, y) = 128;  // half of the light is missing
            for (int c = 1; c <= 3; ++c)
                around.at(x, y)[c] = static_cast<uint8_t>(around.at(x, y)[c] / 2);
        }
    }
    blend_image record = object.record(), ring = around.record(), output = made.record();
    const imageblend_layer layer = {&record, &ring, 12, 15, 15};
    ASSERT_EQ(imageblend_paste(&layer, &output, nullptr), 0);
    for (int32_t i = 36; i < 54; ++i)
        EXPECT_NEAR(made.at(i, i)[1], 100, 4) << i;
}

TEST(Paste, OfWhatCannotBeSeenChangesNothing) {
    picture made = texture(40, 30, {{20, 30, 40}}, 10, 2), object(9, 9, 4, 0);
    const picture before = made;
    *object.at(8, 4) = 255;  // the others are transparent
    picture around(9, 9, 4, 255);
    blend_image record = object.record(), ring = around.record(), output = made.record();
    for (const int32_t left : {-9, 32, INT32_MIN, INT32_MAX}) {
        const imageblend_layer layer = {&record, &ring, 8, left, left};
        int32_t reach = -1;
        imageblend_frames frames;
        ASSERT_EQ(imageblend_place(&layer, 40, 30, &frames), 0);
        EXPECT_EQ(frames.box.width + frames.box.height + frames.icon.width + frames.mask.height, 0);
        EXPECT_EQ(imageblend_paste(&layer, &output, &reach), 0);
        EXPECT_EQ(reach, 0);
        EXPECT_EQ(made, before);
    }
}

}  // namespace
