/* What a call leaves behind for the next one, and calls side by side. */
#include <gtest/gtest.h>
#include <imageblend.h>

#include <atomic>
#include <thread>
#include <vector>

#include "support/compare.h"
#include "support/scene.h"

namespace {

using support::blend_matches;
using support::scene;
using support::solid_scene;

enum class step { fits, fits_turned, too_large, too_large_turned, no_size_turned, sizes_differ };

constexpr step every_step[] = {step::fits,           step::fits_turned,
                               step::too_large,      step::too_large_turned,
                               step::no_size_turned, step::sizes_differ};

scene scene_for(step kind, uint64_t seed) {
    scene s = solid_scene(96, 90, {30, 28, 25, 33}, seed);
    const bool turned = kind == step::fits_turned || kind == step::too_large_turned ||
                        kind == step::no_size_turned || kind == step::sizes_differ;
    const bool large = kind == step::too_large || kind == step::too_large_turned;
    s.place = {45, 47, large ? 9.0F : 1.0F, turned ? 25.0F : 0.0F};
    if (kind == step::no_size_turned) s.place.zoom = 0.0F;
    if (kind == step::sizes_differ) s.destination = support::noise_picture(97, 90, seed);
    return s;
}

TEST(Sequence, NoCallDisturbsALaterOne) {
    uint64_t seed = 1;
    for (const step first : every_step) {
        for (const step second : every_step) {
            for (const step third : every_step) {
                for (const step kind : {first, second, third})
                    ASSERT_TRUE(blend_matches(scene_for(kind, ++seed)));
            }
        }
    }
}

/* The three smaller functions may run on any thread beside one blend. */
TEST(Sequence, SmallFunctionsRunBesideABlend) {
    std::atomic<int> wrong{0};
    std::atomic<bool> stop{false};
    std::vector<std::thread> helpers;
    for (uint64_t seed = 1; seed <= 3; ++seed) {
        helpers.emplace_back([&wrong, &stop, seed] {
            scene s = solid_scene(60, 50, {10, 10, 20, 17}, seed);
            s.place.angle = 15.0F;
            const int32_t verdict = model::verify_icon_pos(s.mask, s.place).status;
            const model::bytes cut = model::create_rgb_icon(s.icon, s.mask, 1.0F).pixels;
            model::bytes pixels(cut.size());
            const blend_image source{60, 50, s.icon.data.data()};
            const blend_image mask{60, 50, s.mask.data.data()};
            blend_image icon{0, 0, pixels.data()};
            while (!stop) {
                int32_t width = 0, height = 0;
                vorn_get_icon_size(&mask, &width, &height);
                const int32_t judged = vorn_verify_icon_pos(
                    mask.data, 60, 50, 0, 0, s.place.center_x, s.place.center_y, 1.0F, 15.0F);
                const int32_t made = vorn_create_rgb_icon(&source, &mask, &icon, 1.0F);
                if (width != 20 || height != 17 || judged != verdict || made != 0 || pixels != cut)
                    ++wrong;
            }
        });
    }
    const scene s = scene_for(step::fits_turned, 9);
    const model::bytes expected =
        model::image_blending(s.icon, s.destination, s.mask, s.place).output;
    for (int i = 0; i < 60; ++i)
        EXPECT_EQ(support::run_blend(s).output, expected);
    /* one that is large enough for threads */
    scene large = solid_scene(660, 640, {8, 9, 645, 623}, 10);
    large.place.angle = 1.0F;
    EXPECT_EQ(support::run_blend(large).output,
              model::image_blending(large.icon, large.destination, large.mask, large.place).output);
    stop = true;
    for (std::thread& helper : helpers)
        helper.join();
    EXPECT_EQ(wrong, 0);
}

}  // namespace
