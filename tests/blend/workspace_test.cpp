// The workspace's layout, the depth rules and the narrowing of the top level.
#include "blend/workspace.h"

#include <gtest/gtest.h>
#include <math.h>

#include <algorithm>
#include <vector>

#include "blend/depth.h"
#include "blend/row_conversion.h"
#include "pool/faults.h"
#include "support/compare.h"
#include "support/guarded_bytes.h"
#include "support/log_capture.h"

namespace {

struct region {
    const void* start;
    size_t bytes;
};

size_t even(size_t bytes) {
    return bytes + bytes % 2;
}

// The regions in their order in the block; a plane that a level does without is null and empty.
std::vector<region> regions_of(const blend_workspace& ws) {
    const size_t entries = ws.levels + size_t{1};
    const auto pixels = [&](size_t l) { return size_t{ws.width >> l} * (ws.height >> l); };
    size_t coarse = 0;
    for (size_t l = 1; l < entries; ++l)
        coarse += 3 * pixels(l);
    std::vector<region> all = {{ws.level_width, 4 * entries},  {ws.level_height, 4 * entries},
                               {ws.lap_dst, 8 * entries},      {ws.lap_src, 8 * entries},
                               {ws.mask_levels, 8 * entries},  {ws.down_plane, even(coarse)},
                               {ws.down_plane2, even(coarse)}, {ws.up_plane, even(coarse)}};
    for (size_t l = 0; l < entries; ++l) {
        // 16 bits are kept for levels without bands, and for the only one of a flat pyramid.
        const bool wide = ws.levels == 0 || (l < ws.levels && ws.height >> l < 16);
        all.push_back({ws.lap_dst[l], wide ? 6 * pixels(l) : 0});
        all.push_back({ws.lap_src[l], wide ? 6 * pixels(l) : 0});
        all.push_back({ws.mask_levels[l], l > 0 ? even(pixels(l)) : 0});
    }
    return all;
}

void check_workspace(int32_t width, int32_t height, uint32_t levels) {
    SCOPED_TRACE(std::to_string(width) + "x" + std::to_string(height) + ", " +
                 std::to_string(levels));
    const int64_t blocks = faults::live_blocks();
    blend_workspace* ws = alloc_blend_workspace(width, height, levels);
    ASSERT_NE(ws, nullptr);
    EXPECT_EQ(faults::live_blocks(), blocks + 1);
    EXPECT_EQ(ws->levels, levels);
    EXPECT_EQ(ws->width, static_cast<uint32_t>(width));
    EXPECT_EQ(ws->height, static_cast<uint32_t>(height));
    auto* const block = reinterpret_cast<uint8_t*>(ws);
    size_t offset = 88;
    for (const region& r : regions_of(*ws)) {
        if (r.start != nullptr) {
            EXPECT_EQ(static_cast<const uint8_t*>(r.start) - block, static_cast<ptrdiff_t>(offset));
        } else {
            EXPECT_EQ(r.bytes, 0U);
        }
        offset += r.bytes;
    }
    if (levels == 0) {
        EXPECT_TRUE(
            std::all_of(ws->down_plane, block + offset, [](uint8_t byte) { return byte == 0; }));
    }
    for (uint32_t l = 0; l <= levels; ++l) {
        EXPECT_EQ(ws->level_width[l], static_cast<uint32_t>(width) >> l);
        EXPECT_EQ(ws->level_height[l], static_cast<uint32_t>(height) >> l);
        if (l > 0) {
            EXPECT_EQ((ws->mask_levels[l] - block) % 2, 0);
        }
    }
    std::fill(ws->down_plane, block + offset, uint8_t{1});  // all of it is there
    free_blend_workspace(ws);
    EXPECT_EQ(faults::live_blocks(), blocks);
    // The refusal names the whole size.
    const faults::scope no_memory(faults::call::allocation, faults::every());
    support::clear_log();
    EXPECT_EQ(alloc_blend_workspace(width, height, levels), nullptr);
    char line[80];
    snprintf(line, sizeof line, "Alloc Blending memory error size:%x",
             static_cast<unsigned>(offset));
    EXPECT_TRUE(support::same_log({{6, line}}, support::take_log()));
}

TEST(Workspace, LayoutAndSize) {
    if (sizeof(void*) != 8) GTEST_SKIP() << "the layout is that of 64-bit pointers";
    for (const uint32_t levels : {0U, 1U, 2U, 4U}) {
        check_workspace(16, 16, levels);
        check_workspace(17, 19, levels);
        check_workspace(7, 33, levels);
        check_workspace(1, 1, levels);
        check_workspace(301, 203, levels);
        check_workspace(33, 255, levels);
    }
}

TEST(Workspace, SizesThatCannotBeHad) {
    free_blend_workspace(nullptr);
    support::clear_log();
    EXPECT_EQ(alloc_blend_workspace(-5, 10, 1), nullptr);
    const model::log_lines lines = support::take_log();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].priority, 6);
    EXPECT_EQ(lines[0].text.rfind("Alloc Blending memory error size:", 0), 0U);
}

TEST(Depth, OfEveryPowerOfTwo) {
    for (int k = 0; k < 31; ++k) {
        const int32_t side = 1 << k;
        const auto rule = [](int n, bool cap) { return n == 4 ? 1 : (cap && n >= 9 ? 4 : n - 4); };
        EXPECT_EQ(depth_of_side(side, BASE_LEVEL, false), rule(k, false)) << side;
        EXPECT_EQ(depth_of_side(side, BASE_LEVEL, true), rule(k, true)) << side;
        if (k == 0) continue;
        EXPECT_EQ(depth_of_side(side - 1, BASE_LEVEL, false), rule(k - 1, false)) << side - 1;
        EXPECT_EQ(depth_of_side(side - 1, BASE_LEVEL, true), rule(k - 1, true)) << side - 1;
    }
    EXPECT_EQ(depth_of_side(INT32_MAX, BASE_LEVEL, false), 26);
    for (const int32_t side : {0, -1, INT32_MIN})
        EXPECT_EQ(depth_of_side(side, BASE_LEVEL, true), -4);
}

TEST(Depth, OfAZoomedPicture) {
    struct known {
        int32_t width, height;
        bool cap;
        float zoom;
        int32_t depth;
    };
    const known table[] = {{15, 90, true, 1, -1},
                           {16, 90, true, 1, 1},
                           {31, 90, true, 1, 1},
                           {90, 32, true, 1, 1},
                           {90, 63, true, 1, 1},
                           {64, 64, true, 1, 2},
                           {127, 128, true, 1, 2},
                           {128, 129, true, 1, 3},
                           {255, 256, true, 1, 3},
                           {256, 256, true, 1, 4},
                           {512, 600, true, 1, 4},
                           {512, 600, false, 1, 5},
                           {100, 200, true, 0.5F, 1},
                           {100, 200, true, 0.64F, 2},
                           {100, 200, true, 0.639F, 1},
                           {40, 40, true, 8, 4},
                           {40, 40, false, 40, 6},
                           {100, 100, true, 0, -4},
                           {100, 100, true, -1, -4},
                           {-98, -98, true, 1, -4},
                           {100, 100, true, static_cast<float>(NAN), -4},
                           {100, 100, false, 1e20F, 26}};
    for (const known& k : table) {
        EXPECT_EQ(margin_level(k.width, k.height, 4, k.cap, k.zoom), static_cast<uint32_t>(k.depth))
            << k.width << "x" << k.height << " at " << k.zoom;
    }
    // Another base moves the level that stands in for 0.
    EXPECT_EQ(margin_level(64, 64, 6, true, 1), 1U);
    EXPECT_EQ(margin_level(64, 64, 5, true, 1), 1U);
    EXPECT_EQ(margin_level(64, 64, 2, true, 1), 4U);
    EXPECT_EQ(margin_level(128, 128, 2, true, 1), 4U);
    EXPECT_EQ(margin_level(128, 128, 2, false, 1), 5U);
    const int32_t margins[] = {0, 0, 4, 8, 16, 32, 64, 128};
    for (int32_t level = -2; level <= 5; ++level)
        EXPECT_EQ(margin_of_level(level), margins[level + 2]);
    EXPECT_EQ(margin_of_level(-4), 0);
}

TEST(NarrowPlane, KeepsTheLowBits) {
    for (const uint32_t width : {1U, 7U, 8U, 9U, 33U}) {
        const size_t count = 3 * width * size_t{5};
        std::vector<int16_t> src(count);
        model::bytes expected(count);
        for (size_t i = 0; i < count; ++i) {
            src[i] = static_cast<int16_t>(static_cast<int>(i * 7919 % 65536) - 32768);
            expected[i] = static_cast<uint8_t>(src[i] & 255);
        }
        src[0] = 300;
        src[1] = -1;
        expected[0] = 44;
        expected[1] = 255;
        support::guarded_bytes out(model::bytes(count, 0xC7), 32, 32);
        narrow_plane_c3(src.data(), width, 0, out.data());
        narrow_plane_c3(src.data(), width, -5, out.data());
        EXPECT_EQ(out.content(), model::bytes(count, 0xC7));
        narrow_plane_c3(src.data(), width, 5, out.data());
        EXPECT_EQ(out.content(), expected);
        EXPECT_TRUE(out.intact());
    }
}

}  // namespace
