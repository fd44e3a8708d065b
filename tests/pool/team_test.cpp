// SPDX-License-Identifier: Apache-2.0
// The caller and its helpers at work on stages, and how many of them the system has cores for.
#include "pool/team.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "faults.h"
#include "pool/free_cores.h"

namespace {

using faults::call;
using piece = std::function<void(int32_t worker, int32_t index)>;

void run_piece(void* arg, int32_t worker, int32_t index) {
    (*static_cast<piece*>(arg))(worker, index);
}

void run(team* t, int32_t pieces, piece one) {
    const team_stage stage = {run_piece, &one, pieces};
    run_stage(t, &stage);
}

// Every piece once, nobody two at a time, and each stage sees what the one before has written. The
// caller is held up now and then, so that helpers leave and are called anew.
TEST(Team, RunsEveryPieceOnce) {
    for (int32_t helpers = 0; helpers <= TEAM_MAX_HELPERS; ++helpers) {
        team t;
        open_team(&t, helpers);
        ASSERT_EQ(t.helpers, helpers);
        std::vector<int> values(700, 0);
        for (int stage = 1; stage <= 300; ++stage) {
            std::atomic<int> busy[4] = {};
            std::atomic<bool> fine{true};
            const int32_t pieces = stage % 7 == 0 ? 700 : stage % 9;
            run(&t, pieces, [&](int32_t worker, int32_t index) {
                if (worker < 0 || worker > helpers || ++busy[worker] != 1) fine = false;
                values[static_cast<size_t>(index)] += stage;
                if (stage % 50 == 3) std::this_thread::sleep_for(std::chrono::microseconds(300));
                --busy[worker];
            });
            ASSERT_TRUE(fine);
            for (int32_t i = 0; i < 700; ++i) {
                int& value = values[static_cast<size_t>(i)];
                ASSERT_EQ(value, i < pieces ? stage : 0) << stage;
                value = 0;
            }
            if (stage % 60 == 5) std::this_thread::sleep_for(std::chrono::microseconds(400));
        }
        close_team(&t);
    }
}

// Pieces that end only when all have begun need everybody at once, also after the helpers have gone
// back to the pool; some of those that could not be started are not waited for.
TEST(Team, WorksAtTheSameTime) {
    for (const unsigned lost : {0U, 4U, 5U}) {
        const faults::scope fault(call::thread_create, faults::those_of(lost));
        const int64_t blocks = faults::live_blocks();
        testing::internal::CaptureStdout();
        team t;
        open_team(&t, 3);
        testing::internal::GetCapturedStdout();
        const int started = 3 - __builtin_popcount(lost);
        for (int stage = 0; stage < 20; ++stage) {
            std::atomic<int> begun{0};
            run(&t, started + 1, [&](int32_t, int32_t) {
                ++begun;
                while (begun <= started)
                    std::this_thread::yield();
            });
            std::this_thread::sleep_for(std::chrono::microseconds(stage % 2 * 500));
        }
        close_team(&t);
        EXPECT_EQ(faults::live_blocks(), blocks);
    }
}

// The caller sleeps while a helper works on, and a helper without a record runs in the caller.
TEST(Team, WaitsForTheLastPiece) {
    team t;
    open_team(&t, 1);
    for (int stage = 0; stage < 20; ++stage) {
        const faults::scope fault(call::allocation, [=](int) { return stage % 4 == 3; });
        std::atomic<int> done{0};
        const bool meets = stage % 4 == 0;
        std::atomic<int> begun{0};
        run(&t, 2, [&](int32_t worker, int32_t) {
            ++begun;
            while (meets && begun < 2)
                std::this_thread::yield();
            if (worker == 1) std::this_thread::sleep_for(std::chrono::milliseconds(3));
            ++done;
        });
        ASSERT_EQ(done, 2);
        std::this_thread::sleep_for(std::chrono::microseconds(stage % 3 * 200));
    }
    close_team(&t);
    const faults::scope fault(call::thread_create, faults::every());
    testing::internal::CaptureStdout();
    open_team(&t, 2);
    EXPECT_NE(testing::internal::GetCapturedStdout(), "");
    int pieces = 0;
    run(&t, 5, [&](int32_t, int32_t) { ++pieces; });
    EXPECT_EQ(pieces, 5);
    close_team(&t);
}

// No core is free while others keep all busy, nor where the thread may run on one only.
TEST(FreeCores, AreThoseThatNobodyElseUses) {
    cpu_set_t allowed, one;
    ASSERT_EQ(sched_getaffinity(0, sizeof allowed, &allowed), 0);
    EXPECT_GE(free_cores(), 1);
    EXPECT_LE(free_cores(), CPU_COUNT(&allowed));
    std::string load;
    std::getline(std::ifstream("/proc/loadavg"), load);
    if (load.find('/') == std::string::npos || load.find(" 0/") != std::string::npos) {
        GTEST_SKIP() << "the system does not tell what is running";
    }
    const long cores = sysconf(_SC_NPROCESSORS_ONLN);
    std::vector<pid_t> loops;
    for (long i = 0; i < cores; ++i) {
        loops.push_back(fork());
        for (volatile bool busy = loops.back() == 0; busy;) {
        }
    }
    EXPECT_EQ(free_cores(), 1);
    for (const pid_t loop : loops) {
        kill(loop, SIGKILL);
        waitpid(loop, nullptr, 0);
    }
    size_t first = 0;
    while (!CPU_ISSET(first, &allowed))
        ++first;
    CPU_ZERO(&one);
    CPU_SET(first, &one);
    ASSERT_EQ(sched_setaffinity(0, sizeof one, &one), 0);
    EXPECT_EQ(free_cores(), 1);
    ASSERT_EQ(sched_setaffinity(0, sizeof allowed, &allowed), 0);
}

}  // namespace
