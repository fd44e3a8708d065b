// One band's share of one stage of the pyramid driver, as one pool task.
//
// On the way down a bundle walks its band in strips of a few rows, on the way up row by row, and
// runs its kernels on each in turn, so that what one kernel leaves for the next stays in the cache:
// no expanded plane and no 16-bit plane is ever whole in memory.
#ifndef IMAGEBLEND_BLEND_BAND_BUNDLE_H
#define IMAGEBLEND_BLEND_BAND_BUNDLE_H

#include <stddef.h>

#include "blend/band_task.h"
#include "blend/picture.h"
#include "blend/side_work.h"

enum { BAND_COUNT = 4 };

// Working rows private to a band, all for rows of one level's width w.
typedef struct band_rows {
    int16_t* lap_src;  // 3 w values
    int16_t* lap_dst;  // 3 w values
    uint8_t* filter;   // the horizontal pass of a reduction
    uint8_t* cut_src;  // rows cut from a frame
    uint8_t* cut_dst;
    uint8_t* ring[3];  // three coarse rows, widened, of source, destination and result
    uint8_t* out;
} band_rows;

// Bytes of scratch that a band needs for the level of `width` pixels and all coarser ones, a
// multiple of 64, and the parts of such a scratch.
size_t band_scratch_bytes(int32_t width);
band_rows split_band_scratch(uint8_t* scratch, int32_t width);

typedef struct band_bundle {
    band_task reduce;       // a strip of colours into the next level
    band_task expand;       // the sizes of the way back
    band_task widen;        // a row of the coarsest level
    band_task mask_reduce;  // a strip of the mask into its next level
    band_task blend;        // a row of the coarsest Laplacian levels under the mask
    thread_pool* pool;      // null when the bundle runs in the caller
    int32_t band;
    int32_t begin, end;  // the band's rows of the coarser level; of the level itself at the top
    picture src, dst, result;                       // the finer level
    picture coarse_src, coarse_dst, coarse_result;  // the coarser one
    side_work* beside;  // what a build task helps with when its own rows are done; may be null
    const row_work* prepare;  // of a preparing task; its rows are [begin, end)
    const uint8_t* mask;
    uint8_t* coarse_mask;
    uint8_t* scratch;
} band_bundle;

// Halves of the way down: the band's rows of the next level, of the source, and of the destination
// and the mask. Always null.
void* band_bundle_src(void* bundle);
void* band_bundle_dst(void* bundle);

// Pool tasks; each ends with pool_signal_done and returns null.
//   band_bundle_prepare   rows of the source, before anything reads them
//   band_bundle_build     both halves of the way down
//   band_bundle_collapse  the way up: both Laplacian levels, their blend and its sum with the
//                         coarser result, for all fine rows of the band's coarse rows
//   band_bundle_top       the coarsest level of all: blended and narrowed to bytes
void* band_bundle_prepare(void* bundle);
void* band_bundle_build(void* bundle);
void* band_bundle_collapse(void* bundle);
void* band_bundle_top(void* bundle);

#endif
