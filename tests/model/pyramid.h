// SPDX-License-Identifier: Apache-2.0
// Laplacian pyramid blending of whole planes.
#ifndef IMAGEBLEND_TESTS_MODEL_PYRAMID_H
#define IMAGEBLEND_TESTS_MODEL_PYRAMID_H

#include "model.h"

namespace model {

// Blends packed 3-byte pictures of width x height under a mask of the same size: `source` where the
// mask is 255. `levels` below 1 mixes the pictures themselves.
bytes pyramid_blend(const bytes& source, const bytes& destination, const bytes& mask, int width,
                    int height, int levels);

}  // namespace model

#endif  // IMAGEBLEND_TESTS_MODEL_PYRAMID_H
