// SPDX-License-Identifier: Apache-2.0
// Calls one of the library's functions with a fuzzed scene and compares all that a caller sees with
// the tests' model. FUZZ_CALL names the function: blend, cutout, verify or size.
#include <stdlib.h>

#include <iostream>

#include "fuzz_scene.h"
#include "support/engine_choices.h"

namespace {

[[maybe_unused]] testing::AssertionResult check_blend(const fuzz_scene& input) {
    // Threads are slow to start, so most blends of this size are left without.
    support::use_threads_from(input.scene.seed % 16 == 0 ? 0 : -1);
    return support::blend_matches(input.scene, input.alias);
}

// The source's width is the mask's by contract.
[[maybe_unused]] testing::AssertionResult check_cutout(fuzz_scene input) {
    const model::frame& mask = input.scene.mask;
    input.scene.icon.width = mask.width;
    input.scene.icon.height = mask.height;
    input.scene.icon.data.resize(mask.data.size() * 4, 0x91);
    return support::cutout_matches(input.scene);
}

[[maybe_unused]] testing::AssertionResult check_verify(const fuzz_scene& input) {
    return support::verify_matches(input.scene);
}

[[maybe_unused]] testing::AssertionResult check_size(const fuzz_scene& input) {
    return support::size_matches(input.scene.mask);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const testing::AssertionResult result = FUZZ_CALL(decode_scene(data, size));
    if (result) return 0;
    std::cerr << result.message() << std::endl;
    abort();
}
