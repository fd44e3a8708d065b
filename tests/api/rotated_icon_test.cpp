// SPDX-License-Identifier: Apache-2.0
// The life of g_rotated_icon, and the results, over every sequence of three blends.
#include "blend/rotated_icon.h"

#include <gtest/gtest.h>

#include "pool/faults.h"
#include "support/compare.h"
#include "support/scene.h"

namespace {

struct step {
    float zoom;
    float angle;
    bool sizes_differ = false;
    bool no_memory = false;
};

const step STEPS[] = {{1, 0},
                      {1, 20},
                      {8, 0},
                      {8, 20},
                      {0, 20},
                      {1, 20, true},
                      {1, 0, false, true},
                      {1, 20, false, true}};

// Makes the call and checks what it leaves in the pointer.
void run_step(const step& now, uint64_t seed) {
    const blend_image* const before = g_rotated_icon;
    const int64_t blocks = faults::live_blocks();
    support::scene s =
        support::placed(support::solid_scene(72, 70, {25, 24, 18, 20}, seed), now.zoom, now.angle);
    if (now.sizes_differ) s.destination = support::noise_picture(73, 70, seed);
    if (now.no_memory) {
        const faults::scope fault(faults::call::allocation, faults::every());
        EXPECT_EQ(support::run_blend(s).status, -1);
    } else {
        EXPECT_TRUE(support::blend_matches(s));
    }
    const int64_t kept = faults::live_blocks() - blocks;
    const bool too_large = now.zoom == 8, turned = now.angle != 0;
    if (now.no_memory) {
        EXPECT_EQ(g_rotated_icon, before);
        EXPECT_EQ(kept, 0);
    } else if (too_large && turned) {
        ASSERT_NE(g_rotated_icon, nullptr);
        EXPECT_NE(g_rotated_icon, before);
        EXPECT_TRUE(g_rotated_icon->width > 0 && g_rotated_icon->height > 0);
        EXPECT_EQ(kept, 3);  // the crop, the record and its pixels
    } else if (too_large) {
        EXPECT_EQ(g_rotated_icon, before);
        EXPECT_EQ(kept, 1);  // the crop
    } else {
        EXPECT_EQ(g_rotated_icon, nullptr);
        // An upright call frees what it finds; a turned one puts its own in that place.
        EXPECT_EQ(kept, !turned && before != nullptr ? -2 : 0);
    }
}

TEST(RotatedIcon, OutlivesOnlyACallWhoseObjectIsTooLarge) {
    uint64_t seed = 0;
    for (const step& first : STEPS) {
        for (const step& second : STEPS) {
            for (const step& third : STEPS) {
                for (const step* now : {&first, &second, &third})
                    run_step(*now, ++seed);
                ASSERT_FALSE(HasFailure()) << "sequence " << seed / 3;
            }
        }
    }
    run_step(STEPS[0], seed);
}

}  // namespace
