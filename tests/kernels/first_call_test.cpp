// SPDX-License-Identifier: Apache-2.0
// What is found out about the machine once and kept, asked for by all threads at the same time.
// This stands alone, as other tests ask before they start; the thread sanitizer sees what goes
// wrong.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "kernels/row_ops.h"

namespace {

TEST(FirstCall, MayComeFromAllThreadsAtOnce) {
    std::atomic<int> missing{4};
    std::vector<const row_ops*> found(4);
    std::vector<std::thread> callers;
    for (const row_ops*& answer : found) {
        callers.emplace_back([&] {
            for (--missing; missing > 0;)
                std::this_thread::yield();
            answer = active_row_ops();
        });
    }
    for (std::thread& caller : callers)
        caller.join();
    for (const row_ops* answer : found)
        EXPECT_EQ(answer, active_row_ops());
}

}  // namespace
