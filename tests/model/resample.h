// SPDX-License-Identifier: Apache-2.0
// The two resamplers that a zoom other than 1 needs; both map corner onto corner.
#ifndef IMAGEBLEND_TESTS_MODEL_RESAMPLE_H
#define IMAGEBLEND_TESTS_MODEL_RESAMPLE_H

#include "model.h"

namespace model {

struct extent_2d {
    int width = 0;
    int height = 0;
};

// Nearest neighbour, one byte a pixel: the mask.
bytes resample_nearest(const bytes& source, extent_2d from, extent_2d to);

// Two-pass linear interpolation of packed 3-byte pixels: the object's picture.
bytes resample_linear(const bytes& source, extent_2d from, extent_2d to);

}  // namespace model

#endif  // IMAGEBLEND_TESTS_MODEL_RESAMPLE_H
