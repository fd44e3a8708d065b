// 2:1 reduction and 1:2 expansion of one band of a pyramid level.
//
// The arithmetic is that of whole_plane.h; what is added is the band contract. `src_width`,
// `src_height`, `dst_width` and `dst_height` are those of the whole levels and decide the edge
// rules; `src_rows` rows are filtered along the row into `scratch`, and `band_pos` says how the
// columns are closed. Nothing is read or written beyond the rows named here. The pixel step of
// every layout is the channel count. A coarser side below 2 is left alone.
//
// All return 0. A null plane or sizes that break the rule of whole_plane.h are logged and nothing
// is written then; any other band_pos writes the scratch only.
#ifndef IMAGEBLEND_KERNELS_BAND_FILTERS_H
#define IMAGEBLEND_KERNELS_BAND_FILTERS_H

#include "blend/band_task.h"

// src (+ src_geom->offset bytes): `src_rows` rows of the finer level, from its row 0 in a first
// band and from two rows above the first centre in the others, as far down as the last row's filter
// reaches. dst: `dst_rows` rows of the coarser level.
//   first band   row r is centred on scratch row 2r, row 0 repeating the top edge
//   other bands  row r is centred on scratch row 2r + 2; the last row of a last band repeats the
//                bottom edge when the finer height is exactly twice the coarser one
int32_t ImageReduce_BandC3(const band_task* task);
int32_t ImageReduce_BandC1(const band_task* task);

// src: `src_rows` rows of the coarser level, one context row above in all but the first band and
// one below in all but the last. dst: two rows for each row that is not context, and in a last band
// one more, a copy, when the finer height is not exactly twice the coarser one. `dst_rows` is not
// read. Columns beyond 2 src_width + 1 hold what the scratch held.
int32_t ImageExpand_BandC3(const band_task* task);

#endif
