// SPDX-License-Identifier: Apache-2.0
// The worker pool when threads, locks or memory cannot be had: status, messages, nothing leaked.
#include <gtest/gtest.h>
#include <string.h>

#include <atomic>
#include <string>

#include "faults.h"
#include "pool/thread_pool.h"

namespace {

using faults::call;

const std::string NO_THREAD = std::string("can't create thread: ") + strerror(faults::CODE) + "\n";
const std::string NO_THREAD_AT_ALL = "all LTM thread create failed.\n";

template <class Action>
std::string printed_by(Action action) {
    testing::internal::CaptureStdout();
    action();
    fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

// Expects what pool_init returns and prints; the pool, or null if none was stored.
thread_pool* init_pool(int32_t threads, int32_t status, const std::string& printed) {
    thread_pool* pool = nullptr;
    EXPECT_EQ(printed_by([&] { EXPECT_EQ(pool_init(&pool, threads), status); }), printed);
    return pool;
}

TEST(PoolFailures, OfEveryPart) {
    const std::string code = " err:" + std::to_string(faults::CODE) + "\n";
    const struct {
        call kind;
        int failing;
        std::string printed;
    } table[] = {{call::allocation, 0, "can't alloc thread pool\n"},
                 {call::allocation, 1, "can't malloc threadid\n"},
                 {call::allocation, 2, "can't malloc thread_creatflag\n"},
                 {call::mutex_init, 0, "can't init pool->queue_lock" + code},
                 {call::cond_init, 0, "can't init pool->queue_ready" + code},
                 {call::mutex_init, 1, "can't init pool->pro_lock" + code},
                 {call::cond_init, 1, "can't init pool->pro_ready" + code}};
    const int64_t blocks = faults::live_blocks();
    for (const auto& part : table) {
        const faults::scope fault(part.kind, faults::nth(part.failing));
        const bool stored = init_pool(4, -1, part.printed) != nullptr;
        EXPECT_EQ(stored, part.kind != call::allocation || part.failing > 0) << part.printed;
        // The second array is tried in any case.
        const bool tries_both = part.kind == call::allocation && part.failing == 1;
        EXPECT_EQ(fault.calls(), part.failing + (tries_both ? 2 : 1)) << part.printed;
        EXPECT_EQ(faults::live_blocks(), blocks) << part.printed;
    }
    {
        const faults::scope arrays(call::allocation, faults::from(1));
        init_pool(4, -1, "can't malloc threadid\ncan't malloc thread_creatflag\n");
        EXPECT_EQ(faults::live_blocks(), blocks);
    }
    // The mutex comes before the condition.
    const faults::scope conditions(call::cond_init, faults::every());
    const faults::scope mutexes(call::mutex_init, faults::every());
    init_pool(4, -1, table[3].printed);
}

// A pool has room for four.
TEST(PoolFailures, NumbersOfThreads) {
    const int64_t blocks = faults::live_blocks();
    EXPECT_NE(init_pool(0, -1, NO_THREAD_AT_ALL), nullptr);
    init_pool(-1, -1, NO_THREAD_AT_ALL);
    init_pool(5, -1, "");
    EXPECT_EQ(faults::live_blocks(), blocks);
}

struct counted_task {
    thread_pool* pool;
    std::atomic<int> runs{0};
};

void* run_counted(void* arg) {
    auto* task = static_cast<counted_task*>(arg);
    ++task->runs;
    pool_signal_done(task->pool);
    return nullptr;
}

// A task without memory for its record runs at once. A join that fails is reported, and the rest
// goes on.
TEST(PoolFailures, EverySubsetOfTheThreads) {
    const int64_t blocks = faults::live_blocks();
    for (unsigned failing = 0; failing < 15; ++failing) {
        SCOPED_TRACE(failing);
        const faults::scope fault(call::thread_create, faults::those_of(failing));
        const int missing = __builtin_popcount(failing);
        std::string printed;
        for (int i = 0; i < missing; ++i)
            printed += NO_THREAD;
        thread_pool* const pool = init_pool(4, 0, printed);
        counted_task task = {pool};
        for (int i = 0; i < 8; ++i)
            pool_add_task(pool, run_counted, &task);
        pool_wait_done(pool, 8);
        const faults::scope no_memory(call::allocation, faults::every());
        EXPECT_EQ(pool_add_task(pool, run_counted, &task), 0);
        EXPECT_EQ(task.runs, 9);
        EXPECT_EQ(pool->pro_count, 9);
        const bool joins_fail = failing % 3 == 0;
        const faults::scope joins(call::thread_join, [=](int) { return joins_fail; });
        std::string reports;
        for (int i = 0; i < 4; ++i) {
            const bool started = (failing >> i & 1U) == 0;
            EXPECT_EQ(pool->thread_creatflag[i], started ? 1 : 0);
            if (started && joins_fail) {
                reports += std::string("pthread_join fail: ") + strerror(faults::CODE) +
                           " , i:" + std::to_string(i) +
                           " , threadid:" + std::to_string(static_cast<int>(pool->threadid[i])) +
                           "\n";
            }
        }
        EXPECT_EQ(printed_by([=] { EXPECT_EQ(pool_destroy(pool), joins_fail ? -1 : 0); }), reports);
        EXPECT_EQ(joins.calls(), 4 - missing);
        EXPECT_EQ(faults::live_blocks(), blocks);
    }
    const faults::scope fault(call::thread_create, faults::every());
    init_pool(4, -1, NO_THREAD + NO_THREAD + NO_THREAD + NO_THREAD + NO_THREAD_AT_ALL);
    EXPECT_EQ(faults::live_blocks(), blocks);
}

}  // namespace
