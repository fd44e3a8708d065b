// Turns fuzzed bytes into the inputs of one call. Any bytes will do; missing ones read as 0.
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

// What a byte of the header chooses: the low bits of the first byte.
enum fuzz_shape {
    FUZZ_ALIAS = 3,             // support::aliasing
    FUZZ_SIZES_DIFFER = 4,      // icon and destination get sizes of their own
    FUZZ_SIDE_BELOW_1 = 8,      // a frame without pixels
    FUZZ_ANY_CENTRE = 16,       // all of int32, else near the frame
    FUZZ_ANY_ZOOM = 32,         // any float, else 0 to 4
    FUZZ_ANY_ANGLE = 64,        // any float, else -512 to 512 degrees
    FUZZ_PLAIN_PLACEMENT = 128  // zoom 1 and angle 0
};

fuzz_scene decode_scene(const uint8_t* data, size_t size);

#endif  // IMAGEBLEND_FUZZ_FUZZ_SCENE_H
