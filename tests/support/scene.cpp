// SPDX-License-Identifier: Apache-2.0
#include "scene.h"

#include <math.h>
#include <stdlib.h>

#include <algorithm>
#include <numeric>
#include <sstream>

namespace support {
namespace {

size_t pixel_count(int32_t width, int32_t height) {
    if (width < 1 || height < 1) return 0;
    return static_cast<size_t>(width) * static_cast<size_t>(height);
}

uint64_t from_environment(const char* name, uint64_t usual) {
    const char* text = getenv(name);
    return text == nullptr ? usual : strtoull(text, nullptr, 10);
}

}  // namespace

model::frame noise_picture(int32_t width, int32_t height, uint64_t seed) {
    dice random(seed);
    model::frame picture{width, height, model::bytes(pixel_count(width, height) * 4)};
    for (uint8_t& value : picture.data)
        value = random.byte();
    return picture;
}

model::frame empty_mask(int32_t width, int32_t height) {
    return {width, height, model::bytes(pixel_count(width, height))};
}

void fill(model::frame& mask, rectangle area, uint8_t value) {
    const int32_t right = std::min(area.x + area.width, mask.width);
    const int32_t bottom = std::min(area.y + area.height, mask.height);
    for (int32_t y = std::max(area.y, 0); y < bottom; ++y) {
        for (int32_t x = std::max(area.x, 0); x < right; ++x) {
            mask.data[static_cast<size_t>(y) * static_cast<size_t>(mask.width) +
                      static_cast<size_t>(x)] = value;
        }
    }
}

scene solid_scene(int32_t width, int32_t height, rectangle object, uint64_t seed) {
    scene s;
    s.seed = seed;
    s.icon = noise_picture(width, height, 2 * seed);
    s.destination = noise_picture(width, height, 2 * seed + 1);
    s.mask = empty_mask(width, height);
    fill(s.mask, object, 255);
    s.place.center_x = width / 2;
    s.place.center_y = height / 2;
    return s;
}

scene placed(scene s, float zoom, float angle) {
    s.place.zoom = zoom;
    s.place.angle = angle;
    return s;
}

std::string describe(const scene& s) {
    std::ostringstream text;
    text.precision(9);
    text << "seed " << s.seed << ": icon " << s.icon.width << "x" << s.icon.height
         << ", destination " << s.destination.width << "x" << s.destination.height << ", mask "
         << s.mask.width << "x" << s.mask.height << ", centre (" << s.place.center_x << ","
         << s.place.center_y << "), zoom " << s.place.zoom << ", angle " << s.place.angle;
    return text.str();
}

std::vector<uint64_t> seeds(size_t usual) {
    std::vector<uint64_t> result(from_environment("IMAGEBLEND_TEST_CALLS", usual));
    std::iota(result.begin(), result.end(), from_environment("IMAGEBLEND_TEST_SEED", 1));
    return result;
}

}  // namespace support
