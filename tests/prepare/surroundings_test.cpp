// SPDX-License-Identifier: Apache-2.0
// Surroundings held against their definition, pixel by pixel and distance by distance.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>

#include "prepare/scenes.h"

namespace {

using namespace prepare;

// Some hard rectangles and what is around them, which ends in some column, in a destination whose
// border is of another colour.
struct scene {
    explicit scene(uint64_t seed) : engine(seed) {
        reach = number(1, 14);
        object = picture(48, 44, 4, 0);
        surroundings = texture(48, 44, {{140, 120, 100}}, 80, seed);
        destination = texture(40, 36, {{90, 110, 70}}, 30, seed + 1);
        for (int32_t parts = number(1, 3); parts > 0; --parts)
            add_part(number(0, 46), number(0, 42));
        left = number(-30, 22);
        top = number(-30, 22);
        const int32_t end = number(10, 80);
        const uint8_t beyond = number(0, 1) == 0 ? 0 : 254;
        for (int32_t y = 0; y < surroundings.height; ++y) {
            for (int32_t x = 0; x < surroundings.width; ++x)
                *surroundings.at(x, y) = x < end ? 255 : beyond;
        }
        for (int32_t y = 0; y < destination.height; ++y) {
            for (int32_t x = 0; x < destination.width; ++x) {
                uint8_t* const pixel = destination.at(x, y);
                pixel[0] = 255;
                const bool inside =
                    x > 0 && y > 0 && x < destination.width - 1 && y < destination.height - 1;
                if (!inside) pixel[1] = pixel[2] = pixel[3] = 250;
            }
        }
    }

    int32_t number(int32_t least, int32_t most) {
        return std::uniform_int_distribution<int32_t>(least, most)(engine);
    }
    void add_part(int32_t x, int32_t y) {
        const int32_t right = std::min(x + number(1, 9), object.width);
        const int32_t bottom = std::min(y + number(1, 9), object.height);
        for (int32_t v = y; v < bottom; ++v) {
            for (int32_t u = x; u < right; ++u) {
                const uint8_t pixel[4] = {255, 200, 60, 50};
                std::copy(pixel, pixel + 4, object.at(u, v));
            }
        }
    }

    // In the destination; null outside of the layer.
    const uint8_t* over(const picture& of, int32_t x, int32_t y) const {
        const int32_t u = x - left, v = y - top;
        const bool lies = u >= 0 && v >= 0 && u < of.width && v < of.height;
        return lies ? of.at(u, v) : nullptr;
    }
    bool is_object(int32_t x, int32_t y) const {
        const uint8_t* const pixel = over(object, x, y);
        return pixel != nullptr && pixel[0] != 0;
    }
    bool is_end(int32_t x, int32_t y) const {
        const uint8_t* const pixel = over(surroundings, x, y);
        return pixel == nullptr || pixel[0] != 255;
    }

    std::mt19937_64 engine;
    picture object, surroundings, destination;
    int32_t left, top, reach;
};

// Thirds of a pixel to the nearest pixel of a kind, by steps of 3 along rows and columns and of 4
// across.
int32_t steps_to(const scene& s, bool (scene::*is)(int32_t, int32_t) const, int32_t x, int32_t y) {
    int32_t least = INT32_MAX;
    const int32_t near = s.reach + 1;
    for (int32_t dy = -near; dy <= near; ++dy) {
        for (int32_t dx = -near; dx <= near; ++dx) {
            const int32_t a = std::abs(dx), b = std::abs(dy);
            if ((s.*is)(x + dx, y + dy))
                least = std::min(least, 3 * std::max(a, b) + std::min(a, b));
        }
    }
    return least;
}

double fade(double part) {
    const double p = std::min(std::max(part, 0.0), 1.0);
    return 1 - p * p * (3 - 2 * p);
}

// A pixel of the destination near the object, and what surroundings do there.
struct ring_pixel {
    int32_t x, y;
    double weight;
};

std::vector<ring_pixel> find_ring(const scene& s) {
    std::vector<ring_pixel> found;
    for (int32_t y = 0; y < s.destination.height; ++y) {
        for (int32_t x = 0; x < s.destination.width; ++x) {
            const int32_t to_object = steps_to(s, &scene::is_object, x, y);
            if (to_object == 0 || to_object > 3 * s.reach || s.is_end(x, y)) continue;
            const double fading = 2.0 * s.reach;
            const double weight = fade((to_object - s.reach) / fading) *
                                  fade(1 - steps_to(s, &scene::is_end, x, y) / fading);
            found.push_back({x, y, weight});
        }
    }
    return found;
}

// The median of the destination's light to that of the surroundings.
double gain_of(const scene& s, const std::vector<ring_pixel>& ring, int channel) {
    std::vector<double> ratios;
    for (const ring_pixel& p : ring)
        ratios.push_back((s.destination.at(p.x, p.y)[channel] + 4.0) /
                         (s.over(s.surroundings, p.x, p.y)[channel] + 4.0));
    std::sort(ratios.begin(), ratios.end());
    return ratios.empty() ? 1.0 : ratios[(ratios.size() - 1) / 2];
}

TEST(Surroundings, AreThoseOfTheirDefinition) {
    size_t mixed = 0;
    const std::vector<uint64_t> seeds = support::seeds(120);
    for (const uint64_t seed : seeds) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        scene s(seed);
        picture made = s.destination;
        blend_image object = s.object.record(), around = s.surroundings.record();
        blend_image output = made.record();
        const imageblend_layer layer = {&object, &around, s.reach, s.left, s.top};
        int32_t reach = -1;
        ASSERT_EQ(imageblend_paste(&layer, &output, &reach), 0);
        if (reach == 0) continue;  // nothing of the object is seen
        const std::vector<ring_pixel> ring = find_ring(s);
        const double gain[4] = {1, gain_of(s, ring, 1), gain_of(s, ring, 2), gain_of(s, ring, 3)};
        picture expected = s.destination;
        for (const ring_pixel& p : ring) {
            for (int c = 1; c <= 3; ++c) {
                const double lit = std::min(s.over(s.surroundings, p.x, p.y)[c] * gain[c], 255.0);
                uint8_t* const value = expected.at(p.x, p.y) + c;
                *value = static_cast<uint8_t>(lit * p.weight + *value * (1 - p.weight) + 0.5);
            }
            mixed += p.weight > 0.1;
        }
        for (int32_t y = 0; y < made.height && !HasFailure(); ++y) {
            for (int32_t x = 0; x < made.width && !HasFailure(); ++x) {
                if (s.is_object(x, y)) continue;
                for (int c = 0; c <= 3; ++c)
                    EXPECT_NEAR(made.at(x, y)[c], expected.at(x, y)[c], 3) << x << ", " << y;
            }
        }
    }
    if (seeds.size() >= 120) {
        EXPECT_GT(mixed, 50 * seeds.size());
    }
}

}  // namespace
