// The vertical passes of the pyramid filters over scratch rows that the horizontal pass has filled.
#ifndef IMAGEBLEND_KERNELS_COLUMNS_H
#define IMAGEBLEND_KERNELS_COLUMNS_H

#include <stddef.h>
#include <stdint.h>

// Which ends of the picture a run of rows closes. Inside the picture the rows beyond an end are
// context that the caller provides.
enum { ENDS_NONE = 0, ENDS_TOP = 1, ENDS_BOTTOM = 2 };

// Writes `dst_rows` rows of `row_bytes` bytes; row r is the 1 4 6 4 1 filter around scratch row
// 2r (with ENDS_TOP) or 2r + 2 (without: the scratch then starts two rows above the first centre).
// ENDS_TOP repeats scratch row 0 upwards. ENDS_BOTTOM repeats the last centre's lower neighbour,
// for a picture of exactly twice the height; a taller one has a row to give and must not pass the
// flag.
void reduce_columns(const uint8_t* scratch, size_t row_bytes, uint8_t* dst, int32_t dst_rows,
                    int32_t ends);

// Expands scratch rows 0 .. scratch_rows - 1 into two output rows a scratch row, from the first one
// that has its upper neighbour (scratch row 0 with ENDS_TOP, else 1) to the last one that has its
// lower neighbour (the last row with ENDS_BOTTOM, else the one before it). With ENDS_BOTTOM and
// `extra_row` one more row is written, a copy of the last scratch row.
void expand_columns(const uint8_t* scratch, size_t row_bytes, int32_t scratch_rows, uint8_t* dst,
                    int32_t ends, bool extra_row);

#endif
