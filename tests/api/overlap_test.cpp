// SPDX-License-Identifier: Apache-2.0
// Blends that overlap in time.
#include <gtest/gtest.h>
#include <imageblend.h>

#include <atomic>
#include <set>
#include <thread>
#include <vector>

#include "blend/rotated_icon.h"
#include "support/compare.h"
#include "support/engine_choices.h"
#include "support/log_capture.h"
#include "support/scene.h"

namespace {

using support::scene;
using support::solid_scene;

// Blends of every kind at once: each gives its own result, and all lines of the log are those of
// some call.
void blend_from_eight_threads() {
    const scene scenes[] = {solid_scene(90, 84, {20, 22, 41, 37}, 1),
                            support::placed(solid_scene(90, 84, {30, 32, 21, 17}, 2), 1, 25),
                            support::placed(solid_scene(90, 84, {20, 22, 41, 37}, 3), 8, 40),
                            support::placed(solid_scene(90, 84, {28, 30, 30, 27}, 4), 1.3F, -70),
                            support::placed(solid_scene(500, 480, {90, 90, 310, 300}, 5), 1, 2)};
    constexpr int threads = 8, rounds = 10;
    std::vector<model::outcome> expected;
    std::multiset<std::string> lines;
    for (const scene& s : scenes) {
        expected.push_back(model::image_blending(s.icon, s.destination, s.mask, s.place));
        for (int i = 0; i < threads * rounds; ++i)
            for (const model::log_line& line : expected.back().log)
                lines.insert(line.text);
    }
    std::atomic<int> wrong{0};
    const auto blend_all = [&](size_t first) {
        const support::without_leak_check unchecked;  // the refused ones keep their buffers
        for (size_t i = 0; i < rounds * std::size(scenes); ++i) {
            const size_t k = (first + i) % std::size(scenes);
            scene s = scenes[k];
            model::bytes pixels(s.destination.data.size());
            const blend_image icon{s.icon.width, s.icon.height, s.icon.data.data()};
            const blend_image onto{s.icon.width, s.icon.height, s.destination.data.data()};
            const blend_image mask{s.icon.width, s.icon.height, s.mask.data.data()};
            blend_image output{0, 0, pixels.data()};
            const int32_t status =
                vorn_imageBlending(&icon, &onto, &mask, &output, 0, 0, s.place.center_x,
                                   s.place.center_y, s.place.zoom, s.place.angle);
            wrong += status != expected[k].status || (status == 0 && pixels != expected[k].pixels);
        }
    };
    support::clear_log();
    std::vector<std::thread> blends;
    for (size_t k = 0; k < threads; ++k)
        blends.emplace_back(blend_all, k);
    for (std::thread& blend : blends)
        blend.join();
    EXPECT_EQ(wrong, 0);
    for (const model::log_line& line : support::normalised(support::take_log())) {
        const auto found = lines.find(line.text);
        ASSERT_NE(found, lines.end()) << line.text;
        lines.erase(found);
    }
    EXPECT_TRUE(lines.empty());
}

TEST(Blends, EightAtATime) {
    blend_from_eight_threads();
    support::use_threads_from(0);
    blend_from_eight_threads();
    support::use_threads_from(-1);
    // A blend that succeeds leaves nothing of those that were refused.
    EXPECT_EQ(support::run_blend(solid_scene(60, 50, {10, 10, 20, 17}, 1)).status, 0);
    EXPECT_EQ(g_rotated_icon, nullptr);
}

}  // namespace
