// SPDX-License-Identifier: Apache-2.0
// What stood around an object comes along: held against its definition, pixel by pixel and distance
// by distance, and in scenes by hand.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "prepare/scenes.h"

namespace {

using namespace prepare;

// Some hard rectangles and what is around them, which ends in some column, in a destination whose
// border is of another colour.
struct scene {
    explicit scene(uint64_t seed) : dice(seed) {
        reach = dice.between(1, 14);
        object = picture(48, 44, 4, 0);
        surroundings = texture(48, 44, {{140, 120, 100}}, 80, seed);
        destination = texture(40, 36, {{90, 110, 70}}, 30, seed + 1);
        for (int32_t parts = dice.between(1, 3); parts > 0; --parts)
            add_part(dice.between(0, 46), dice.between(0, 42));
        left = dice.between(-30, 22);
        top = dice.between(-30, 22);
        const int32_t end = dice.between(10, 80);
        const uint8_t beyond = dice.percent(50) ? 0 : 254;
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

    void add_part(int32_t x, int32_t y) {
        const int32_t right = std::min(x + dice.between(1, 9), object.width);
        const int32_t bottom = std::min(y + dice.between(1, 9), object.height);
        for (int32_t v = y; v < bottom; ++v) {
            for (int32_t u = x; u < right; ++u) {
                const uint8_t pixel[4] = {255, 200, 60, 50};
                std::copy(pixel, pixel + 4, object.at(u, v));
            }
        }
    }

    // In the destination; null outside of the layer.
    const uint8_t* around(int32_t x, int32_t y) const {
        return pixel_at(surroundings, x - left, y - top);
    }
    bool is_object(int32_t x, int32_t y) const {
        const uint8_t* const pixel = pixel_at(object, x - left, y - top);
        return pixel != nullptr && pixel[0] != 0;
    }
    bool is_end(int32_t x, int32_t y) const {
        const uint8_t* const pixel = around(x, y);
        return pixel == nullptr || pixel[0] != 255;
    }

    support::dice dice;
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
                         (s.around(p.x, p.y)[channel] + 4.0));
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
                const double lit = std::min(s.around(p.x, p.y)[c] * gain[c], 255.0);
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

// A disc on a ground, with the ground around it, before the same ground otherwise lit.
struct ring_scene {
    ring_scene(double light, bool same_ground)
        : object(texture(160, 160, {{200, 60, 50}}, 20, 1)),
          ground(texture(160, 160, {{110, 130, 90}}, 60, 2)),
          destination(texture(160, 160, {{120, 100, 60}}, 60, 9)) {
        const picture alpha = coverage(160, 160, disc(80, 80, 30));
        for (size_t i = 0; i < alpha.data.size(); ++i) {
            object.data[4 * i] = alpha.data[i];
            ground.data[4 * i] = 255;
            for (size_t c = 4 * i + 1; same_ground && c < 4 * i + 4; ++c)
                destination.data[c] = static_cast<uint8_t>(ground.data[c] * light + 0.5);
        }
    }

    // Returns the reach that was used.
    int32_t paste(int32_t reach) {
        made = destination;
        blend_image record = object.record(), around = ground.record(), output = made.record();
        const imageblend_layer layer = {&record, &around, reach, 0, 0};
        int32_t used = -1;
        EXPECT_EQ(imageblend_paste(&layer, &output, &used), 0);
        return used;
    }

    picture object, ground, destination, made;
};

TEST(Surroundings, AreLitLikeTheDestinationAndEndAtTheirReach) {
    ring_scene scene(0.8, true);
    ASSERT_EQ(scene.paste(24), 24);
    const shape object = disc(80, 80, 30);
    for (int32_t y = 0; y < 160; ++y) {
        for (int32_t x = 0; x < 160; ++x) {
            const double away = -object(x + 0.5, y + 0.5);
            if (away < 2) continue;
            for (int c = 1; c <= 3; ++c)
                ASSERT_NEAR(scene.made.at(x, y)[c], scene.destination.at(x, y)[c],
                            away > 24 ? 0 : 5)
                    << x << ", " << y;
        }
    }
}

// At the end of their reach they have faded, which an object at the other border does not change.
TEST(Surroundings, FadeFromBorderToBorder) {
    const int32_t width = 70, beyond = 40, reach = 52;
    for (const bool mirrored : {false, true}) {
        picture object = texture(width + 2 * beyond, 100, {{200, 60, 50}}, 20, 1);
        picture around = texture(width + 2 * beyond, 100, {{110, 130, 90}}, 60, 2);
        for (int32_t y = 0; y < object.height; ++y) {
            for (int32_t x = 0; x < object.width; ++x) {
                const int32_t from_border = (mirrored ? object.width - 1 - x : x) - beyond;
                *object.at(x, y) = from_border >= 0 && from_border < 8 ? 255 : 0;
                *around.at(x, y) = 255;
            }
        }
        const picture destination = texture(width, 20, {{120, 100, 60}}, 60, 9);
        picture made = destination;
        blend_image record = object.record(), ring = around.record(), output = made.record();
        const imageblend_layer layer = {&record, &ring, reach, -beyond, -beyond};
        ASSERT_EQ(imageblend_paste(&layer, &output, nullptr), 0);
        int32_t sum = 0, pixels = 0;
        for (int32_t y = 0; y < made.height; ++y) {
            for (int32_t far = 8 + reach - 5; far < 8 + reach; ++far, ++pixels) {
                const int32_t x = mirrored ? width - 1 - far : far;
                sum += std::abs(made.at(x, y)[1] - destination.at(x, y)[1]);
            }
        }
        EXPECT_LT(sum, 5 * pixels) << mirrored;
    }
}

TEST(Surroundings, ComeAlongOnTheirOwnWhereTheyMatch) {
    EXPECT_GT(ring_scene(0.85, true).paste(IMAGEBLEND_SURROUNDINGS_AUTO), 0);
    EXPECT_EQ(ring_scene(0.4, true).paste(IMAGEBLEND_SURROUNDINGS_AUTO), 0);
    ring_scene other(1, false);
    EXPECT_EQ(other.paste(IMAGEBLEND_SURROUNDINGS_AUTO), 0);
    const picture without = other.made;
    EXPECT_EQ(other.paste(0), 0);
    for (size_t i = 0; i < without.data.size(); ++i)
        ASSERT_NEAR(other.made.data[i], without.data[i], 2);
    // Asked for, they come: nearest to the object they are the source's.
    EXPECT_EQ(other.paste(18), 18);
    EXPECT_FALSE(other.made == without);
}

}  // namespace
