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

struct init_outcome {
    int32_t status;
    bool stored;  // whether *out was written
    std::string printed;
    thread_pool* pool;
};

init_outcome init_pool(int32_t threads) {
    thread_pool untouched;
    thread_pool* pool = &untouched;
    testing::internal::CaptureStdout();
    const int32_t status = pool_init(&pool, threads);
    fflush(stdout);
    return {status, pool != &untouched, testing::internal::GetCapturedStdout(), pool};
}

// pool_init fails with this text when `failing` does, and leaks nothing.
void expect_failure(call kind, int failing, const std::string& printed, bool stored) {
    const int64_t blocks = faults::live_blocks();
    const faults::scope fault(kind, faults::nth(failing));
    const init_outcome result = init_pool(4);
    EXPECT_EQ(result.status, -1) << printed;
    EXPECT_EQ(result.printed, printed);
    EXPECT_EQ(result.stored, stored) << printed;
    EXPECT_EQ(faults::live_blocks(), blocks) << printed;
    EXPECT_EQ(fault.calls(), failing + 1) << printed;
}

TEST(PoolFailures, Memory) {
    expect_failure(call::allocation, 0, "can't alloc thread pool\n", false);
    expect_failure(call::allocation, 1, "can't malloc threadid\n", true);
    expect_failure(call::allocation, 2, "can't malloc thread_creatflag\n", true);
}

TEST(PoolFailures, LocksAndConditions) {
    const std::string code = " err:" + std::to_string(faults::CODE) + "\n";
    expect_failure(call::mutex_init, 0, "can't init pool->queue_lock" + code, true);
    expect_failure(call::cond_init, 0, "can't init pool->queue_ready" + code, true);
    expect_failure(call::mutex_init, 1, "can't init pool->pro_lock" + code, true);
    expect_failure(call::cond_init, 1, "can't init pool->pro_ready" + code, true);
    // In that order: with both kinds failing from the start the mutex is reported.
    const faults::scope conditions(call::cond_init, faults::every());
    expect_failure(call::mutex_init, 0, "can't init pool->queue_lock" + code, true);
}

TEST(PoolFailures, NumbersOfThreads) {
    const int64_t blocks = faults::live_blocks();
    const init_outcome none = init_pool(0);
    EXPECT_EQ(none.status, -1);
    EXPECT_EQ(none.printed, NO_THREAD_AT_ALL);
    EXPECT_TRUE(none.stored);
    EXPECT_EQ(init_pool(-1).status, -1);
    const faults::scope threads(call::thread_create, faults::every());
    EXPECT_EQ(init_pool(5).status, -1);
    EXPECT_EQ(threads.calls(), 0);  // a pool has room for four
    EXPECT_EQ(faults::live_blocks(), blocks);
}

void* add_one(void* arg) {
    ++*static_cast<std::atomic<int>*>(arg);
    return nullptr;
}

struct counted_task {
    thread_pool* pool;
    std::atomic<int>* runs;
};

void* run_counted(void* arg) {
    const auto* task = static_cast<const counted_task*>(arg);
    add_one(task->runs);
    pool_signal_done(task->pool);
    return nullptr;
}

TEST(PoolFailures, EverySubsetOfTheThreads) {
    for (unsigned failing = 0; failing < 16; ++failing) {
        const int64_t blocks = faults::live_blocks();
        const faults::scope fault(call::thread_create, faults::those_of(failing));
        const init_outcome result = init_pool(4);
        std::string printed;
        for (int i = 0; i < __builtin_popcount(failing); ++i)
            printed += NO_THREAD;
        EXPECT_EQ(fault.calls(), 4);
        if (failing == 15) {
            EXPECT_EQ(result.status, -1);
            EXPECT_EQ(result.printed, printed + NO_THREAD_AT_ALL);
        } else {
            ASSERT_EQ(result.status, 0) << failing;
            EXPECT_EQ(result.printed, printed);
            for (int i = 0; i < 4; ++i)
                EXPECT_EQ(result.pool->thread_creatflag[i], (failing >> i & 1U) == 0 ? 1 : 0);
            std::atomic<int> runs{0};
            counted_task task = {result.pool, &runs};
            for (int i = 0; i < 8; ++i)
                pool_add_task(result.pool, run_counted, &task);
            pool_wait_done(result.pool, 8);
            EXPECT_EQ(runs, 8);
            const faults::scope joins(call::thread_join, faults::those_of(0));
            EXPECT_EQ(pool_destroy(result.pool), 0);
            EXPECT_EQ(joins.calls(), 4 - __builtin_popcount(failing));
        }
        EXPECT_EQ(faults::live_blocks(), blocks) << failing;
    }
}

TEST(PoolFailures, ATaskWithoutARecordRunsAtOnce) {
    thread_pool* pool = nullptr;
    ASSERT_EQ(pool_init(&pool, 1), 0);
    std::atomic<int> runs{0};
    counted_task task = {pool, &runs};
    {
        const faults::scope fault(call::allocation, faults::every());
        EXPECT_EQ(pool_add_task(pool, run_counted, &task), 0);
    }
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(pool->pro_count, 1);
    EXPECT_EQ(pool_destroy(pool), 0);
}

TEST(PoolFailures, AFailedJoinIsReportedAndTheRestGoesOn) {
    const int64_t blocks = faults::live_blocks();
    thread_pool* pool = nullptr;
    ASSERT_EQ(pool_init(&pool, 4), 0);
    std::string expected;
    for (const int i : {1, 3}) {
        expected += std::string("pthread_join fail: ") + strerror(faults::CODE) +
                    " , i:" + std::to_string(i) +
                    " , threadid:" + std::to_string(static_cast<int>(pool->threadid[i])) + "\n";
    }
    const faults::scope fault(call::thread_join, faults::those_of(0b1010));
    testing::internal::CaptureStdout();
    EXPECT_EQ(pool_destroy(pool), -1);
    fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), expected);
    EXPECT_EQ(fault.calls(), 4);
    EXPECT_EQ(faults::live_blocks(), blocks);
}

}  // namespace
