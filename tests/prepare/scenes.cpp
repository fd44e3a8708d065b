// SPDX-License-Identifier: Apache-2.0
#include "prepare/scenes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/guarded_bytes.h"

namespace prepare {

picture::picture(int32_t w, int32_t h, int32_t bytes, uint8_t value)
    : width(w),
      height(h),
      pixel_bytes(bytes),
      data(static_cast<size_t>(w) * static_cast<size_t>(h) * static_cast<size_t>(bytes), value) {}

blend_image picture::record() {
    return {width, height, data.data()};
}

const uint8_t* picture::at(int32_t x, int32_t y) const {
    return data.data() + (static_cast<int64_t>(y) * width + x) * pixel_bytes;
}

const uint8_t* pixel_at(const picture& of, int32_t x, int32_t y) {
    return x >= 0 && y >= 0 && x < of.width && y < of.height ? of.at(x, y) : nullptr;
}

uint8_t* picture::at(int32_t x, int32_t y) {
    return data.data() + (static_cast<int64_t>(y) * width + x) * pixel_bytes;
}

picture texture(int32_t width, int32_t height, rgb colour, int32_t noise, uint64_t seed) {
    support::dice dice(seed);
    picture rough(width + 2, height + 2), made(width, height);
    for (uint8_t& byte : rough.data)
        byte = dice.byte();
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            made.at(x, y)[0] = rough.at(x, y)[0];
            for (int c = 0; c < 3; ++c) {
                int32_t sum = 0;
                for (int32_t i = 0; i < 9; ++i)
                    sum += rough.at(x + i % 3, y + i / 3)[1 + c];
                const int32_t value = colour.channel[c] + (sum - 9 * 128) * noise / (9 * 32);
                made.at(x, y)[1 + c] = static_cast<uint8_t>(std::clamp(value, 0, 255));
            }
        }
    }
    return made;
}

shape disc(double x, double y, double radius) {
    return [=](double u, double v) { return radius - std::hypot(u - x, v - y); };
}

shape box(double left, double top, double right, double bottom) {
    return [=](double u, double v) {
        const double dx = std::max(left - u, u - right), dy = std::max(top - v, v - bottom);
        return -(std::hypot(std::max(dx, 0.0), std::max(dy, 0.0)) +
                 std::min(std::max(dx, dy), 0.0));
    };
}

shape bar(double x0, double y0, double x1, double y1, double width) {
    return [=](double u, double v) {
        const double dx = x1 - x0, dy = y1 - y0;
        const double along = ((u - x0) * dx + (v - y0) * dy) / (dx * dx + dy * dy);
        const double t = std::clamp(along, 0.0, 1.0);
        return width / 2 - std::hypot(u - x0 - t * dx, v - y0 - t * dy);
    };
}

shape both(const shape& a, const shape& b) {
    return [=](double u, double v) { return std::max(a(u, v), b(u, v)); };
}

picture coverage(int32_t width, int32_t height, const shape& drawn, double grown) {
    picture alpha(width, height, 1);
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            const double depth = drawn(x + 0.5, y + 0.5) + grown;
            int32_t inside = depth > 1 ? 64 : 0;
            for (int i = 0; i < 64 && std::abs(depth) <= 1; ++i)
                inside += drawn(x + (i % 8 + 0.5) / 8, y + (i / 8 + 0.5) / 8) >= -grown;
            *alpha.at(x, y) = static_cast<uint8_t>((inside * 255 + 32) / 64);
        }
    }
    return alpha;
}

picture hard(picture coverage) {
    for (uint8_t& value : coverage.data)
        value = value >= 128 ? 255 : 0;
    return coverage;
}

picture composite(const picture& object, const picture& alpha, const picture& behind) {
    picture made = behind;
    for (size_t i = 0; i < alpha.data.size(); ++i) {
        const int32_t a = alpha.data[i];
        for (size_t c = 4 * i + 1; c < 4 * i + 4; ++c)
            made.data[c] =
                static_cast<uint8_t>((object.data[c] * a + behind.data[c] * (255 - a) + 127) / 255);
    }
    return made;
}

cleaned clean(picture source, picture* mask, imageblend_clean_options options) {
    using support::guarded_bytes;
    const picture mask_before = mask != nullptr ? *mask : picture();
    // A row too far up is a crash.
    guarded_bytes guarded(source.data, 0, 0, guarded_bytes::side::start);
    blend_image colours = {source.width, source.height, guarded.data()}, marks = {};
    if (mask != nullptr) marks = mask->record();
    const imageblend_source from = {&colours, mask != nullptr ? &marks : nullptr};
    cleaned made = {};
    EXPECT_EQ(imageblend_clean_box(&from, &made.box), 0);
    made.object = picture(made.box.width, made.box.height, 4, 0xAB);
    blend_image object = made.object.record();
    EXPECT_EQ(imageblend_clean(&from, &options, &made.box, &object, &made.findings), 0);
    EXPECT_TRUE(guarded.holds(source.data)) << "the source was written";
    if (mask != nullptr) {
        EXPECT_EQ(*mask, mask_before) << "the mask was written";
    }
    return made;
}

frame_buffers place(const imageblend_layer& layer, const picture& destination) {
    frame_buffers made;
    EXPECT_EQ(imageblend_place(&layer, destination.width, destination.height, &made.frames), 0);
    imageblend_frames& frames = made.frames;
    made.icon = picture(frames.icon.width, frames.icon.height, 4, 0xAB);
    made.mask = picture(frames.mask.width, frames.mask.height, 1, 0xAB);
    made.destination = picture(frames.destination.width, frames.destination.height, 4, 0xAB);
    frames.icon.data = made.icon.data.data();
    frames.mask.data = made.mask.data.data();
    frames.destination.data = made.destination.data.data();
    return made;
}

random_layer::random_layer(uint64_t seed) {
    support::dice dice(seed);
    const int32_t longest = dice.percent(20) ? 3 : (dice.percent(20) ? 300 : 90);
    const int32_t width = dice.between(1, longest), height = dice.between(1, longest);
    destination = texture(dice.between(1, 150), dice.between(1, 150), {{90, 140, 60}}, 40, seed);
    if (dice.percent(50)) {
        for (size_t i = 0; i < destination.data.size(); i += 4)
            destination.data[i] = 255;
    }
    object = texture(width, height, {{200, 60, 110}}, 30, seed + 1);
    const int32_t holes = dice.between(0, 95);
    for (size_t i = 0; i < object.data.size(); i += 4) {
        if (dice.percent(holes)) {
            std::fill_n(object.data.begin() + static_cast<int64_t>(i), 4, uint8_t{0});
        } else if (dice.percent(60)) {
            object.data[i] = 255;
        }
    }
    surroundings = texture(width, height, {{100, 130, 70}}, 30, seed + 2);
    for (size_t i = 0; i < surroundings.data.size(); i += 4)
        surroundings.data[i] = dice.percent(2) ? 0 : 255;
    const int32_t reaches[] = {0, 0, 1, 7, 32, 256, IMAGEBLEND_SURROUNDINGS_AUTO};
    reach = dice.one_of(reaches);
    left = dice.between(-width - 3, destination.width + 3);
    top = dice.between(-height - 3, destination.height + 3);
}

imageblend_layer random_layer::layer(blend_image* record, blend_image* around) {
    *record = object.record();
    *around = surroundings.record();
    return {record, around, reach, left, top};
}

uint64_t hash(const std::vector<uint8_t>& bytes, uint64_t start) {
    for (const uint8_t byte : bytes)
        start = (start ^ byte) * 0x100000001B3U;
    return start;
}

}  // namespace prepare
