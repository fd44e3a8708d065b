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
    for (const auto& part : table) {
        const int64_t blocks = faults::live_blocks();
        const faults::scope fault(part.kind, faults::nth(part.failing));
        const init_outcome result = init_pool(4);
        EXPECT_EQ(result.status, -1) << part.printed;
        EXPECT_EQ(result.printed, part.printed);
        EXPECT_EQ(result.stored, part.kind != call::allocation || part.failing > 0);
        EXPECT_EQ(faults::live_blocks(), blocks) << part.printed;
        EXPECT_EQ(fault.calls(), part.failing + 1) << part.printed;
    }
    // The mutex comes before the condition.
    const faults::scope conditions(call::cond_init, faults::every());
    const faults::scope mutexes(call::mutex_init, faults::every());
    EXPECT_EQ(init_pool(4).printed, table[3].printed);
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

// A task without memory for its record runs at once.
TEST(PoolFailures, EverySubsetOfTheThreads) {
    for (unsigned failing = 0; failing < 16; ++failing) {
        const int64_t blocks = faults::live_blocks();
        const faults::scope fault(call::thread_create, faults::those_of(failing));
        const init_outcome result = init_pool(4);
        const int missing = __builtin_popcount(failing);
        std::string printed;
        for (int i = 0; i < missing; ++i)
            printed += NO_THREAD;
        EXPECT_EQ(fault.calls(), 4);
        EXPECT_EQ(result.printed, failing == 15 ? printed + NO_THREAD_AT_ALL : printed);
        ASSERT_EQ(result.status, failing == 15 ? -1 : 0) << failing;
        if (failing < 15) {
            for (int i = 0; i < 4; ++i)
                EXPECT_EQ(result.pool->thread_creatflag[i], (failing >> i & 1U) == 0 ? 1 : 0);
            counted_task task = {result.pool};
            for (int i = 0; i < 8; ++i)
                pool_add_task(result.pool, run_counted, &task);
            pool_wait_done(result.pool, 8);
            const faults::scope no_memory(call::allocation, faults::every());
            EXPECT_EQ(pool_add_task(result.pool, run_counted, &task), 0);
            EXPECT_EQ(task.runs, 9);
            EXPECT_EQ(result.pool->pro_count, 9);
            const faults::scope joins(call::thread_join, faults::those_of(0));
            EXPECT_EQ(pool_destroy(result.pool), 0);
            EXPECT_EQ(joins.calls(), 4 - missing);
        }
        EXPECT_EQ(faults::live_blocks(), blocks) << failing;
    }
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
