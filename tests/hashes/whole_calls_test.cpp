// SPDX-License-Identifier: Apache-2.0
// The same bytes whatever the number of threads, the row operations, the build and the platform:
// calls are compared with the hashes of whole_calls.txt, which scripts/make-hashes.sh makes.
#include "whole_calls.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>

#include "pool/faults.h"
#include "support/engine_choices.h"

namespace {

using faults::call;

// Compares one call with its line, for every number of helpers with plain and with vector rows.
void check_call(const hashes::whole_call& made, const std::string& line) {
    for (const bool plain : {false, true}) {
        support::force_plain_rows(plain);
        for (int helpers = 0; helpers <= 3; ++helpers) {
            const faults::scope fault(call::thread_create, faults::those_of(7U >> helpers));
            testing::internal::CaptureStdout();
            const std::string actual = hashes::call_line(made);
            testing::internal::GetCapturedStdout();
            EXPECT_EQ(actual, line) << helpers << " helpers, " << (plain ? "plain" : "vector")
                                    << " rows, " << support::describe(made.scene);
            const bool is_large = made.scene.seed % 10 == 0;
            EXPECT_TRUE(fault.calls() == 3 || (fault.calls() == 0 && !is_large)) << line;
        }
    }
    support::force_plain_rows(false);
}

TEST(WholeCalls, HaveTheHashesOfTheTable) {
    std::ifstream table(IMAGEBLEND_WHOLE_CALLS);
    ASSERT_TRUE(table) << "cannot read " << IMAGEBLEND_WHOLE_CALLS;
    const size_t count = std::min<size_t>(support::seeds(hashes::CALLS).size(), hashes::CALLS);
    support::use_threads_from(0);  // threads for blends of every size
    for (uint64_t seed = 1; seed <= count && !HasFailure(); ++seed) {
        std::string line;
        ASSERT_TRUE(std::getline(table, line)) << "no line for seed " << seed;
        check_call(hashes::make_call(seed), line);
    }
    support::use_threads_from(-1);
}

}  // namespace
