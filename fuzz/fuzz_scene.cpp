// SPDX-License-Identifier: Apache-2.0
#include "fuzz_scene.h"

#include <fuzzer/FuzzedDataProvider.h>
#include <string.h>

#include <algorithm>
#include <utility>

// When the bytes run out, numbers are the least of their range and flags are false.
using byte_source = FuzzedDataProvider;
using model::frame;

namespace {

int32_t read_side(byte_source& in) {
    return in.ConsumeIntegralInRange(1, in.ConsumeBool() ? 112 : 32);
}

// At least one side below 1, and no size that would need much memory: the cut-out's icon has
// 2 - width by 2 - height pixels then, or none when one of these is below 1.
void read_empty_size(byte_source& in, int32_t* width, int32_t* height) {
    static const int32_t sides[] = {0, -1, -2, -17, -100, INT32_MIN, INT32_MIN + 1, -65536};
    *width = in.PickValueInArray(sides);
    int32_t least = -64;
    if (*width < -100) least = *width < -65536 ? 2 : 0;
    *height = in.ConsumeIntegralInRange(least, 255);
    if (in.ConsumeBool()) std::swap(*width, *height);
}

// Near the frame, or any number.
int32_t read_centre(byte_source& in, int32_t side) {
    if (in.ConsumeBool()) return in.ConsumeIntegral<int32_t>();
    return in.ConsumeIntegralInRange(-64, std::max(side, 0) + 64);
}

// A multiple of 1 / step, or any float.
float read_float(byte_source& in, int32_t low, int32_t high, int32_t step) {
    if (!in.ConsumeBool()) {
        const int32_t steps = in.ConsumeIntegralInRange(low * step, high * step);
        return static_cast<float>(steps) / static_cast<float>(step);
    }
    const auto bits = in.ConsumeIntegral<uint32_t>();
    float value;
    memcpy(&value, &bits, sizeof value);
    return value;
}

// A rectangle of one value or of noise, or single pixels.
void draw_mask(byte_source& in, uint64_t seed, frame& mask) {
    if (mask.data.empty()) return;
    const auto below = [&](int32_t count) { return in.ConsumeIntegralInRange(0, count - 1); };
    const int32_t style = below(4);
    if (style == 3) {
        for (int32_t left = below(16); left > 0; --left) {
            const support::rectangle pixel = {below(mask.width), below(mask.height), 1, 1};
            support::fill(mask, pixel, in.ConsumeIntegral<uint8_t>());
        }
        return;
    }
    const int32_t x = below(mask.width), y = below(mask.height);
    support::fill(mask, {x, y, 1 + below(mask.width - x), 1 + below(mask.height - y)},
                  style == 0 ? 255 : in.ConsumeIntegral<uint8_t>());
    if (style != 2) return;
    support::dice random(seed);
    for (uint8_t& value : mask.data) {
        if (value != 0) value = random.byte();
    }
}

// The bytes of `tile` over and over, with noise in the bits of `noise`.
frame make_picture(int32_t width, int32_t height, const model::bytes& tile, uint8_t noise,
                   uint64_t seed) {
    frame picture = support::noise_picture(width, height, seed);
    size_t next = 0;
    for (uint8_t& value : picture.data) {
        value = static_cast<uint8_t>((value & noise) ^ tile[next]);
        next = next + 1 < tile.size() ? next + 1 : 0;
    }
    return picture;
}

}  // namespace

fuzz_scene decode_scene(const uint8_t* data, size_t size) {
    byte_source in(data, size);
    fuzz_scene made;
    support::scene& s = made.scene;
    s.seed = in.ConsumeIntegral<uint8_t>();
    int32_t width = read_side(in), height = read_side(in);
    if (in.ConsumeIntegralInRange(0, 7) == 7) read_empty_size(in, &width, &height);
    s.mask = support::empty_mask(width, height);
    s.place.center_x = read_centre(in, width);
    s.place.center_y = read_centre(in, height);
    if (in.ConsumeBool()) {
        s.place.zoom = read_float(in, 0, 4, 16384);
        s.place.angle = read_float(in, -512, 512, 64);
    }
    draw_mask(in, s.seed, s.mask);

    int32_t icon_width = width, icon_height = height;
    int32_t destination_width = width, destination_height = height;
    if (!s.mask.data.empty() && in.ConsumeBool()) {
        const bool icon = in.ConsumeIntegralInRange(0, 2) == 0;
        (icon ? icon_width : destination_width) = read_side(in);
        (icon ? icon_height : destination_height) = read_side(in);
    }
    const auto noise = in.ConsumeIntegral<uint8_t>();
    made.alias = static_cast<support::aliasing>(in.ConsumeIntegralInRange(0, 5));
    model::bytes tile = in.ConsumeRemainingBytes<uint8_t>();
    tile.push_back(0);
    s.destination = make_picture(destination_width, destination_height, tile, noise, s.seed + 1);
    s.icon = made.alias == support::aliasing::both
                 ? s.destination
                 : make_picture(icon_width, icon_height, tile, noise, s.seed + 2);
    return made;
}
