// SPDX-License-Identifier: Apache-2.0
// 2:1 reduction and 1:2 expansion of one band of a pyramid level.
//
// Rows are filtered along the row into the scratch first, then down the columns, with rounding to 8
// bits between the two; row_ops.h has the formulas. `src_width`, `src_height`, `dst_width` and
// `dst_height` are those of the whole levels and decide the edge rules; `src_rows` rows are
// filtered into `scratch`, which has the layout of dst. Nothing is read or written beyond the rows
// named here. Pixels of three channels may lie apart, with equal steps in src_geom and dst_geom;
// what is between them is left alone. A coarser side below 2 is left alone.
#ifndef IMAGEBLEND_KERNELS_BAND_FILTERS_H
#define IMAGEBLEND_KERNELS_BAND_FILTERS_H

#include "kernels/band_task.h"

// Which ends of the level a band closes. Inside the level the rows beyond an end are context that
// the caller provides.
enum { ENDS_NONE = 0, ENDS_TOP = 1, ENDS_BOTTOM = 2 };

// src (+ src_geom->offset bytes): `src_rows` rows of the finer level, from its row 0 with ENDS_TOP
// and from two rows above the first centre without, as far down as the last row's filter reaches.
// dst: `dst_rows` rows of the coarser level; row r is centred on scratch row 2r with ENDS_TOP,
// whose row 0 repeats the top edge, and on 2r + 2 without. With ENDS_BOTTOM the last row repeats
// the bottom edge when the finer height is exactly twice the coarser one.
void reduce_band(const band_task* task, int32_t channels, int32_t ends);

// src: `src_rows` rows of the coarser level, at least two, one context row above without ENDS_TOP
// and one below without ENDS_BOTTOM. dst: two rows for each row that is not context, and with
// ENDS_BOTTOM one more, a copy, when the finer height is not exactly twice the coarser one.
// `dst_rows` is not read. Columns beyond 2 src_width + 1 hold what the scratch held.
void expand_band(const band_task* task, int32_t ends);

// The same for a first, middle or last band as `band_pos` says. A first band always has its row 0.
// All return 0. A null plane or sizes that break the rule (2 coarse <= fine) are logged. Nothing is
// written then, nor for any other band_pos.
int32_t ImageReduce_BandC3(const band_task* task);
int32_t ImageReduce_BandC1(const band_task* task);
int32_t ImageExpand_BandC3(const band_task* task);

#endif
