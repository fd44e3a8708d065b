// SPDX-License-Identifier: Apache-2.0
// The blend as a pipeline for Halide, with the bytes of ours.
//
// Levels are whole planes with padded rows; rows that are filtered once slide along in strips,
// which are what threads share. Colours are taken apart on the way down from the finest level and
// are interleaved again in its last step. The merge takes blocks of 64 pixels and reads one picture
// alone where the mask of a block is all set or all clear.
#ifndef IMAGEBLEND_BENCH_HALIDE_PIPELINE_H
#define IMAGEBLEND_BENCH_HALIDE_PIPELINE_H

#include <Halide.h>
#include <stdint.h>

#include <array>

#include "patch_blends.h"

struct halide_pipeline {
    Halide::Pipeline blend;  // to one plane of 3 side x side bytes

    // The pictures twice, as three channels and as rows of bytes, and the mask.
    Halide::ImageParam src, dst, src_bytes, dst_bytes, mask;

    // Strips of the steps between two levels, the finest first: rows of the coarser level.
    std::array<Halide::Param<int>, DEPTH> down_strip, up_strip;
};

// For squares whose side is a multiple of 256; nothing is compiled yet.
halide_pipeline make_halide_pipeline(int32_t side);

#endif
