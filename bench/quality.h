// SPDX-License-Identifier: Apache-2.0
// How faithful a blend is to the two pictures that it joins.
#ifndef IMAGEBLEND_BENCH_QUALITY_H
#define IMAGEBLEND_BENCH_QUALITY_H

#include <vector>

#include "scenes.h"

// Absolute differences from the destination, in grey levels.
struct movement {
    double mean, largest;
};

struct blend_quality {
    movement outside;  // where the mask is 0
    movement beyond;   // where no pixel of the object is within MARGIN pixels either
    // Sum of the squared gradients of the result over that of a plain paste, 1 being all of it.
    double energy_inside, energy_outside;
};

blend_quality measure_quality(const patch_pair& patches, const std::vector<uint8_t>& result);

#endif
