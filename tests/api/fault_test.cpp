// SPDX-License-Identifier: Apache-2.0
// Whole calls in which memory, threads or locks run out: status, output, messages and no leak.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "pool/faults.h"
#include "support/compare.h"
#include "support/engine_choices.h"
#include "support/scene.h"

namespace {

using faults::call;
using model::outcome;
using support::placed;
using support::scene;
using support::solid_scene;

// What the pool prints is left to its own tests.
outcome blend(const scene& s, support::aliasing alias = support::aliasing::none) {
    testing::internal::CaptureStdout();
    const outcome made = support::run_blend(s, alias);
    fflush(stdout);
    testing::internal::GetCapturedStdout();
    return made;
}

scene small_scene(float zoom, float angle) {
    return placed(solid_scene(150, 140, {50, 45, 40, 50}, 5), zoom, angle);
}

// While it lives, blends of every size use threads.
struct threads_for_all {
    threads_for_all() { support::use_threads_from(0); }
    ~threads_for_all() { support::use_threads_from(-1); }
};

// A failed call's lines are the first ones of the good call and at most one more, which says that
// memory is short.
bool is_failure_log(const model::log_lines& good, model::log_lines log) {
    if (!log.empty() && log.back().text.rfind("Alloc Blending memory error size:", 0) == 0) {
        if (log.back().priority != 6) return false;
        log.pop_back();
    }
    return log.size() < good.size() && std::equal(log.begin(), log.end(), good.begin());
}

// A call with faults gives the whole result, or fails and leaves no part of one.
void check_outcome(const outcome& good, const outcome& made) {
    EXPECT_TRUE(made.clean);
    if (made.status == 0) {
        EXPECT_TRUE(made.pixels == good.pixels);
        EXPECT_TRUE(support::same_log(good.log, made.log));
    } else {
        EXPECT_EQ(made.status, -1);
        EXPECT_TRUE(is_failure_log(good.log, made.log))
            << support::same_log(good.log, made.log).message();
    }
}

// Every allocation of the call fails in turn, alone or with all that follow, while some threads do
// not start.
void check_every_allocation(const scene& s, bool once, unsigned failing = 0,
                            support::aliasing alias = support::aliasing::none) {
    const outcome good = blend(s, alias);
    ASSERT_EQ(good.status, 0);
    int failures = 0;
    bool reached = true;
    for (int n = 0; reached; ++n) {
        SCOPED_TRACE("allocation " + std::to_string(n) + ", threads " + std::to_string(failing));
        const int64_t blocks = faults::live_blocks();
        const faults::scope threads(call::thread_create, faults::those_of(failing));
        const faults::scope fault(call::allocation, once ? faults::nth(n) : faults::from(n));
        const outcome made = blend(s, alias);
        reached = fault.calls() > n;
        check_outcome(good, made);
        EXPECT_TRUE(reached || made.status == 0);
        EXPECT_EQ(faults::live_blocks(), blocks);
        ASSERT_FALSE(testing::Test::HasFailure());
        failures += made.status != 0;
    }
    EXPECT_GE(failures, 3);
}

// With threads, the records of the pool and of its tasks are among the allocations.
TEST(Faults, EveryAllocationOfABlend) {
    for (const bool once : {true, false}) {
        check_every_allocation(small_scene(1, 0), once);
        check_every_allocation(small_scene(1, 0), once, 0, support::aliasing::icon);
        check_every_allocation(small_scene(1.4F, 0), once);
        check_every_allocation(small_scene(0.8F, 33), once);
        const threads_for_all threads;
        check_every_allocation(small_scene(1, 0), once);
        for (unsigned failing = 0; failing < 16; ++failing)
            check_every_allocation(small_scene(1.4F, -2), once, failing);
        ASSERT_FALSE(HasFatalFailure());
    }
}

// A blend with threads runs with fewer or without; a join that fails has joined.
TEST(Faults, ThreadsLocksAndJoinsOfABlend) {
    const threads_for_all threads;
    const std::pair<call, unsigned> table[] = {
        {call::mutex_init, 0b01},      {call::cond_init, 0b01},      {call::mutex_init, 0b10},
        {call::cond_init, 0b10},       {call::thread_join, 0b1001},  {call::thread_create, 0b0000},
        {call::thread_create, 0b0101}, {call::thread_create, 0b1111}};
    const scene s = placed(solid_scene(660, 640, {8, 9, 645, 623}, 6), 0.99F, 1.5F);
    const outcome good = blend(s);
    for (const auto& [kind, failing] : table) {
        const int64_t blocks = faults::live_blocks();
        const faults::scope fault(kind, faults::those_of(failing));
        const outcome made = blend(s);
        EXPECT_EQ(made.status, 0);
        check_outcome(good, made);
        EXPECT_GT(fault.calls(), 0);
        EXPECT_EQ(faults::live_blocks(), blocks);
    }
}

TEST(Faults, EveryAllocationOfACutout) {
    const scene s = small_scene(1, 0);
    const outcome good = support::run_cutout(s);
    const model::log_lines logs[] = {
        {{3, "crop_mask_image memory alloc failed return\n"}},
        {good.log[0], good.log[1], {3, "src_patchimage memory alloc failed return\n"}},
        good.log};
    for (int n = 0; n < 3; ++n) {
        const int64_t blocks = faults::live_blocks();
        const faults::scope fault(call::allocation, faults::nth(n));
        const outcome made = support::run_cutout(s);
        EXPECT_EQ(made.status, n < 2 ? -1 : 0);
        EXPECT_EQ(fault.calls(), n == 0 ? 1 : 2);  // there is no third allocation
        EXPECT_TRUE(support::same_log(logs[n], made.log));
        EXPECT_TRUE(made.clean);
        EXPECT_EQ(faults::live_blocks(), blocks);
    }
}

TEST(Faults, VerificationsAndSizesNeedNoMemory) {
    const faults::scope fault(call::allocation, faults::every());
    for (const float angle : {0.0F, 25.0F}) {
        const scene s = small_scene(1, angle);
        EXPECT_EQ(support::run_verify(s).status, 0);
        EXPECT_TRUE(support::size_matches(s.mask));
    }
    EXPECT_EQ(fault.calls(), 0);
}

}  // namespace
