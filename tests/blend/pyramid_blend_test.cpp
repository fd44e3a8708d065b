// The blend of two packed rectangles: every size and depth against the model, with and without
// threads and memory.
#include "blend/pyramid_blend.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>

#include "kernels/naive.h"
#include "kernels/row_ops.h"
#include "model/geometry.h"
#include "model/pyramid.h"
#include "pool/faults.h"
#include "support/compare.h"
#include "support/guarded_bytes.h"
#include "support/log_capture.h"
#include "support/scene.h"

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
        const size_t last = size_t{ws->level_width[levels]} * ws->level_height[levels];
        std::fill(ws->down_plane, ws->mask_levels[levels] + last, uint8_t{0x9D});
        status = pyramid_blend(src.data(), dst.data(), mask.data(), result.data(), nullptr,
                               p.src.size(), ws);
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
    const int32_t widths[] = {2, 3, 4, 5, 9, 16, 23, 38, 67};
    const int32_t heights[] = {2,  3,  4,  5,  7,  8,  11, 15, 16, 17, 18, 19, 22,
                               23, 27, 31, 32, 33, 35, 40, 47, 62, 65, 71, 95, 130};
    for (const int32_t width : widths) {
        for (const int32_t height : heights) {
            const int kind = (width + height) % 3 == 0 ? 5 : 4;
            for (int32_t levels = 1; levels <= 4; ++levels) {
                // The vector rows and the plain ones, and sometimes threads.
                force_plain_rows((height + levels) % 3 == 0);
                use_pool_from((width + levels) % 4 == 0 ? 0 : -1);
                ASSERT_EQ(check_blend(make_pictures(width, height, kind), levels), 0);
                ASSERT_FALSE(HasFailure());
            }
        }
    }
    force_plain_rows(false);
    for (int kind = 0; kind < 4; ++kind)
        EXPECT_EQ(check_blend(make_pictures(53, 77, kind), 4), 0);
    use_pool_from(-1);
    for (const auto& [width, height] :
         {std::pair(1400, 119), std::pair(9000, 19), std::pair(11, 15000), std::pair(741, 733)})
        EXPECT_EQ(check_blend(make_pictures(width, height, 4), 3), 0);
    EXPECT_TRUE(support::take_log().empty());
}

TEST(PyramidBlend, WithoutALevelTheFilledPlanesAreMixed) {
    const pictures p = make_pictures(19, 21, 4);
    blend_workspace* ws = alloc_blend_workspace(p.width, p.height, 0);
    ASSERT_NE(ws, nullptr);
    std::copy(p.src.begin(), p.src.end(), ws->lap_src[0]);
    std::copy(p.dst.begin(), p.dst.end(), ws->lap_dst[0]);
    bytes result(p.src.size());
    EXPECT_EQ(pyramid_blend(p.src.data(), p.dst.data(), p.mask.data(), result.data(), nullptr,
                            p.src.size(), ws),
              0);
    free_blend_workspace(ws);
    EXPECT_EQ(result, expected_of(p, 0));
}

TEST(PyramidBlend, SameBytesWithFewerThreads) {
    use_pool_from(0);
    const pictures p = make_pictures(211, 203, 4);
    for (const unsigned failing : {0U, 15U, 14U, 7U, 5U}) {
        const faults::scope fault(faults::call::thread_create, faults::those_of(failing));
        testing::internal::CaptureStdout();
        EXPECT_EQ(check_blend(p, 3), 0);
        const std::string printed = testing::internal::GetCapturedStdout();
        EXPECT_EQ(fault.calls(), 4);
        EXPECT_EQ(printed.find("all LTM thread create failed.") != std::string::npos,
                  failing == 15);
    }
    use_pool_from(-1);
    const faults::scope no_threads(faults::call::thread_create, faults::every());
    EXPECT_EQ(check_blend(p, 3), 0);
    EXPECT_EQ(no_threads.calls(), 0);  // a picture of this size asks for none
}

// Each allocation in turn fails, or all from it on.
TEST(PyramidBlend, FailsOrSucceedsWholeWithoutMemory) {
    for (const auto& [width, height, pool] :
         {std::array{70, 83, -1}, {70, 11, -1}, {211, 203, 0}}) {
        const pictures p = make_pictures(width, height, 4);
        use_pool_from(pool);
        for (const bool once : {true, false}) {
            int32_t status = -1;
            for (int n = 0, calls = n + 1; n < calls; ++n) {
                const faults::scope fault(faults::call::allocation,
                                          once ? faults::nth(n) : faults::from(n));
                testing::internal::CaptureStdout();
                status = check_blend(p, 2);
                testing::internal::GetCapturedStdout();
                // Without a workspace, or without scratch.
                EXPECT_TRUE(status == -1 || n > 1 || (n == 1 && once)) << n;
                calls = fault.calls() > n ? n + 2 : n;  // until none has failed
                ASSERT_FALSE(HasFailure()) << n;
            }
            EXPECT_EQ(status, 0);
        }
    }
    use_pool_from(-1);
}

constexpr int32_t PIECES = 7;

struct side_note {
    const uint8_t* result = nullptr;
    bytes before;
    std::array<std::atomic<int>, PIECES> runs{};
    std::atomic<bool> written{false};
};

void note_piece(void* arg, int32_t index) {
    auto* note = static_cast<side_note*>(arg);
    ++note->runs[static_cast<size_t>(index)];
    if (!std::equal(note->before.begin(), note->before.end(), note->result)) note->written = true;
}

// Rectangles of frames, one of them a little outside, into another frame or into the destination.
// The source is filled by the blend itself, in bands of rows; pieces of other work are done before
// the result is written.
TEST(BlendPictures, BetweenFramesAndInPlace) {
    struct shape {
        int32_t width, height, frame_width, frame_height, x, y;
    };
    for (const shape s : {shape{40, 33, 90, 70, 13, 21}, shape{64, 64, 64, 64, -1, -1},
                          shape{51, 16, 52, 40, 0, 23}, shape{203, 211, 220, 215, 3, 2}}) {
        use_pool_from(s.width > 200 ? 0 : -1);
        model::frame src = support::noise_picture(s.frame_width, s.frame_height, 5);
        const model::frame dst = support::noise_picture(s.frame_width, s.frame_height, 6);
        const bytes mask = naive::data(4, naive::plane_bytes({s.width, s.height}, 1), 7);
        const bytes blended = model::pyramid_blend(
            model::read_rectangle(src, 0, 0, s.width, s.height),
            model::read_rectangle(dst, s.x, s.y, s.width, s.height), mask, s.width, s.height, 2);
        for (const bool in_place : {true, false}) {
            guarded_bytes under(dst.data, 0, 64), other(bytes(dst.data.size(), 0x77), 0, 64);
            guarded_bytes& out = in_place ? under : other;
            model::frame expected = {s.frame_width, s.frame_height, out.content()};
            model::write_rectangle(expected, s.x, s.y, s.width, s.height, blended);
            const auto rectangle = [&](uint8_t* pixels, int32_t x, int32_t y) {
                return frame_picture(pixels, s.frame_width, s.frame_height, x, y);
            };
            const picture from = rectangle(src.data.data(), 0, 0),
                          onto = rectangle(under.data(), s.x, s.y),
                          to = rectangle(out.data(), s.x, s.y);
            side_note note;
            note.result = out.data();
            note.before = out.content();
            side_work beside = {note_piece, &note, PIECES, 0};
            blend_workspace* ws = alloc_blend_workspace(s.width, s.height, 2);
            ASSERT_NE(ws, nullptr);
            std::atomic<int32_t> filled{0};
            const row_work fill = {[](void* rows, int32_t, int32_t begin, int32_t end) {
                                       *static_cast<std::atomic<int32_t>*>(rows) += end - begin;
                                   },
                                   &filled, 37};
            const pyramid_extras extras = {{&fill, nullptr}, &beside};
            EXPECT_EQ(blend_pictures(&from, &onto, mask.data(), &to, ws, &extras), 0);
            free_blend_workspace(ws);
            EXPECT_EQ(filled, 37);
            EXPECT_TRUE(support::same_pixels(expected.data, out.content(), s.frame_width))
                << s.width << "x" << s.height << (in_place ? " in place" : "");
            EXPECT_TRUE(under.intact() && other.intact() && !note.written);
            EXPECT_TRUE(std::all_of(note.runs.begin(), note.runs.end(),
                                    [](const auto& runs) { return runs == 1; }));
        }
    }
    use_pool_from(-1);
}

}  // namespace
