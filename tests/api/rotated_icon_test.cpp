// The life of g_rotated_icon over every sequence of three blends.
#include "blend/rotated_icon.h"

#include <gtest/gtest.h>

#include "pool/faults.h"
#include "support/compare.h"
#include "support/scene.h"

namespace {

using support::scene;

enum class step {
    fits,
    fits_turned,
    too_large,
    too_large_turned,
    sizes_differ_turned,
    no_memory,
    no_memory_turned,
    count
};

scene scene_for(step kind) {
    const bool turned = kind == step::fits_turned || kind == step::too_large_turned ||
                        kind == step::sizes_differ_turned || kind == step::no_memory_turned;
    const bool large = kind == step::too_large || kind == step::too_large_turned;
    scene s = support::solid_scene(72, 70, {25, 24, 18, 20}, 3);
    if (kind == step::sizes_differ_turned) s.destination = support::noise_picture(73, 70, 4);
    s.place.zoom = large ? 8.0F : 1.0F;
    s.place.angle = turned ? 20.0F : 0.0F;
    return s;
}

// Makes the call and checks what it leaves in the pointer.
void run_step(step kind) {
    const blend_image* const before = g_rotated_icon;
    const int64_t blocks = faults::live_blocks();
    const bool fails_early = kind == step::no_memory || kind == step::no_memory_turned;
    support::blend_outcome made;
    {
        const faults::scope fault(faults::call::allocation,
                                  fails_early ? faults::every() : faults::those_of(0));
        made = support::run_blend(scene_for(kind));
    }
    EXPECT_EQ(made.status, kind == step::fits || kind == step::fits_turned ? 0 : -1);
    if (kind == step::too_large_turned) {
        ASSERT_NE(g_rotated_icon, nullptr);
        EXPECT_NE(g_rotated_icon, before);
        EXPECT_GT(g_rotated_icon->width, 0);
        EXPECT_GT(g_rotated_icon->height, 0);
        EXPECT_EQ(faults::live_blocks(), blocks + 3);  // the crop, the record and its pixels
    } else if (kind == step::too_large) {
        EXPECT_EQ(g_rotated_icon, before);
        EXPECT_EQ(faults::live_blocks(), blocks + 1);  // the crop
    } else if (fails_early) {
        EXPECT_EQ(g_rotated_icon, before);
        EXPECT_EQ(faults::live_blocks(), blocks);
    } else {
        EXPECT_EQ(g_rotated_icon, nullptr);
        // An upright call frees what it finds; a turned one puts its own in that place.
        const bool freed = kind == step::fits && before != nullptr;
        EXPECT_EQ(faults::live_blocks(), blocks - (freed ? 2 : 0));
    }
}

TEST(RotatedIcon, OutlivesOnlyACallWhoseObjectIsTooLarge) {
    const int count = static_cast<int>(step::count);
    for (int n = 0; n < count * count * count; ++n) {
        SCOPED_TRACE(n);
        run_step(static_cast<step>(n / count / count));
        run_step(static_cast<step>(n / count % count));
        run_step(static_cast<step>(n % count));
        ASSERT_FALSE(HasFailure());
    }
    run_step(step::fits);
}

}  // namespace
