// SPDX-License-Identifier: Apache-2.0
// One band's share of a step from one pyramid level to the next, as one piece of work.
//
// A bundle walks its band row by row of the coarser level and runs its kernels on each in turn, so
// that what one kernel leaves for the next stays in the cache: no expanded plane and no 16-bit
// plane is ever whole in memory. A band may be the first and the last of its level, and as short as
// one row; it filters up to four finer rows besides its own.
#ifndef IMAGEBLEND_BLEND_BAND_BUNDLE_H
#define IMAGEBLEND_BLEND_BAND_BUNDLE_H

#include <stddef.h>

#include "blend/patch.h"

// The three pictures of one level and their mask.
typedef struct pyramid_level {
    int32_t width, height;
    patch src, dst, result;
    uint8_t* mask;
} pyramid_level;

typedef struct band_bundle {
    const pyramid_level* fine;
    const pyramid_level* coarse;
    int32_t begin, end;  // the band's rows of the coarser level
    uint8_t* scratch;    // private to the band, as large as band_scratch_bytes says
} band_bundle;

// Bytes of scratch that a band needs for a level of `width` pixels and all coarser ones, a multiple
// of 64, at any address.
size_t band_scratch_bytes(int32_t width);

// The band's rows of the coarser level: of the source, and of the destination and the mask.
void band_bundle_src(const band_bundle* bundle);
void band_bundle_dst(const band_bundle* bundle);

// Both of the above.
void band_bundle_down(const band_bundle* bundle);

// The way up: both Laplacian levels, their blend and its sum with the coarser result, for all fine
// rows of the band's coarse rows.
void band_bundle_collapse(const band_bundle* bundle);

// The coarsest level of all has nothing to be expanded: rows [begin, end) of the pictures blended
// under their mask.
void merge_top_rows(const pyramid_level* top, int32_t begin, int32_t end, uint8_t* scratch);

#endif
