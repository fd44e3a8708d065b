// SPDX-License-Identifier: Apache-2.0
// hash_calls: prints the lines of whole_calls.txt.
#include <iostream>

#include "whole_calls.h"

int main() {
    for (uint64_t seed = 1; seed <= hashes::CALLS; ++seed)
        std::cout << hashes::call_line(hashes::make_call(seed)) << "\n";
    std::cout.flush();
    return std::cout ? 0 : 1;
}
