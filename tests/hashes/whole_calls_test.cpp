// The same bytes whatever the number of threads, the row operations, the build and the platform:
// calls are compared with the hashes of whole_calls.txt, which scripts/make-hashes.sh makes.
#include "whole_calls.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>

#include "blend/pyramid_blend.h"
#include "kernels/row_ops.h"
#include "pool/faults.h"

namespace {

using faults::call;

// Bits of the threads that do not start, so that `workers` of four do; which ones varies.
unsigned failing_threads(int workers, uint64_t seed) {
    const unsigned bits = (1U << (4 - workers)) - 1;
    const unsigned shift = static_cast<unsigned>(seed / 10 % 4);
    return (bits << shift | bits >> (4 - shift)) & 15U;
}

// Compares one call with its line, for every number of workers with plain and with vector rows.
void check_call(const hashes::whole_call& made, const std::string& line) {
    for (const bool plain : {false, true}) {
        force_plain_rows(plain);
        for (int workers = 0; workers <= 4; ++workers) {
            const faults::scope fault(call::thread_create,
                                      faults::those_of(failing_threads(workers, made.scene.seed)));
            testing::internal::CaptureStdout();
            const std::string actual = hashes::call_line(made);
            testing::internal::GetCapturedStdout();
            EXPECT_EQ(actual, line) << workers << " workers, " << (plain ? "plain" : "vector")
                                    << " rows, " << support::describe(made.scene);
            EXPECT_TRUE(fault.calls() == 4 || (fault.calls() == 0 && !made.is_large)) << line;
        }
    }
    force_plain_rows(false);
}

TEST(WholeCalls, HaveTheHashesOfTheTable) {
    std::ifstream table(IMAGEBLEND_WHOLE_CALLS);
    ASSERT_TRUE(table) << "cannot read " << IMAGEBLEND_WHOLE_CALLS;
    const int count = std::min<int>(support::random_calls(hashes::CALLS), hashes::CALLS);
    use_pool_from(0);  // threads for blends of every size
    for (int seed = 1; seed <= count && !HasFailure(); ++seed) {
        std::string line;
        ASSERT_TRUE(std::getline(table, line)) << "no line for seed " << seed;
        check_call(hashes::make_call(static_cast<uint64_t>(seed)), line);
    }
    use_pool_from(-1);
}

}  // namespace
