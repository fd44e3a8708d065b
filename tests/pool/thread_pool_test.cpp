// SPDX-License-Identifier: Apache-2.0
// The worker pool at work: order, counting, shutting down.
#include "pool/thread_pool.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <thread>
#include <vector>

#include "faults.h"

namespace {

using task = std::function<void()>;

void* run(void* arg) {
    (*static_cast<task*>(arg))();
    return nullptr;
}

thread_pool* make_pool(int32_t threads) {
    thread_pool* pool = nullptr;
    EXPECT_EQ(pool_init(&pool, threads), 0);
    return pool;
}

// One worker is held while 50 tasks are added: they run in that order or not at all.
TEST(ThreadPool, RunsTasksInOrderOrDropsThem) {
    for (const bool dropped : {false, true}) {
        const int64_t blocks = faults::live_blocks();
        thread_pool* const pool = make_pool(1);
        std::promise<void> started, gate;
        task hold = [&] {
            started.set_value();
            gate.get_future().wait();
            pool_signal_done(pool);
        };
        pool_add_task(pool, run, &hold);
        started.get_future().wait();
        std::vector<int> order, expected;
        std::array<task, 50> notes;
        for (int i = 0; i < 50; ++i) {
            task& note = notes[static_cast<size_t>(i)];
            note = [&order, pool, i] {
                order.push_back(i);
                pool_signal_done(pool);
            };
            EXPECT_EQ(pool_add_task(pool, run, &note), 0);
            if (!dropped) expected.push_back(i);
        }
        EXPECT_EQ(faults::live_blocks(), blocks + 54);  // the record, two arrays, 51 tasks
        std::future<int32_t> destroyed = std::async(std::launch::async, [=] {
            if (!dropped) pool_wait_done(pool, 51);
            return pool_destroy(pool);
        });
        // The worker still sits in its task, so the pool lives until the gate opens.
        for (bool stopping = !dropped; !stopping; std::this_thread::yield()) {
            pthread_mutex_lock(&pool->queue_lock);
            stopping = pool->shutdown == 1;
            pthread_mutex_unlock(&pool->queue_lock);
        }
        gate.set_value();
        EXPECT_EQ(destroyed.get(), 0);
        EXPECT_EQ(order, expected);
        EXPECT_EQ(faults::live_blocks(), blocks);
    }
}

// Four tasks end only when all of them have started.
TEST(ThreadPool, RunsOneTaskOnEveryThreadAtOnce) {
    thread_pool* const pool = make_pool(POOL_MAX_THREADS);
    EXPECT_EQ(pool->max_thread_num, POOL_MAX_THREADS);
    std::atomic<int> started{0};
    task meet = [&] {
        ++started;
        while (started < POOL_MAX_THREADS)
            std::this_thread::yield();
        pool_signal_done(pool);
    };
    for (int i = 0; i < POOL_MAX_THREADS; ++i)
        pool_add_task(pool, run, &meet);
    pool_wait_done(pool, POOL_MAX_THREADS);
    EXPECT_EQ(pool_destroy(pool), 0);
}

TEST(ThreadPool, DestroyWhileStoppingIsRefused) {
    thread_pool* const pool = make_pool(2);
    const int64_t blocks = faults::live_blocks();
    const auto set_shutdown = [&](int32_t value) {
        pthread_mutex_lock(&pool->queue_lock);
        pool->shutdown = value;
        pthread_mutex_unlock(&pool->queue_lock);
    };
    set_shutdown(1);
    EXPECT_EQ(pool_destroy(pool), -1);
    EXPECT_EQ(faults::live_blocks(), blocks);
    EXPECT_EQ(pool->thread_creatflag[0] + pool->thread_creatflag[1], 2);
    set_shutdown(0);
    EXPECT_EQ(pool_destroy(pool), 0);
}

TEST(ThreadPool, WaitsForTheExactCount) {
    thread_pool* const pool = make_pool(1);
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
        thread_pool* const pool = make_pool(1 + i % 4);
        std::atomic<int> runs{0};
        task count = [&] {
            ++runs;
            pool_signal_done(pool);
        };
        const int stages = i == 0 ? 300 : 1 + i % 2, tasks = i == 1 ? 2000 : 4;
        for (int stage = 1; stage <= stages; ++stage) {
            pool_reset_done(pool);
            for (int k = 0; k < tasks; ++k)
                pool_add_task(pool, run, &count);
            if (i % 8 == 7) continue;
            pool_wait_done(pool, tasks);
            ASSERT_EQ(runs, tasks * stage);
            ASSERT_EQ(pool->cur_queue_size, 0);
        }
        ASSERT_EQ(pool_destroy(pool), 0);
        ASSERT_LE(runs, tasks * stages);
    }
    EXPECT_EQ(faults::live_blocks(), blocks);
}

}  // namespace
