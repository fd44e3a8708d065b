// SPDX-License-Identifier: Apache-2.0
// The objects that the quality benchmark pastes: smooth and cornered ones, with thin parts, holes
// and crevices, light and dark, plain and textured.
#ifndef IMAGEBLEND_BENCH_QUALITY_OBJECTS_H
#define IMAGEBLEND_BENCH_QUALITY_OBJECTS_H

#include <string>

#include "quality_drawing.h"

// Throws std::out_of_range for a name that is none of jar, weed, gear, lamp, wheel, leaf.
drawing draw_object(const std::string& name);

#endif
