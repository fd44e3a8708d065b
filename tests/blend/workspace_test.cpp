// SPDX-License-Identifier: Apache-2.0
// The workspace's size and what is left of the depth rules and the narrowing.
#include "blend/workspace.h"

#include <gtest/gtest.h>
#include <math.h>

#include <algorithm>

#include "blend/depth.h"
#include "blend/row_conversion.h"
#include "pool/faults.h"
#include "support/compare.h"
#include "support/guarded_bytes.h"
#include "support/log_capture.h"

namespace {

// The line that names the size of a block that cannot be had.
void expect_refusal(int32_t width, int32_t height, uint32_t levels, size_t size) {
    char line[80];
    snprintf(line, sizeof line, "Alloc Blending memory error size:%zx", size);
    support::clear_log();
    const faults::scope no_memory(faults::call::allocation, faults::every());
    EXPECT_EQ(alloc_blend_workspace(width, height, levels), nullptr);
    EXPECT_TRUE(support::same_log({{6, line}}, support::take_log()));
}

void check_workspace(int32_t width, int32_t height, uint32_t levels) {
    SCOPED_TRACE(std::to_string(width) + "x" + std::to_string(height) + ", " +
                 std::to_string(levels));
    const int64_t blocks = faults::live_blocks();
    blend_workspace* ws = alloc_blend_workspace(width, height, levels);
    ASSERT_NE(ws, nullptr);
    EXPECT_EQ(faults::live_blocks(), blocks + 1);
    const auto even = [](size_t bytes) { return bytes + bytes % 2; };
    // A header, three arrays, three planes of coarse colours, and the masks of the levels.
    size_t coarse = 0, size = 64 + 16 * (levels + size_t{1});
    for (uint32_t l = 0; l <= levels; ++l) {
        EXPECT_EQ(ws->level_width[l], static_cast<uint32_t>(width) >> l);
        EXPECT_EQ(ws->level_height[l], static_cast<uint32_t>(height) >> l);
        const size_t pixels = size_t{ws->level_width[l]} * ws->level_height[l];
        if (l == 0) continue;
        size += even(pixels);
        coarse += 3 * pixels;
    }
    size += 3 * even(coarse);
    uint8_t* const end = reinterpret_cast<uint8_t*>(ws) + size;
    std::fill(ws->down_plane, end, uint8_t{1});  // all of it is there
    free_blend_workspace(ws);
    EXPECT_EQ(faults::live_blocks(), blocks);
    expect_refusal(width, height, levels, size);
}

TEST(Workspace, HoldsAllLevels) {
    if (sizeof(void*) != 8) GTEST_SKIP() << "the size is that with 64-bit pointers";
    for (const uint32_t levels : {0U, 1U, 2U, 4U}) {
        for (const auto& [width, height] : {std::pair(16, 16), std::pair(17, 19), std::pair(7, 33),
                                            std::pair(1, 1), std::pair(33, 255)})
            check_workspace(width, height, levels);
    }
    expect_refusal(-5, 10, 1, 0);
    free_blend_workspace(nullptr);
}

TEST(Depth, OfSidesAndZoomedPictures) {
    const auto rule = [](int n, bool cap) { return n == 4 ? 1 : (cap && n >= 9 ? 4 : n - 4); };
    for (int k = 1; k < 31; ++k) {
        EXPECT_EQ(depth_of_side(1 << k, BASE_LEVEL, k % 2 == 0), rule(k, k % 2 == 0)) << k;
        EXPECT_EQ(depth_of_side((1 << k) - 1, BASE_LEVEL, false), rule(k - 1, false)) << k;
    }
    // The shorter side times the zoom, cut to an integer.
    struct known {
        int32_t width, height;
        uint32_t base;
        bool cap;
        float zoom;
        int32_t depth;
    };
    for (const known& k : {known{100, 200, 4, true, 0.64F, 2}, known{200, 100, 4, true, 0.639F, 1},
                           known{40, 40, 4, false, 40, 6}, known{-1, 9, 4, true, 1, -4},
                           known{100, 100, 4, false, 1e20F, 26},
                           known{100, 100, 4, true, static_cast<float>(NAN), -4},
                           // Another base moves the level that stands in for 0.
                           known{64, 64, 6, true, 1, 1}, known{64, 64, 2, true, 1, 4},
                           known{128, 128, 2, true, 1, 4}, known{128, 128, 2, false, 1, 5}}) {
        EXPECT_EQ(margin_level(k.width, k.height, k.base, k.cap, k.zoom),
                  static_cast<uint32_t>(k.depth))
            << k.width << "x" << k.height << " at " << k.zoom;
    }
}

TEST(NarrowPlane, OfNoHeightIsNothing) {
    const int16_t src[6] = {300, -1, 0, 255, 256, -32768};
    support::guarded_bytes out(model::bytes(6, 0xC7), 32, 32);
    narrow_plane_c3(src, 1, 0, out.data());
    narrow_plane_c3(src, 1, -5, out.data());
    EXPECT_EQ(out.content(), model::bytes(6, 0xC7));
    narrow_plane_c3(src, 1, 2, out.data());
    EXPECT_EQ(out.content(), (model::bytes{44, 255, 0, 255, 0, 0}));
    EXPECT_TRUE(out.intact());
}

}  // namespace
