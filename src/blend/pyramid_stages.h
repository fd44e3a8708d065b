// The stages of one pyramid blend: how a level is cut into bands and what each band's kernels get.
#ifndef IMAGEBLEND_BLEND_PYRAMID_STAGES_H
#define IMAGEBLEND_BLEND_PYRAMID_STAGES_H

#include "blend/band_bundle.h"
#include "blend/workspace.h"

// What all stages of one pyramid_blend call share.
typedef struct pyramid_run {
    blend_workspace* ws;
    int32_t levels;     // depth that is built, at most ws->levels
    thread_pool* pool;  // null when no thread could be started
    uint8_t* band_scratch[BAND_COUNT];
    pixel_layout layout_mask;  // {0, 1}
    pixel_layout layout_c3;    // {0, 3}
    band_bundle bundles[BAND_COUNT];
    band_task blends[BAND_COUNT];
} pyramid_run;

// Levels of fewer rows than this are built whole: a band's overlap would not fit into its scratch.
enum { MIN_BAND_HEIGHT = 16 };

// Builds level l of one pyramid from its 8-bit image: the Laplacian plane `lap[l]`, the next
// level's 8-bit image `reduced`, at the last step the top plane lap[l + 1], and with `with_mask`
// the next level of the mask. Returns false when a whole-level routine found no memory.
bool build_level(pyramid_run* run, int32_t level, const uint8_t* image, uint8_t* reduced,
                 int16_t* const* lap, bool with_mask);

// lap_dst[level] = lap_src[level] over lap_dst[level] under the mask of that level.
void blend_level(pyramid_run* run, int32_t level);

// fine = the expanded image `coarse` of `level` plus the blended level above it. Returns false when
// a whole-level routine found no memory.
bool collapse_level(pyramid_run* run, int32_t level, const uint8_t* coarse, uint8_t* fine);

#endif
