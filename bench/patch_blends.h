// SPDX-License-Identifier: Apache-2.0
// The blends that are compared: ours and, where OpenCV is there, its own.
#ifndef IMAGEBLEND_BENCH_PATCH_BLENDS_H
#define IMAGEBLEND_BENCH_PATCH_BLENDS_H

#include <functional>
#include <vector>

#include "scenes.h"

// A blend of one pair of patches, all its buffers but those it allocates by itself made beforehand.
struct patch_blend {
    std::function<void()> run;                     // the timed part
    std::function<std::vector<uint8_t>()> result;  // packed bytes of the last run
};

// A kind of blend and the thread count that OpenCV is given for it; -1 is its default.
struct blend_kind {
    const char* name;
    patch_blend (*make)(const patch_pair& patches);
    int threads;
};

enum { DEPTH = 4 };

// pyramid_blend in a workspace that is kept, and in one that is made for the run.
patch_blend make_imageblend(const patch_pair& patches);
patch_blend make_imageblend_fresh(const patch_pair& patches);

// The mask chooses between the pictures, without any blending.
std::vector<uint8_t> paste(const patch_pair& patches);

#ifdef IMAGEBLEND_BENCH_OPENCV
// The same pyramids as ours, written with cv::pyrDown and cv::pyrUp.
patch_blend make_by_hand(const patch_pair& patches);

// cv::detail::MultiBandBlender, fed with the source under the mask and with the destination under
// its inverse. Its result is left in 16 bits; the conversion to bytes is not part of `run`.
patch_blend make_multiband(const patch_pair& patches);      // weights in floats, its default
patch_blend make_multiband_16s(const patch_pair& patches);  // weights in 16-bit integers
#endif

// All kinds, ours first.
const std::vector<blend_kind>& blend_kinds();

// Sets OpenCV's thread count; does nothing without OpenCV.
void set_peer_threads(int threads);

#endif
