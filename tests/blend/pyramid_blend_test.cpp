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

namespace {

using naive::bytes;
using support::guarded_bytes;

struct pictures {
    int32_t width, height;
    bytes src, dst, mask;
};

pictures make_pictures(int32_t width, int32_t height, int kind) {
    const auto seed = static_cast<uint64_t>(width * 1000 + height);
    const size_t pixels = naive::plane_bytes({width, height}, 1);
    // Opposite extremes drive the collapse beyond 0..255.
    return {width, height, naive::data(kind, 3 * pixels, seed),
            naive::data(kind == 4 ? 4 : 5, 3 * pixels, seed + 1),
            naive::data(kind == 4 ? 4 : 5, pixels, seed + 2)};
}

// As deep as both sides of the coarsest level stay 2 or more.
int32_t deepest(const pictures& p, int32_t levels) {
    int32_t depth = 0;
    while (depth < levels && p.width >> (depth + 1) >= 2 && p.height >> (depth + 1) >= 2)
        ++depth;
    return depth;
}

bytes expected_of(const pictures& p, int32_t levels) {
    return model::pyramid_blend(p.src, p.dst, p.mask, p.width, p.height, deepest(p, levels));
}

struct outcome {
    int32_t status;
    bytes result;
    bool guards_kept;
};

// Pictures of this many pixels are blended by threads.
constexpr int32_t THREADED_WIDTH = 411, THREADED_HEIGHT = 403;

// Planes that a pyramid reads before it has written them would show.
void spoil(const blend_workspace& ws) {
    const size_t last = size_t{ws.level_width[ws.levels]} * ws.level_height[ws.levels];
    std::fill(ws.down_plane, ws.mask_levels[ws.levels] + last, uint8_t{0x9D});
}

outcome run(const pictures& p, int32_t levels) {
    guarded_bytes src(p.src, 0, 0), dst(p.dst, 0, 0), mask(p.mask, 0, 0);
    guarded_bytes result(bytes(p.src.size(), 0xC7), 64, 64);
    guarded_bytes scratch(naive::data(4, p.src.size(), 99), 64, 64);
    uint8_t* const working = p.width % 2 == 0 ? nullptr : scratch.data();  // may be missing
    blend_workspace* ws = alloc_blend_workspace(p.width, p.height, static_cast<uint32_t>(levels));
    if (ws == nullptr) return {-1, result.content(), true};
    if (levels > 0) spoil(*ws);
    const int32_t status = pyramid_blend(src.data(), dst.data(), mask.data(), result.data(),
                                         working, p.src.size(), ws);
    free_blend_workspace(ws);
    return {status, result.content(),
            result.intact() && scratch.intact() && src.content() == p.src &&
                dst.content() == p.dst && mask.content() == p.mask};
}

void check_blend(const pictures& p, int32_t levels) {
    const outcome o = run(p, levels);
    ASSERT_EQ(o.status, 0);
    ASSERT_TRUE(o.guards_kept) << p.width << "x" << p.height << ", depth " << levels;
    ASSERT_EQ(o.result, expected_of(p, levels))
        << p.width << "x" << p.height << ", depth " << levels;
}

TEST(PyramidBlend, ManySizesAndDepths) {
    support::clear_log();
    const int32_t widths[] = {2, 3, 4, 5, 9, 16, 23, 38, 67};
    const int32_t heights[] = {2,  3,  4,  5,  7,  8,  11, 15, 16, 17, 18, 19, 22,
                               23, 27, 31, 32, 33, 35, 40, 47, 62, 65, 71, 95, 130};
    for (const int32_t width : widths) {
        for (const int32_t height : heights) {
            const pictures p = make_pictures(width, height, (width + height) % 3 == 0 ? 5 : 4);
            for (int32_t levels = 1; levels <= 4; ++levels) {
                check_blend(p, levels);
                ASSERT_FALSE(HasFatalFailure());
            }
        }
    }
    EXPECT_TRUE(support::take_log().empty());
}

TEST(PyramidBlend, LargeAndExtremePictures) {
    for (int kind = 0; kind < 4; ++kind) {
        check_blend(make_pictures(53, 77, kind), 4);
        check_blend(make_pictures(64, 64, kind), 2);
    }
    check_blend(make_pictures(THREADED_WIDTH, THREADED_HEIGHT, 4), 4);
    check_blend(make_pictures(1400, 119, 4), 2);
    check_blend(make_pictures(9000, 19, 5), 1);
    check_blend(make_pictures(11, 15000, 4), 3);
}

// The vector rows and the plain ones, through the whole blend.
TEST(PyramidBlend, PlainRowsGiveTheSame) {
    force_plain_rows(true);
    for (const int32_t height : {5, 18, 33, 64})
        check_blend(make_pictures(77, height, 4), 3);
    force_plain_rows(false);
}

TEST(PyramidBlend, WithoutALevelTheFilledPlanesAreMixed) {
    const pictures p = make_pictures(19, 21, 4);
    EXPECT_EQ(run(p, 0).result, bytes(p.src.size(), 0));  // planes of zeros
    blend_workspace* ws = alloc_blend_workspace(p.width, p.height, 0);
    ASSERT_NE(ws, nullptr);
    std::copy(p.src.begin(), p.src.end(), ws->lap_src[0]);
    std::copy(p.dst.begin(), p.dst.end(), ws->lap_dst[0]);
    bytes result(p.src.size()), scratch(p.src.size());
    EXPECT_EQ(pyramid_blend(p.src.data(), p.dst.data(), p.mask.data(), result.data(),
                            scratch.data(), p.src.size(), ws),
              0);
    free_blend_workspace(ws);
    EXPECT_EQ(result, expected_of(p, 0));
}

TEST(PyramidBlend, SameBytesWithFewerThreads) {
    const pictures p = make_pictures(THREADED_WIDTH, THREADED_HEIGHT, 4);
    const bytes expected = expected_of(p, 3);
    for (const unsigned failing : {0U, 15U, 14U, 7U, 5U}) {
        const int64_t blocks = faults::live_blocks();
        const faults::scope fault(faults::call::thread_create, faults::those_of(failing));
        testing::internal::CaptureStdout();
        const outcome o = run(p, 3);
        const std::string printed = testing::internal::GetCapturedStdout();
        EXPECT_EQ(o.status, 0);
        EXPECT_TRUE(o.guards_kept && o.result == expected) << failing;
        EXPECT_EQ(fault.calls(), 4);
        EXPECT_EQ(printed.find("all LTM thread create failed.") != std::string::npos,
                  failing == 15);
        EXPECT_EQ(faults::live_blocks(), blocks);
    }
    const faults::scope locks(faults::call::mutex_init, faults::every());
    testing::internal::CaptureStdout();
    EXPECT_TRUE(run(p, 3).result == expected);
    testing::internal::GetCapturedStdout();
}

// Each allocation in turn fails, or all from it on.
void check_every_allocation(const pictures& p, int32_t levels) {
    const bytes expected = expected_of(p, levels);
    for (const bool once : {true, false}) {
        for (int n = 0;; ++n) {
            const int64_t blocks = faults::live_blocks();
            const faults::scope fault(faults::call::allocation,
                                      once ? faults::nth(n) : faults::from(n));
            testing::internal::CaptureStdout();
            const outcome o = run(p, levels);
            testing::internal::GetCapturedStdout();
            ASSERT_TRUE(o.guards_kept);
            ASSERT_EQ(faults::live_blocks(), blocks) << n;
            ASSERT_TRUE(o.status == -1 || (o.status == 0 && o.result == expected)) << n;
            if (n == 0 || (n == 1 && !once)) {
                ASSERT_EQ(o.status, -1);  // no workspace, or no scratch
            }
            if (fault.calls() <= n) break;
        }
    }
}

TEST(PyramidBlend, FailsOrSucceedsWholeWithoutMemory) {
    check_every_allocation(make_pictures(70, 83, 4), 4);
    check_every_allocation(make_pictures(70, 11, 4), 2);
    check_every_allocation(make_pictures(THREADED_WIDTH, THREADED_HEIGHT, 4), 2);
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
TEST(BlendPictures, BetweenFramesAndInPlace) {
    struct shape {
        int32_t width, height, frame_width, frame_height, x, y;
    };
    for (const shape s : {shape{40, 33, 90, 70, 13, 21}, shape{64, 64, 64, 64, -1, -1},
                          shape{51, 16, 52, 40, 0, 23}, shape{403, 411, 420, 415, 3, 2}}) {
        const size_t frame_bytes = naive::plane_bytes({s.frame_width, s.frame_height}, 4);
        model::frame src = {s.frame_width, s.frame_height, naive::data(4, frame_bytes, 5)};
        const model::frame dst = {s.frame_width, s.frame_height, naive::data(4, frame_bytes, 6)};
        const bytes mask = naive::data(4, naive::plane_bytes({s.width, s.height}, 1), 7);
        const bytes blended = model::pyramid_blend(
            model::read_rectangle(src, 0, 0, s.width, s.height),
            model::read_rectangle(dst, s.x, s.y, s.width, s.height), mask, s.width, s.height, 2);
        for (const bool in_place : {true, false}) {
            guarded_bytes under(dst.data, 0, 64), other(bytes(frame_bytes, 0x77), 0, 64);
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
            // The source is filled by the blend itself, in bands of rows.
            std::atomic<int32_t> filled{0};
            const row_work fill = {[](void* rows, int32_t, int32_t begin, int32_t end) {
                                       *static_cast<std::atomic<int32_t>*>(rows) += end - begin;
                                   },
                                   &filled, 37};
            const pyramid_extras extras = {{&fill, nullptr}, &beside};
            EXPECT_EQ(blend_pictures(&from, &onto, mask.data(), &to, ws, &extras), 0);
            EXPECT_EQ(filled, 37);
            free_blend_workspace(ws);
            EXPECT_TRUE(support::same_pixels(expected.data, out.content(), s.frame_width))
                << s.width << "x" << s.height << (in_place ? " in place" : "");
            EXPECT_TRUE(under.intact() && other.intact());
            EXPECT_FALSE(note.written);  // before all pieces were done
            for (const std::atomic<int>& runs : note.runs)
                EXPECT_EQ(runs, 1);
        }
    }
}

}  // namespace
