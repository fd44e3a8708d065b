// SPDX-License-Identifier: Apache-2.0
// The blends that are compared: ours and, where they are there, those of Halide and OpenCV.
#ifndef IMAGEBLEND_BENCH_PATCH_BLENDS_H
#define IMAGEBLEND_BENCH_PATCH_BLENDS_H

#include <sched.h>

#include <functional>
#include <vector>

#include "scenes.h"

// A blend of one pair of patches, all its buffers but those it allocates by itself made beforehand.
struct patch_blend {
    std::function<void()> run;                     // the timed part
    std::function<std::vector<uint8_t>()> result;  // packed bytes of the last run
};

// A kind of blend and how many threads it runs on: 1, or -1 for as many as it takes by itself.
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

#ifdef IMAGEBLEND_BENCH_HALIDE
// A pipeline of Halide with the bytes of ours, which is checked, under the fastest of its schedules
// on this machine: on the calling thread, and on as many threads as there are cores. Compiles for
// some seconds the first time.
patch_blend make_halide_1(const patch_pair& patches);
patch_blend make_halide(const patch_pair& patches);
#endif

// All kinds, ours first.
const std::vector<blend_kind>& blend_kinds();

// While it lives, blends of this thread run on as many threads as the kind says: OpenCV is told so,
// and the thread is held on one core, which is what ours goes by.
class thread_limit {
  public:
    explicit thread_limit(const blend_kind& kind);
    ~thread_limit();
    thread_limit(const thread_limit&) = delete;
    thread_limit& operator=(const thread_limit&) = delete;

  private:
    cpu_set_t cores_;  // those of before
};

#endif
