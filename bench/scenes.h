// SPDX-License-Identifier: Apache-2.0
// The pictures that the benchmarks work on: synthetic, with the spectrum of a photograph.
#ifndef IMAGEBLEND_BENCH_SCENES_H
#define IMAGEBLEND_BENCH_SCENES_H

#include <stdint.h>

#include <array>
#include <string>
#include <vector>

#include "imageblend.h"

// Pixels of context around an object of 256 pixels and more.
enum { MARGIN = 64 };

// Two packed pictures of three channels and the mask of an ellipse with a margin around it.
struct patch_pair {
    int32_t side;
    std::vector<uint8_t> src, dst, mask;
};
const patch_pair& patches_of(int32_t side);  // made once for each side

// One call of vorn_imageBlending: an ellipse in the middle of a frame, placed a little beside it.
struct call_scene {
    std::string name;
    int32_t width, height;
    int32_t object;  // both diameters of the ellipse
    float zoom, angle;
};
const std::array<call_scene, 4>& call_scenes();

// Pixels along one side of the rectangle that the scene's call blends.
int32_t region_side(const call_scene& scene);

// The buffers of a caller. All are written once, so their pages exist.
struct frame_set {
    int32_t width, height;
    std::vector<uint8_t> icon, destination, mask, output;
};
frame_set make_frames(const call_scene& scene);
int32_t blend_frames(frame_set& frames, const call_scene& scene);

#endif
