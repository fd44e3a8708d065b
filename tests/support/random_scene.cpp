// SPDX-License-Identifier: Apache-2.0
#include <math.h>

#include <algorithm>
#include <utility>

#include "scene.h"

namespace support {
namespace {

// Sides around the powers of two at which the pyramid's depth changes, and around multiples of the
// vector widths.
constexpr int32_t telling_sides[] = {1,  2,  7,  8,  9,  15, 16, 17, 18, 24,  31,  32, 33,
                                     34, 40, 47, 48, 63, 64, 65, 66, 96, 127, 128, 129};

std::pair<int32_t, int32_t> choose_frame(dice& random) {
    const int32_t kind = random.between(0, 99);
    if (kind < 7) return {random.between(1, 20), random.between(1, 20)};
    if (kind < 27) {
        // little room around a box of a telling size
        const int32_t width = random.one_of(telling_sides);
        const int32_t height = random.one_of(telling_sides);
        return {width + random.between(0, 3), height + random.between(0, 3)};
    }
    if (kind < 78) return {random.between(30, 170), random.between(30, 170)};
    return {random.between(150, 400), random.between(120, 300)};
}

int32_t choose_side(dice& random, int32_t frame_side) {
    const int32_t side = random.percent(50) ? random.one_of(telling_sides)
                                            : random.between((frame_side + 3) / 4, frame_side);
    return std::min(side, frame_side);
}

int32_t choose_start(dice& random, int32_t frame_side, int32_t side) {
    const int32_t room = frame_side - side;
    if (random.percent(25)) return random.percent(50) ? 0 : room;
    return random.between(0, room);
}

// Draws an object of one of several kinds; the box shrinks to a single pixel with it.
void draw_object(dice& random, model::frame& mask, rectangle& box) {
    const int32_t style = random.percent(60) ? 0 : random.between(1, 2);
    const int32_t kind = random.between(0, 99);
    const auto set = [&](int32_t x, int32_t y) {
        const int32_t value = style == 0 ? 255 : style == 1 ? random.between(1, 255) : 1;
        fill(mask, {x, y, 1, 1}, static_cast<uint8_t>(value));
    };
    if (kind < 4) return;
    if (kind < 14) {
        box = kind < 10 ? rectangle{0, 0, 1, 1} : rectangle{box.x, box.y, 1, 1};
        set(box.x, box.y);
        return;
    }
    if (kind < 24) {
        for (int32_t n = random.between(2, 12); n > 0; --n) {
            const int32_t x = random.between(box.x, box.x + box.width - 1);
            set(x, random.between(box.y, box.y + box.height - 1));
        }
        return;
    }
    for (int32_t y = 0; y < box.height; ++y) {
        for (int32_t x = 0; x < box.width; ++x) {
            // the box is a square of side 2 around the origin
            const float unit_x =
                static_cast<float>(2 * x + 1) / static_cast<float>(box.width) - 1.0F;
            const float unit_y =
                static_cast<float>(2 * y + 1) / static_cast<float>(box.height) - 1.0F;
            const float radius = unit_x * unit_x + unit_y * unit_y;
            const bool in_ellipse = radius <= 1.0F, in_ring = in_ellipse && radius >= 0.4F;
            if (kind < 60 || (kind < 85 ? in_ellipse : in_ring)) set(box.x + x, box.y + y);
        }
    }
}

model::frame choose_picture(dice& random, const model::frame& mask, uint64_t seed) {
    model::frame picture = noise_picture(mask.width, mask.height, seed);
    const int32_t kind = random.between(0, 99);
    if (kind < 50) return picture;  // noise
    const uint8_t flat = random.byte();
    for (size_t i = 0; i < picture.data.size(); ++i) {
        if (i % 4 == 0) continue;
        uint8_t& value = picture.data[i];
        const auto noisy_ramp = static_cast<uint8_t>((i / 4) % 200 + value % 16);
        const uint8_t extreme = value < 128 ? 0 : 255;  // the largest differences there are
        value = kind < 75 ? extreme : kind < 90 ? noisy_ramp : flat;
    }
    return picture;
}

float choose_zoom(dice& random, const rectangle& box) {
    static const float special[] = {0.0F,        -0.0F,      -1.0F,        NAN,     INFINITY,
                                    -INFINITY,   1e-30F,     1e30F,        3.4e38F, 0.05F,
                                    0.99999994F, 1.0000001F, 2147483648.0F};
    const int32_t kind = random.between(0, 99);
    if (kind < 40) return 1.0F;
    if (kind < 65) {
        // brings the shorter side, with its margins, to a telling length
        const int32_t bare = std::min(box.width, box.height);
        const int32_t boxed = bare < 16 ? bare : bare + (bare < 64 ? 16 : 32);
        return (static_cast<float>(random.one_of(telling_sides)) + 0.25F) /
               static_cast<float>(std::max(boxed, 1));
    }
    if (kind < 85) return static_cast<float>(random.between(250, 1300)) / 1000.0F;
    if (kind < 94) return static_cast<float>(random.between(1000, 2500)) / 1000.0F;
    return random.one_of(special);
}

float choose_angle(dice& random) {
    static const float special[] = {360.0F, 30.0F,  90.0F,    -90.0F, 180.0F, 270.0F,
                                    45.0F,  -45.0F, 1e-3F,    1e-40F, -0.0F,  720.5F,
                                    1e6F,   1e30F,  INFINITY, NAN,    0.5F,   -1e-2F};
    const int32_t kind = random.between(0, 99);
    if (kind < 50) return 0.0F;
    if (kind < 75) return random.one_of(special);
    return static_cast<float>(random.between(-40000, 40000)) / 100.0F;
}

int32_t choose_center(dice& random, int32_t frame_side) {
    static const int32_t extreme[] = {INT32_MIN, INT32_MIN + 1, INT32_MAX,  INT32_MAX - 1,
                                      16777217,  -16777217,     1000000000, -1000000000};
    const int32_t kind = random.between(0, 99);
    if (kind < 60) return random.between(0, frame_side);
    if (kind < 80)
        return random.percent(50) ? random.between(-3, 12) : frame_side - random.between(-3, 12);
    if (kind < 94) return random.between(-2 * frame_side, 3 * frame_side);
    return random.one_of(extreme);
}

}  // namespace

scene random_scene(uint64_t seed) {
    dice random(seed);
    scene s;
    s.seed = seed;
    const auto [width, height] = choose_frame(random);
    rectangle box;
    box.width = choose_side(random, width);
    box.height = choose_side(random, height);
    box.x = choose_start(random, width, box.width);
    box.y = choose_start(random, height, box.height);
    s.mask = empty_mask(width, height);
    draw_object(random, s.mask, box);
    s.icon = choose_picture(random, s.mask, 2 * seed);
    s.destination = choose_picture(random, s.mask, 2 * seed + 1);
    s.place = {choose_center(random, width), choose_center(random, height),
               choose_zoom(random, box), choose_angle(random)};
    return s;
}

}  // namespace support
