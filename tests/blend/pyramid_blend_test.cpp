// SPDX-License-Identifier: Apache-2.0
// The blend of two packed rectangles: every size and depth against the model, with and without
// threads and memory.
#include "blend/pyramid_blend.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "kernels/naive.h"
#include "model/pyramid.h"
#include "pool/faults.h"
#include "support/engine_choices.h"
#include "support/guarded_bytes.h"
#include "support/log_capture.h"

namespace {

using naive::bytes;
using support::guarded_bytes;

struct pictures {
    int32_t width, height;
    bytes src, dst, mask;
};

// Opposite extremes drive the collapse beyond 0..255.
pictures make_pictures(int32_t width, int32_t height, int kind) {
    const auto seed = static_cast<uint64_t>(width * 1000 + height);
    const size_t pixels = naive::plane_bytes({width, height}, 1);
    const int other = kind == 4 ? 4 : 5;
    return {width, height, naive::data(kind, 3 * pixels, seed),
            naive::data(other, 3 * pixels, seed + 1), naive::data(other, pixels, seed + 2)};
}

// As deep as both sides of the coarsest level stay 2 or more.
bytes expected_of(const pictures& p, int32_t levels) {
    int32_t depth = 0;
    while (depth < levels && p.width >> (depth + 1) >= 2 && p.height >> (depth + 1) >= 2)
        ++depth;
    return model::pyramid_blend(p.src, p.dst, p.mask, p.width, p.height, depth);
}

// Status -1, or 0 and the expected bytes; nothing else is written, leaked or logged.
int32_t check_blend(const pictures& p, int32_t levels) {
    SCOPED_TRACE(std::to_string(p.width) + "x" + std::to_string(p.height) + ", depth " +
                 std::to_string(levels));
    const bytes expected = expected_of(p, levels);
    guarded_bytes src(p.src, 0, 0), dst(p.dst, 0, 0), mask(p.mask, 0, 0);
    guarded_bytes result(bytes(p.src.size(), 0xC7), 64, 64);
    const int64_t blocks = faults::live_blocks();
    blend_workspace* ws = alloc_blend_workspace(p.width, p.height, static_cast<uint32_t>(levels));
    int32_t status = -1;
    if (ws != nullptr) {
        // Planes that a pyramid reads before it has written them would show.
        if (levels > 0) {
            const size_t last = size_t{ws->level_width[levels]} * ws->level_height[levels];
            std::fill(ws->down_plane, ws->mask_levels[levels] + last, uint8_t{0x9D});
        }
        const patch from = packed_patch(src.data(), p.width, p.height);
        const patch onto = packed_patch(dst.data(), p.width, p.height);
        const patch made = packed_patch(result.data(), p.width, p.height);
        status = pyramid_blend(&from, &onto, mask.data(), &made, ws, nullptr);
        free_blend_workspace(ws);
    }
    EXPECT_EQ(faults::live_blocks(), blocks);
    EXPECT_TRUE(result.intact() && src.content() == p.src && dst.content() == p.dst &&
                mask.content() == p.mask);
    EXPECT_TRUE(status == -1 || (status == 0 && result.content() == expected));
    return status;
}

TEST(PyramidBlend, ManySizesDepthsAndThreads) {
    support::clear_log();
    const int32_t widths[] = {1, 2, 3, 4, 5, 9, 16, 23, 38, 67};
    const int32_t heights[] = {1,  2,  3,  4,  5,  7,  8,  11, 15, 16, 17, 18, 19, 22,
                               23, 27, 31, 32, 33, 35, 40, 47, 62, 65, 71, 95, 130};
    for (const int32_t width : widths) {
        for (const int32_t height : heights) {
            const int kind = (width + height) % 3 == 0 ? 5 : 4;
            for (int32_t levels = 0; levels <= 4; ++levels) {
                // The vector rows and the plain ones, and sometimes threads.
                support::force_plain_rows((height + levels) % 3 == 0);
                support::use_threads_from((width + levels) % 4 == 0 ? 0 : -1);
                ASSERT_EQ(check_blend(make_pictures(width, height, kind), levels), 0);
                ASSERT_FALSE(HasFailure());
            }
        }
    }
    support::force_plain_rows(false);
    for (int kind = 0; kind < 4; ++kind)
        EXPECT_EQ(check_blend(make_pictures(53, 77, kind), 4), 0);
    support::use_threads_from(500000);
    const faults::scope threads(faults::call::thread_create, faults::those_of(0));
    for (const auto& [width, height] :
         {std::pair(1400, 119), std::pair(9000, 19), std::pair(11, 15000), std::pair(741, 733)})
        EXPECT_EQ(check_blend(make_pictures(width, height, 4), 3), 0);
    EXPECT_EQ(threads.calls(), 3);  // for the last of them; smaller ones ask for none
    support::use_threads_from(-1);
    EXPECT_TRUE(support::take_log().empty());
}

// Each allocation in turn fails, or all from it on.
TEST(PyramidBlend, FailsWithoutMemory) {
    const pictures p = make_pictures(70, 41, 4);
    for (const bool once : {true, false}) {
        int32_t status = -1;
        for (int n = 0; status != 0; ++n) {
            const faults::scope fault(faults::call::allocation,
                                      once ? faults::nth(n) : faults::from(n));
            status = check_blend(p, 3);
            EXPECT_EQ(status, fault.calls() > n ? -1 : 0) << n;
        }
    }
}

}  // namespace
