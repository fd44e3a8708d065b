// SPDX-License-Identifier: Apache-2.0
// Random calls whose outcomes are written down in whole_calls.txt, one line a call:
//   seed function status hash
#ifndef IMAGEBLEND_TESTS_HASHES_WHOLE_CALLS_H
#define IMAGEBLEND_TESTS_HASHES_WHOLE_CALLS_H

#include <stdint.h>

#include <string>

#include "support/library_calls.h"

namespace hashes {

enum { CALLS = 1000 };  // seeds 1 .. CALLS

struct whole_call {
    std::string function;  // blend, verify, cutout or size
    support::scene scene;
    support::aliasing alias = support::aliasing::none;
};

// Every tenth call is a blend of a large object, which succeeds.
whole_call make_call(uint64_t seed);

// Makes the call and returns its line. The hash is FNV-1a over the log lines and, where the call
// succeeds, its results.
std::string call_line(const whole_call& call);

}  // namespace hashes

#endif  // IMAGEBLEND_TESTS_HASHES_WHOLE_CALLS_H
