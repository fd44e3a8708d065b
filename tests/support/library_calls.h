// SPDX-License-Identifier: Apache-2.0
// Calls of the library's functions on a scene.
#ifndef IMAGEBLEND_TESTS_LIBRARY_CALLS_H
#define IMAGEBLEND_TESTS_LIBRARY_CALLS_H

#include "model/model.h"
#include "scene.h"

namespace support {

// Which buffer the output shares, if any. With `both` the icon is the destination's buffer too; the
// two pictures of the scene must then be equal. With `part_of` one the output starts any number of
// bytes before or behind it, which the scene's seed says.
enum class aliasing { none, destination, icon, both, part_of_destination, part_of_icon };

// Each makes one call; its log lines are normalised. The outcome is clean when the inputs, what
// lies beside the buffers and the fields that the call does not set are as they were, and when a
// failed call has left its results alone or, a blend, copied the destination into them.
model::outcome run_blend(const scene& s, aliasing alias = aliasing::none);
model::outcome run_cutout(const scene& s);  // the icon's buffer has the size that the mask asks for
model::outcome run_verify(const scene& s);
model::outcome run_size(const model::frame& mask);

}  // namespace support

#endif  // IMAGEBLEND_TESTS_LIBRARY_CALLS_H
