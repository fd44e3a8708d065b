// SPDX-License-Identifier: Apache-2.0
// The argument record of every kernel that works on one horizontal band of one pyramid level.
#ifndef IMAGEBLEND_KERNELS_BAND_TASK_H
#define IMAGEBLEND_KERNELS_BAND_TASK_H

#include "pixel_layout.h"
#include "pool/thread_pool.h"

enum { BAND_FIRST = 1, BAND_MIDDLE = 2, BAND_LAST = 3 };

// One type serves all kernels; each reads the fields it needs and none writes into the record.
// Every plane pointer addresses the first element of the band's first row unless a kernel says
// otherwise.
typedef struct band_task {
    const uint8_t* src;   // first 8-bit input; the mask of the blend
    const uint8_t* src2;  // second 8-bit input
    const int16_t* lap;   // first 16-bit input
    const int16_t* lap2;  // second 16-bit input
    int32_t src_width;    // of the whole input level
    int32_t src_height;   // of the whole input level
    int32_t src_rows;     // rows of the band, context rows included; below 1 there is nothing to do
    uint8_t* dst;         // 8-bit output
    int16_t* dst_lap;     // 16-bit output; for the blend the same plane as lap2
    int32_t dst_width;    // of the whole output level
    int32_t dst_height;   // of the whole output level
    int32_t dst_rows;     // output rows of a reduction
    int32_t band_pos;     // BAND_FIRST, BAND_MIDDLE or BAND_LAST
    thread_pool* pool;    // where a kernel that is a pool task itself reports; may be null
    const pixel_layout* src_geom;   // of src, or of lap in the blend
    const pixel_layout* src2_geom;  // of lap2 in the blend
    const pixel_layout* mask_geom;  // of the mask in the blend
    const pixel_layout* dst_geom;   // of the output
    uint8_t* scratch;               // private to the band: src_rows x dst_width pixels
} band_task;

#endif
