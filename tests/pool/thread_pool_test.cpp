// The worker pool at work: order, counting, shutting down.
#include "pool/thread_pool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <thread>
#include <vector>

#include "faults.h"

namespace {

// Tasks that note their number, the first of which may be held until the gate opens.
struct board {
    thread_pool* pool = nullptr;
    std::promise<void> started;
    std::promise<void> gate;
    std::vector<int> order;  // written by one worker at a time
    std::atomic<int> runs{0};
};

struct job {
    board* shared;
    int number;
};

void* hold(void* arg) {
    auto* shared = static_cast<board*>(arg);
    shared->started.set_value();
    shared->gate.get_future().wait();
    pool_signal_done(shared->pool);
    return nullptr;
}

void* note(void* arg) {
    const auto* task = static_cast<const job*>(arg);
    task->shared->order.push_back(task->number);
    ++task->shared->runs;
    pool_signal_done(task->shared->pool);
    return nullptr;
}

void* count(void* arg) {
    auto* shared = static_cast<board*>(arg);
    ++shared->runs;
    pool_signal_done(shared->pool);
    return nullptr;
}

std::vector<job> jobs_of(board* shared, int number) {
    std::vector<job> jobs;
    for (int i = 0; i < number; ++i)
        jobs.push_back({shared, i});
    return jobs;
}

TEST(ThreadPool, RunsTasksInTheOrderOfTheirAdding) {
    board shared;
    ASSERT_EQ(pool_init(&shared.pool, 1), 0);
    std::vector<job> jobs = jobs_of(&shared, 50);
    pool_reset_done(shared.pool);
    EXPECT_EQ(pool_add_task(shared.pool, hold, &shared), 0);
    shared.started.get_future().wait();
    for (job& j : jobs)
        EXPECT_EQ(pool_add_task(shared.pool, note, &j), 0);
    shared.gate.set_value();
    pool_wait_done(shared.pool, 51);
    ASSERT_EQ(shared.order.size(), jobs.size());
    for (int i = 0; i < 50; ++i)
        EXPECT_EQ(shared.order[static_cast<size_t>(i)], i);
    EXPECT_EQ(pool_destroy(shared.pool), 0);
}

TEST(ThreadPool, RunsOneTaskOnEveryThreadAtOnce) {
    board boards[POOL_MAX_THREADS];
    thread_pool* pool = nullptr;
    ASSERT_EQ(pool_init(&pool, POOL_MAX_THREADS), 0);
    EXPECT_EQ(pool->max_thread_num, POOL_MAX_THREADS);
    for (board& b : boards) {
        b.pool = pool;
        pool_add_task(pool, hold, &b);
    }
    // All four tasks start though none of them has ended.
    for (board& b : boards)
        b.started.get_future().wait();
    for (board& b : boards)
        b.gate.set_value();
    pool_wait_done(pool, POOL_MAX_THREADS);
    EXPECT_EQ(pool_destroy(pool), 0);
}

TEST(ThreadPool, DropsTasksThatHaveNotStarted) {
    const int64_t blocks = faults::live_blocks();
    board shared;
    ASSERT_EQ(pool_init(&shared.pool, 1), 0);
    std::vector<job> jobs = jobs_of(&shared, 3);
    pool_add_task(shared.pool, hold, &shared);
    shared.started.get_future().wait();
    for (job& j : jobs)
        pool_add_task(shared.pool, note, &j);
    EXPECT_EQ(faults::live_blocks(), blocks + 7);  // the record, two arrays, four tasks
    std::future<int32_t> destroyed =
        std::async(std::launch::async, [&shared] { return pool_destroy(shared.pool); });
    // The worker still sits in its task, so the pool lives until the gate opens.
    for (bool stopping = false; !stopping; std::this_thread::yield()) {
        pthread_mutex_lock(&shared.pool->queue_lock);
        stopping = shared.pool->shutdown == 1;
        pthread_mutex_unlock(&shared.pool->queue_lock);
    }
    shared.gate.set_value();
    EXPECT_EQ(destroyed.get(), 0);
    EXPECT_EQ(shared.runs, 0);
    EXPECT_EQ(faults::live_blocks(), blocks);
}

TEST(ThreadPool, DestroyWhileStoppingIsRefused) {
    thread_pool* pool = nullptr;
    ASSERT_EQ(pool_init(&pool, 2), 0);
    const auto set_shutdown = [&](int32_t value) {
        pthread_mutex_lock(&pool->queue_lock);
        pool->shutdown = value;
        pthread_mutex_unlock(&pool->queue_lock);
    };
    set_shutdown(1);
    const int64_t blocks = faults::live_blocks();
    EXPECT_EQ(pool_destroy(pool), -1);
    EXPECT_EQ(faults::live_blocks(), blocks);
    EXPECT_EQ(pool->shutdown, 1);
    EXPECT_EQ(pool->thread_creatflag[0] + pool->thread_creatflag[1], 2);
    set_shutdown(0);
    EXPECT_EQ(pool_destroy(pool), 0);
}

TEST(ThreadPool, WaitsForTheExactCount) {
    thread_pool* pool = nullptr;
    ASSERT_EQ(pool_init(&pool, 1), 0);
    pool_wait_done(pool, 0);
    for (int i = 0; i < 5; ++i)
        pool_signal_done(pool);
    EXPECT_EQ(pool->pro_count, 5);
    pool_wait_done(pool, 5);
    std::future<void> waiter = std::async(std::launch::async, [&] { pool_wait_done(pool, 4); });
    // Five is more than four and not enough.
    EXPECT_EQ(waiter.wait_for(std::chrono::milliseconds(40)), std::future_status::timeout);
    pool_reset_done(pool);
    for (int i = 0; i < 3; ++i)
        pool_signal_done(pool);
    EXPECT_EQ(waiter.wait_for(std::chrono::milliseconds(40)), std::future_status::timeout);
    pool_signal_done(pool);
    waiter.wait();
    pool_signal_done(nullptr);
    EXPECT_EQ(pool->pro_count, 4);
    EXPECT_EQ(pool_destroy(pool), 0);
}

TEST(ThreadPool, ManyStagesAndManyTasks) {
    board shared;
    ASSERT_EQ(pool_init(&shared.pool, 4), 0);
    for (int stage = 1; stage <= 300; ++stage) {
        pool_reset_done(shared.pool);
        for (int k = 0; k < 4; ++k)
            pool_add_task(shared.pool, count, &shared);
        pool_wait_done(shared.pool, 4);
        ASSERT_EQ(shared.runs, 4 * stage);
    }
    pool_reset_done(shared.pool);
    for (int k = 0; k < 2000; ++k)
        pool_add_task(shared.pool, count, &shared);
    pool_wait_done(shared.pool, 2000);
    EXPECT_EQ(shared.runs, 3200);
    EXPECT_EQ(shared.pool->cur_queue_size, 0);
    EXPECT_EQ(pool_destroy(shared.pool), 0);
}

TEST(ThreadPool, AThousandPools) {
    const int64_t blocks = faults::live_blocks();
    for (int i = 0; i < 1000; ++i) {
        board shared;
        ASSERT_EQ(pool_init(&shared.pool, 1 + i % 4), 0);
        for (int k = 0; k < 4; ++k)
            pool_add_task(shared.pool, count, &shared);
        if (i % 2 == 0) {
            pool_wait_done(shared.pool, 4);
            ASSERT_EQ(shared.runs, 4);
        }
        ASSERT_EQ(pool_destroy(shared.pool), 0);
        ASSERT_LE(shared.runs, 4);
    }
    EXPECT_EQ(faults::live_blocks(), blocks);
}

}  // namespace
