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

// What the tasks of a test share; the first may be held until the gate opens.
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
    pool_signal_done(task->shared->pool);
    return nullptr;
}

void* count(void* arg) {
    auto* shared = static_cast<board*>(arg);
    ++shared->runs;
    pool_signal_done(shared->pool);
    return nullptr;
}

// One worker is held while 50 tasks are added: they run in that order, or not at all.
TEST(ThreadPool, RunsTasksInOrderOrDropsThem) {
    for (const bool dropped : {false, true}) {
        const int64_t blocks = faults::live_blocks();
        board shared;
        ASSERT_EQ(pool_init(&shared.pool, 1), 0);
        std::vector<job> jobs;
        std::vector<int> numbers;
        for (int i = 0; i < 50; ++i) {
            jobs.push_back({&shared, i});
            numbers.push_back(i);
        }
        pool_add_task(shared.pool, hold, &shared);
        shared.started.get_future().wait();
        for (job& j : jobs)
            EXPECT_EQ(pool_add_task(shared.pool, note, &j), 0);
        EXPECT_EQ(faults::live_blocks(), blocks + 54);  // the record, two arrays, 51 tasks
        std::future<int32_t> destroyed;
        if (dropped) {
            destroyed = std::async(std::launch::async, pool_destroy, shared.pool);
            // The worker still sits in its task, so the pool lives until the gate opens.
            for (bool stopping = false; !stopping; std::this_thread::yield()) {
                pthread_mutex_lock(&shared.pool->queue_lock);
                stopping = shared.pool->shutdown == 1;
                pthread_mutex_unlock(&shared.pool->queue_lock);
            }
        }
        shared.gate.set_value();
        if (!dropped) pool_wait_done(shared.pool, 51);
        EXPECT_EQ(dropped ? destroyed.get() : pool_destroy(shared.pool), 0);
        EXPECT_EQ(shared.order, dropped ? std::vector<int>() : numbers);
        EXPECT_EQ(faults::live_blocks(), blocks);
    }
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

TEST(ThreadPool, DestroyWhileStoppingIsRefused) {
    thread_pool* pool = nullptr;
    ASSERT_EQ(pool_init(&pool, 2), 0);
    const int64_t blocks = faults::live_blocks();
    for (const int32_t stopping : {1, 0}) {
        pthread_mutex_lock(&pool->queue_lock);
        pool->shutdown = stopping;
        pthread_mutex_unlock(&pool->queue_lock);
        if (stopping == 0) break;
        EXPECT_EQ(pool_destroy(pool), -1);
        EXPECT_EQ(faults::live_blocks(), blocks);
        EXPECT_EQ(pool->thread_creatflag[0] + pool->thread_creatflag[1], 2);
    }
    EXPECT_EQ(pool_destroy(pool), 0);
}

TEST(ThreadPool, WaitsForTheExactCount) {
    thread_pool* pool = nullptr;
    ASSERT_EQ(pool_init(&pool, 1), 0);
    const auto signal = [&](int times) {
        for (int i = 0; i < times; ++i)
            pool_signal_done(pool);
    };
    pool_wait_done(pool, 0);
    signal(5);
    pool_wait_done(pool, 5);
    std::future<void> waiter = std::async(std::launch::async, [&] { pool_wait_done(pool, 4); });
    // Five is more than four and not enough.
    EXPECT_EQ(waiter.wait_for(std::chrono::milliseconds(40)), std::future_status::timeout);
    pool_reset_done(pool);
    signal(3);
    EXPECT_EQ(waiter.wait_for(std::chrono::milliseconds(40)), std::future_status::timeout);
    signal(1);
    waiter.wait();
    pool_signal_done(nullptr);
    EXPECT_EQ(pool->pro_count, 4);
    EXPECT_EQ(pool_destroy(pool), 0);
}

TEST(ThreadPool, ManyPoolsStagesAndTasks) {
    const int64_t blocks = faults::live_blocks();
    for (int i = 0; i < 400; ++i) {
        board shared;
        ASSERT_EQ(pool_init(&shared.pool, 1 + i % 4), 0);
        const int stages = i == 0 ? 300 : 1 + i % 2, tasks = i == 1 ? 2000 : 4;
        for (int stage = 1; stage <= stages; ++stage) {
            pool_reset_done(shared.pool);
            for (int k = 0; k < tasks; ++k)
                pool_add_task(shared.pool, count, &shared);
            if (i % 8 == 7) continue;
            pool_wait_done(shared.pool, tasks);
            ASSERT_EQ(shared.runs, tasks * stage);
            ASSERT_EQ(shared.pool->cur_queue_size, 0);
        }
        ASSERT_EQ(pool_destroy(shared.pool), 0);
        ASSERT_LE(shared.runs, tasks * stages);
    }
    EXPECT_EQ(faults::live_blocks(), blocks);
}

}  // namespace
