// SPDX-License-Identifier: Apache-2.0
// Inputs of one call: made at random from a seed, or by hand.
#ifndef IMAGEBLEND_TESTS_SCENE_H
#define IMAGEBLEND_TESTS_SCENE_H

#include <stdint.h>

#include <random>
#include <string>
#include <vector>

#include "model/model.h"

namespace support {

struct scene {
    uint64_t seed = 0;
    model::frame icon;
    model::frame destination;
    model::frame mask;
    model::placement place;
};

struct rectangle {
    int32_t x = 0;
    int32_t y = 0;
    int32_t width = 0;
    int32_t height = 0;
};

// The same numbers on every platform, unlike the distributions of <random>.
class dice {
  public:
    explicit dice(uint64_t seed) : engine_(seed * 0x9E3779B97F4A7C15U + 1) {}

    // low .. high inclusive
    int32_t between(int32_t low, int32_t high) {
        const uint64_t count = static_cast<uint64_t>(int64_t{high} - low) + 1;
        return static_cast<int32_t>(low + static_cast<int64_t>(engine_() % count));
    }
    bool percent(int32_t share) { return between(0, 99) < share; }
    uint8_t byte() { return static_cast<uint8_t>(engine_() >> 32); }
    template <class T, size_t n>
    T one_of(const T (&choices)[n]) {
        return choices[static_cast<size_t>(between(0, static_cast<int32_t>(n) - 1))];
    }

  private:
    std::mt19937_64 engine_;
};

scene random_scene(uint64_t seed);

// Full-range noise in all four bytes of both pictures and a mask that is 255 in the rectangle and 0
// elsewhere; the centre is the middle of the frame, the zoom 1 and the angle 0.
scene solid_scene(int32_t width, int32_t height, rectangle object, uint64_t seed);

model::frame noise_picture(int32_t width, int32_t height, uint64_t seed);
model::frame empty_mask(int32_t width, int32_t height);
void fill(model::frame& mask, rectangle area, uint8_t value);

scene placed(scene s, float zoom, float angle = 0);

std::string describe(const scene& s);

// The seeds of a random test's calls: IMAGEBLEND_TEST_CALLS of them, else `usual`, from
// IMAGEBLEND_TEST_SEED on, else from 1, so that a failing call can be repeated alone.
std::vector<uint64_t> seeds(size_t usual);

}  // namespace support

#endif  // IMAGEBLEND_TESTS_SCENE_H
