// What all stages of one pyramid blend share, and the stages.
#ifndef IMAGEBLEND_BLEND_PYRAMID_RUN_H
#define IMAGEBLEND_BLEND_PYRAMID_RUN_H

#include "blend/band_bundle.h"
#include "blend/side_work.h"
#include "blend/workspace.h"

typedef struct pyramid_run {
    blend_workspace* ws;
    int32_t levels;            // depth that is built, at most ws->levels
    thread_pool* pool;         // null when everything runs in the caller
    int64_t min_stage_pixels;  // coarser levels below this run in the caller all the same
    side_work* beside;         // shared by all threads of the first stage; may be null
    uint8_t* band_scratch[BAND_COUNT];
    pixel_layout layout_mask;  // {0, 1}
    pixel_layout layout_c3;    // {0, 3}
    picture src[MAX_LEVELS + 1];
    picture dst[MAX_LEVELS + 1];
    picture result[MAX_LEVELS + 1];
    const uint8_t* mask[MAX_LEVELS + 1];
    band_bundle band_bundles[BAND_COUNT];
} pyramid_run;

// Fills rows of the source before the first level is built.
void prepare_source(pyramid_run* run, const row_work* work);

// Builds level + 1 of the source, the destination and the mask from `level`. False without memory.
bool build_level(pyramid_run* run, int32_t level);

// Blends the coarsest level into its result.
void blend_top(pyramid_run* run);

// The result of `level` from that of level + 1. False without memory.
bool collapse_level(pyramid_run* run, int32_t level);

#endif
