// SPDX-License-Identifier: Apache-2.0
#include "scenes.h"

#include <string.h>

#include <algorithm>
#include <map>

namespace {

// Side of the tile that pictures repeat.
enum { TILE = 1024 };

uint32_t hash(uint32_t x, uint32_t y, uint32_t seed) {
    uint32_t h = x * 0x9E3779B1u ^ y * 0x85EBCA77u ^ seed * 0xC2B2AE3Du;
    h = (h ^ (h >> 15)) * 0x2C1B3C6Du;
    h = (h ^ (h >> 12)) * 0x297A2D39u;
    return h ^ (h >> 15);
}

float lattice(uint32_t x, uint32_t y, uint32_t seed) {
    return static_cast<float>(hash(x, y, seed) & 0xFFFF) / 65535.0f - 0.5f;
}

// Noise of equal amplitude in every octave, which is the 1/f spectrum of natural pictures. It wraps
// around at the sides of the tile.
std::vector<float> noise_tile(uint32_t seed) {
    std::vector<float> sum(static_cast<size_t>(TILE) * TILE, 0.0f);
    for (uint32_t cell = 1; cell <= TILE / 4; cell *= 2) {
        const uint32_t cells = TILE / cell;
        for (uint32_t y = 0; y < TILE; y++) {
            const uint32_t cy = y / cell, next_y = (cy + 1) % cells;
            const float fy = static_cast<float>(y % cell) / static_cast<float>(cell);
            for (uint32_t x = 0; x < TILE; x++) {
                const uint32_t cx = x / cell, next_x = (cx + 1) % cells;
                const float fx = static_cast<float>(x % cell) / static_cast<float>(cell);
                const float top =
                    lattice(cx, cy, seed + cell) * (1 - fx) + lattice(next_x, cy, seed + cell) * fx;
                const float bottom = lattice(cx, next_y, seed + cell) * (1 - fx) +
                                     lattice(next_x, next_y, seed + cell) * fx;
                sum[static_cast<size_t>(y) * TILE + x] += top * (1 - fy) + bottom * fy;
            }
        }
    }
    return sum;
}

// A tile of three channels around the given colour.
std::vector<uint8_t> colour_tile(uint32_t seed, const std::array<float, 3>& colour) {
    const std::vector<float> light = noise_tile(seed), tint = noise_tile(seed + 7777);
    std::vector<uint8_t> pixels;
    pixels.reserve(light.size() * 3);
    for (size_t p = 0; p < light.size(); p++) {
        for (size_t c = 0; c < 3; c++) {
            const float chroma = (static_cast<float>(c) - 1.0f) * 12.0f * tint[p];
            const float value = colour[c] + 60.0f * light[p] + chroma;
            pixels.push_back(static_cast<uint8_t>(std::clamp(value, 0.0f, 255.0f)));
        }
    }
    return pixels;
}

const std::vector<uint8_t>& src_tile() {
    static const std::vector<uint8_t> tile = colour_tile(1, {150.0f, 120.0f, 95.0f});
    return tile;
}

const std::vector<uint8_t>& dst_tile() {
    static const std::vector<uint8_t> tile = colour_tile(2, {105.0f, 125.0f, 140.0f});
    return tile;
}

// Repeats a tile over a picture whose pixels have `step` bytes, the colours being the last three.
std::vector<uint8_t> paint(const std::vector<uint8_t>& tile, int32_t width, int32_t height,
                           size_t step) {
    std::vector<uint8_t> pixels(static_cast<size_t>(width) * static_cast<size_t>(height) * step);
    uint8_t* to = pixels.data();
    for (size_t y = 0; y < static_cast<size_t>(height); y++) {
        for (size_t x = 0; x < static_cast<size_t>(width); x++, to += step) {
            memcpy(to + step - 3, &tile[(y % TILE * TILE + x % TILE) * 3], 3);
        }
    }
    return pixels;
}

// An ellipse of 255 in the middle, `object` pixels in both directions.
std::vector<uint8_t> ellipse(int32_t width, int32_t height, int32_t object) {
    std::vector<uint8_t> mask(static_cast<size_t>(width) * static_cast<size_t>(height), 0);
    const int64_t left = (width - object) / 2, top = (height - object) / 2, size = object;
    for (int64_t y = 0; y < size; y++) {
        uint8_t* row = &mask[static_cast<size_t>((top + y) * width + left)];
        const int64_t dy = 2 * y + 1 - size;
        for (int64_t x = 0; x < size; x++) {
            const int64_t dx = 2 * x + 1 - size;
            if (dx * dx + dy * dy <= size * size) row[x] = 255;
        }
    }
    return mask;
}

}  // namespace

const patch_pair& patches_of(int32_t side) {
    static std::map<int32_t, patch_pair> made;
    const auto [place, missing] = made.try_emplace(side);
    if (missing) {
        place->second = {side, paint(src_tile(), side, side, 3), paint(dst_tile(), side, side, 3),
                         ellipse(side, side, side - 2 * MARGIN)};
    }
    return place->second;
}

const std::array<call_scene, 4>& call_scenes() {
    static const std::array<call_scene, 4> scenes = {{
        {"4000x3000_plain", 4000, 3000, 1000, 1.0f, 0.0f},
        {"4000x3000_zoom_0.7", 4000, 3000, 1000, 0.7f, 0.0f},
        {"4000x3000_angle_30", 4000, 3000, 1000, 1.0f, 30.0f},
        {"1920x1080_plain", 1920, 1080, 256, 1.0f, 0.0f},
    }};
    return scenes;
}

int32_t region_side(const call_scene& scene) {
    return static_cast<int32_t>(static_cast<float>(scene.object + 2 * MARGIN) * scene.zoom);
}

frame_set make_frames(const call_scene& scene) {
    return {scene.width,
            scene.height,
            paint(src_tile(), scene.width, scene.height, 4),
            paint(dst_tile(), scene.width, scene.height, 4),
            ellipse(scene.width, scene.height, scene.object),
            std::vector<uint8_t>(
                static_cast<size_t>(scene.width) * static_cast<size_t>(scene.height) * 4, 1)};
}

int32_t blend_frames(frame_set& frames, const call_scene& scene) {
    const auto record = [&](std::vector<uint8_t>& data) {
        return blend_image{frames.width, frames.height, data.data()};
    };
    const blend_image icon = record(frames.icon), destination = record(frames.destination);
    const blend_image mask = record(frames.mask);
    blend_image output = record(frames.output);
    return vorn_imageBlending(&icon, &destination, &mask, &output, 0, 0, frames.width / 2 + 37,
                              frames.height / 2 - 23, scene.zoom, scene.angle);
}
