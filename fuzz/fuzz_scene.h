// SPDX-License-Identifier: Apache-2.0
// Turns fuzzed bytes into the inputs of one call. Any bytes will do.
#ifndef IMAGEBLEND_FUZZ_FUZZ_SCENE_H
#define IMAGEBLEND_FUZZ_FUZZ_SCENE_H

#include <stddef.h>
#include <stdint.h>

#include "support/compare.h"
#include "support/scene.h"

struct fuzz_scene {
    support::scene scene;
    support::aliasing alias = support::aliasing::none;
};

fuzz_scene decode_scene(const uint8_t* data, size_t size);

#endif  // IMAGEBLEND_FUZZ_FUZZ_SCENE_H
