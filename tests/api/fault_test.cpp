// Whole calls in which memory, threads or locks run out: status, output, messages and no leak.
#include <gtest/gtest.h>
#include <string.h>

#include <algorithm>
#include <string>
#include <vector>

#include "blend/pyramid_blend.h"
#include "imageblend.h"
#include "pool/faults.h"
#include "support/compare.h"
#include "support/log_capture.h"
#include "support/scene.h"

namespace {

using faults::call;
using model::bytes;
using support::scene;

enum { UNTOUCHED = 0xC7 };

blend_image image_of(const model::frame& f) {
    return {f.width, f.height, const_cast<uint8_t*>(f.data.data())};
}

struct blended {
    int32_t status;
    bytes output;
    model::log_lines log;
    std::string printed;
};

blended blend(const scene& s) {
    bytes output(s.destination.data.size(), UNTOUCHED);
    const blend_image icon = image_of(s.icon), destination = image_of(s.destination),
                      mask = image_of(s.mask);
    blend_image out = {s.mask.width, s.mask.height, output.data()};
    support::clear_log();
    testing::internal::CaptureStdout();
    const int32_t status =
        vorn_imageBlending(&icon, &destination, &mask, &out, 0, 0, s.place.center_x,
                           s.place.center_y, s.place.zoom, s.place.angle);
    fflush(stdout);
    std::string printed = testing::internal::GetCapturedStdout();
    return {status, output, support::normalised(support::take_log()), printed};
}

scene placed(scene s, float zoom, float angle) {
    s.place.zoom = zoom;
    s.place.angle = angle;
    return s;
}

scene scene_at(float zoom, float angle) {
    return placed(support::solid_scene(150, 140, {50, 45, 40, 50}, 5), zoom, angle);
}

// Large enough for threads without being asked to use them.
scene large_scene(float zoom, float angle) {
    return placed(support::solid_scene(660, 640, {8, 9, 645, 623}, 6), zoom, angle);
}

// While it lives, blends of every size use threads.
struct threads_for_all {
    threads_for_all() { use_pool_from(0); }
    ~threads_for_all() { use_pool_from(-1); }
};

// A failed call's lines are the first ones of the good call and at most one more, which says that
// memory is short.
bool is_failure_log(const model::log_lines& good, model::log_lines log) {
    if (!log.empty() && log.back().text.rfind("Alloc Blending memory error size:", 0) == 0) {
        if (log.back().priority != 6) return false;
        log.pop_back();
    }
    if (log.size() >= good.size()) return false;
    return std::equal(log.begin(), log.end(), good.begin());
}

// A call with faults gives the whole result, or fails and leaves no part of one.
void check_outcome(const scene& s, const blended& good, const blended& b) {
    if (b.status == 0) {
        EXPECT_TRUE(b.output == good.output);
        EXPECT_TRUE(support::same_log(good.log, b.log));
        return;
    }
    EXPECT_EQ(b.status, -1);
    EXPECT_TRUE(b.output == bytes(b.output.size(), UNTOUCHED) || b.output == s.destination.data);
    EXPECT_TRUE(is_failure_log(good.log, b.log)) << support::same_log(good.log, b.log).message();
}

// What the pool prints when the threads of `failing` do not start.
std::string thread_messages(unsigned failing) {
    std::string text;
    for (int i = 0; i < __builtin_popcount(failing); ++i)
        text += std::string("can't create thread: ") + strerror(faults::CODE) + "\n";
    return failing == 15 ? text + "all LTM thread create failed.\n" : text;
}

// What it may print when an allocation fails too.
std::vector<std::string> pool_messages(unsigned failing) {
    return {thread_messages(failing), "can't alloc thread pool\n", "can't malloc threadid\n",
            "can't malloc thread_creatflag\n"};
}

// Every allocation of the call fails in turn, alone or with all that follow, while some threads do
// not start.
void check_every_allocation(const scene& s, bool once, unsigned failing) {
    const blended good = blend(s);
    ASSERT_EQ(good.status, 0);
    const std::vector<std::string> printable = pool_messages(failing);
    int failures = 0;
    for (int n = 0;; ++n) {
        SCOPED_TRACE("allocation " + std::to_string(n) + ", threads " + std::to_string(failing));
        const int64_t blocks = faults::live_blocks();
        const faults::scope threads(call::thread_create, faults::those_of(failing));
        const faults::scope fault(call::allocation, once ? faults::nth(n) : faults::from(n));
        const blended b = blend(s);
        check_outcome(s, good, b);
        EXPECT_TRUE(std::count(printable.begin(), printable.end(), b.printed) > 0 ||
                    (threads.calls() == 0 && b.printed.empty()))
            << b.printed;
        ASSERT_EQ(faults::live_blocks(), blocks);
        ASSERT_FALSE(testing::Test::HasFailure());
        failures += b.status != 0;
        if (fault.calls() <= n) {
            ASSERT_EQ(b.status, 0);
            break;
        }
    }
    EXPECT_GE(failures, 3);
}

TEST(Faults, EveryAllocationOfABlend) {
    for (const bool once : {true, false}) {
        check_every_allocation(scene_at(1, 0), once, 0);
        check_every_allocation(scene_at(1.4F, 0), once, 0);
        check_every_allocation(scene_at(0.8F, 33), once, 0);
        ASSERT_FALSE(HasFatalFailure());
    }
}

// The records of the pool and of its tasks are among the allocations.
TEST(Faults, EveryAllocationOfABlendWithThreads) {
    const threads_for_all threads;
    for (const bool once : {true, false}) {
        check_every_allocation(scene_at(1, 0), once, 0);
        for (unsigned failing = 0; failing < 16; ++failing)
            check_every_allocation(scene_at(1.4F, -2), once, failing);
        ASSERT_FALSE(HasFatalFailure());
    }
}

TEST(Faults, EverySubsetOfTheThreads) {
    for (const scene& s : {large_scene(1, 0), large_scene(0.99F, 1.5F)}) {
        const blended good = blend(s);
        for (unsigned failing = 0; failing < 16; ++failing) {
            SCOPED_TRACE(failing);
            const int64_t blocks = faults::live_blocks();
            const faults::scope fault(call::thread_create, faults::those_of(failing));
            const blended b = blend(s);
            EXPECT_EQ(b.status, 0);
            check_outcome(s, good, b);
            EXPECT_EQ(b.printed, thread_messages(failing));
            EXPECT_EQ(fault.calls(), 4);
            EXPECT_EQ(faults::live_blocks(), blocks);
        }
    }
}

// The blend then runs without threads; a join that fails has joined.
TEST(Faults, LocksAndJoinsOfABlend) {
    struct lock_fault {
        call kind;
        int failing;
        const char* printed;
    };
    const lock_fault locks[] = {{call::mutex_init, 0, "can't init pool->queue_lock err:"},
                                {call::cond_init, 0, "can't init pool->queue_ready err:"},
                                {call::mutex_init, 1, "can't init pool->pro_lock err:"},
                                {call::cond_init, 1, "can't init pool->pro_ready err:"},
                                {call::thread_join, 0, "pthread_join fail: "},
                                {call::thread_join, 3, "pthread_join fail: "}};
    const threads_for_all threads_at_work;
    const scene s = scene_at(1, -2);
    const blended good = blend(s);
    for (const lock_fault& lock : locks) {
        const int64_t blocks = faults::live_blocks();
        const faults::scope fault(lock.kind, faults::nth(lock.failing));
        const faults::scope threads(call::thread_create, faults::those_of(0));
        const blended b = blend(s);
        EXPECT_EQ(b.status, 0);
        check_outcome(s, good, b);
        EXPECT_EQ(b.printed.rfind(lock.printed, 0), 0U) << b.printed;
        EXPECT_EQ(std::count(b.printed.begin(), b.printed.end(), '\n'), 1);
        EXPECT_EQ(threads.calls(), lock.kind == call::thread_join ? 4 : 0);
        EXPECT_EQ(faults::live_blocks(), blocks);
    }
}

TEST(Faults, EveryAllocationOfACutout) {
    const scene s = scene_at(1, 0);
    const blend_image source = image_of(s.icon), mask = image_of(s.mask);
    const char* const messages[] = {"crop_mask_image memory alloc failed return\n",
                                    "src_patchimage memory alloc failed return\n"};
    for (int n = 0; n < 3; ++n) {
        const int64_t blocks = faults::live_blocks();
        bytes pixels(size_t{4} * 40 * 50, UNTOUCHED);
        blend_image icon = {-7, -7, pixels.data()};
        support::clear_log();
        const faults::scope fault(call::allocation, faults::nth(n));
        EXPECT_EQ(vorn_create_rgb_icon(&source, &mask, &icon, 1), n < 2 ? -1 : 0);
        const model::log_lines lines = support::take_log();
        EXPECT_EQ(faults::live_blocks(), blocks);
        if (n == 2) {
            EXPECT_EQ(fault.calls(), 2);  // there is no third allocation
            break;
        }
        ASSERT_FALSE(lines.empty());
        EXPECT_TRUE(lines.back() == (model::log_line{3, messages[n]}));
        EXPECT_EQ(lines.size(), n == 0 ? 1U : 3U);
        EXPECT_EQ(icon.width, -7);
        EXPECT_TRUE(pixels == bytes(pixels.size(), UNTOUCHED));
    }
}

TEST(Faults, MemoryOfAVerificationAndOfASize) {
    const scene s = scene_at(1, 0);
    const auto verify = [&](float angle) {
        return vorn_verify_icon_pos(s.mask.data.data(), s.mask.width, s.mask.height, 0, 0, 75, 70,
                                    1, angle);
    };
    const int64_t blocks = faults::live_blocks();
    EXPECT_EQ(verify(25), 0);
    const faults::scope fault(call::allocation, faults::every());
    EXPECT_EQ(verify(25), -1);
    EXPECT_EQ(fault.calls(), 1);
    EXPECT_EQ(verify(0), 0);
    const blend_image mask = image_of(s.mask);
    int32_t width = 0, height = 0;
    EXPECT_EQ(vorn_get_icon_size(&mask, &width, &height), 0);
    EXPECT_EQ(fault.calls(), 1);  // these two need none
    EXPECT_EQ(faults::live_blocks(), blocks);
}

}  // namespace
