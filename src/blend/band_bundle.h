// One band's share of one stage of the pyramid driver: the kernels that run one after the other on
// the same rows, as one pool task.
#ifndef IMAGEBLEND_BLEND_BAND_BUNDLE_H
#define IMAGEBLEND_BLEND_BAND_BUNDLE_H

#include <stddef.h>

#include "blend/band_task.h"

enum { BAND_COUNT = 4 };

// Rows that a bundle copies from its private overlap rows into a plane that all bands share, so
// that no byte of the plane is written by two bands.
typedef struct band_publish {
    const uint8_t* from;
    uint8_t* to;
    size_t bytes;
} band_publish;

typedef struct band_bundle {
    band_task reduce;   // the level into the next one; its rows and overlap, private to the band
    band_task expand;   // those rows, or in a collapse the coarse result, to the level's size
    band_task laplace;  // the level minus its expansion
    band_task widen;    // the coarsest level, in the last build step
    band_task mask_reduce;  // the mask into its next level (destination only)
    band_task collapse;     // expansion plus blended level (collapse only)
    thread_pool* pool;      // null when the bundle runs in the caller
    int32_t levels;
    int32_t level;
    int32_t band;
    band_publish publish;       // reduced colour rows
    band_publish publish_mask;  // reduced mask rows
} band_bundle;

// Pool tasks; `bundle` is a band_bundle. Each ends with pool_signal_done and returns null. They
// copy the records they run, so the driver may refill the bundle once its wait has returned.
void* band_bundle_src(void* bundle);
void* band_bundle_dst(void* bundle);
void* band_bundle_collapse(void* bundle);

#endif
