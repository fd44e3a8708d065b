// SPDX-License-Identifier: Apache-2.0
// Surroundings and destinations, as a camera would see them: soft and with grain.
#ifndef IMAGEBLEND_BENCH_QUALITY_GROUNDS_H
#define IMAGEBLEND_BENCH_QUALITY_GROUNDS_H

#include <stdint.h>

#include <opencv2/core.hpp>
#include <string>

// Three floats a pixel: blue, green, red from 0 to 255, without grain. Kinds are sky, shore,
// foliage, dark_wall, light_wall, night, sand, bricks; std::out_of_range for any other.
cv::Mat paint_ground(const std::string& kind, cv::Size size, uint64_t seed);

// What a sensor adds, three floats a pixel.
cv::Mat grain(cv::Size size, float deviation, uint64_t seed);

#endif
