// SPDX-License-Identifier: Apache-2.0
// The arithmetic of the pyramids, one row at a time.
//
// Every kernel, whole-plane or band, is a walk over rows that calls these operations, so each
// formula exists once for a plain path (row_math.h) and once for each kind of vectors.
// `active_row_ops` chooses between them.
//
// Rows are packed. Unless said otherwise, the operands of one call have equal lengths, outputs do
// not overlap inputs, and nothing outside the given lengths is read or written.
// Vector paths ask the cache for what lies a row ahead, the next row where a level is packed.
#ifndef IMAGEBLEND_KERNELS_ROW_OPS_H
#define IMAGEBLEND_KERNELS_ROW_OPS_H

#include <stddef.h>
#include <stdint.h>

// Rows of a coarser level, already as wide as the finer one, that lie around a finer row.
typedef struct coarse_rows {
    const uint8_t* above;  // of an odd row not read
    const uint8_t* centre;
    const uint8_t* below;
} coarse_rows;

// Inputs of one merged row; three channels but for the mask.
typedef struct merge_rows {
    const uint8_t* mask;
    const uint8_t* src;    // where the mask is set
    const uint8_t* under;  // where it is not
    coarse_rows coarse_src;
    coarse_rows coarse_under;
    coarse_rows coarse_result;
} merge_rows;

// One output pixel between source pixels `sample` and sample + 1; `weight` of 128 parts is the
// second one's.
typedef struct row_tap {
    int32_t sample;
    int32_t weight;  // 0..128
} row_tap;

// 2:1 reduction of a row of `src_width` pixels to `dst_width`, 2 <= dst_width <= src_width / 2:
//   dst[i] = (s[2i-2] + 4 s[2i-1] + 6 s[2i] + 4 s[2i+1] + s[2i+2] + 8) >> 4
// 1:2 expansion of a row of `src_width` >= 2 pixels of three channels, dst_width >= 2 src_width:
//   dst[2i]   = (s[i-1] + 6 s[i] + s[i+1] + 4) >> 3
//   dst[2i+1] = (4 s[i] + 4 s[i+1] + 4) >> 3
// Positions are clamped to the row. When an expanded row has more than 2 src_width pixels one more
// is written, a copy of the last; pixels after that are left alone.
typedef void filter_row(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                        int32_t dst_width);

// The reduction down the columns; `taps` are the source rows in order, rows may repeat.
//   dst = (t0 + 4 t1 + 6 t2 + 4 t3 + t4 + 8) >> 4
typedef void filter_column(const uint8_t* const taps[5], uint8_t* __restrict dst, size_t bytes);

// Both reductions of two rows at a time, for a walk down a level: `sums` carries what the rows
// before have come to, reduce_two_bytes at a multiple of 64, in an order of its own. With e and o
// the rows as filter_row reduces them, and `last` and `before` those of the calls before this one:
//   dst = (before.e + 4 before.o + 6 last.e + 4 last.o + e + 8) >> 4
// dst_width >= LEAST_REDUCED_TWO. A null `dst` is not written.
enum { LEAST_REDUCED_TWO = 32 };
typedef void filter_two_rows(const uint8_t* even, const uint8_t* odd, int32_t src_width,
                             uint8_t* sums, uint8_t* dst, int32_t dst_width);

// Two vectors of words for each 30 or 31 values and for the last ones.
static inline size_t reduce_two_bytes(int32_t dst_width, int32_t channels) {
    return 128 * ((size_t)dst_width * (size_t)channels / 30 + 1);
}

// One row of one level of the blended pyramid, made from the level's pictures and from the coarser
// levels of both and of the result: three expansions down the columns, two differences, their blend
// under the mask and its sum with the result.
//   e_x = (x.above + 6 x.centre + x.below + 4) >> 3         for an even row
//   e_x = (4 x.centre + 4 x.below + 4) >> 3                 for an odd row
//   dst = min(max(e_result + ((m (src - e_src) + (255 - m) (under - e_under) + 128) >> 8), 0), 255)
// The shift rounds down. Weights sum to 255, not 256: a full mask shrinks a difference of 255 to
// 254.
typedef void merge_row(const merge_rows* rows, uint8_t* __restrict dst, size_t pixels);

// A row of a turned picture: pixel x takes the pixel of `frame` in column
//   trunc(column + column_step * (x - centre))
// and in the row of the same formula, in single precision. All of them lie inside the frame, which
// has frame_width * frame_height pixels, as many as the row or more.
typedef struct turned_row {
    float column, row;  // where x is the centre
    float column_step, row_step;
    float centre;
    int32_t frame_width, frame_height;
    const uint8_t* frame;
    ptrdiff_t ahead;  // from a pixel to one that a row soon to come takes, in pixels
    int32_t phase;    // 0..3: which of four pixels is fetched ahead, where the path chooses
} turned_row;

// Linear interpolation between two rows, dst = ((128 - weight) s0 + weight s1 + 64) >> 7.
typedef void mix_two_rows(const uint8_t* s0, const uint8_t* s1, int32_t weight,
                          uint8_t* __restrict dst, size_t bytes);

// The same between neighbouring pixels of a row of three channels. Up to two bytes behind the last
// pixel that the taps name are read.
typedef void resample_row(const uint8_t* __restrict src, const row_tap* taps,
                          uint8_t* __restrict dst, size_t pixels);

// Colours of 4-byte pixels, bytes 1 to 3, to packed ones, or back with byte 0 set to 255.
typedef void convert_row(const uint8_t* __restrict src, uint8_t* __restrict dst, size_t pixels);

// Pixels x to x + pixels - 1 of a turned row: bytes 1 to 3 of 4-byte pixels, packed, or single
// bytes. The pixels of a row lie in many rows of the frame, too far apart for the processor to
// foresee; so every fourth pixel fetches the one `ahead` of it, from an address that may lie
// anywhere.
typedef void turn_row(const turned_row* row, int32_t x, uint8_t* __restrict dst, size_t pixels);

// c3: three interleaved channels, c1: one.
typedef struct row_ops {
    const char* name;
    int64_t pixels_a_ms;  // about as many pixels of a blend as one thread gets through
    filter_row *reduce_row_c3, *reduce_row_c1, *expand_row_c3;
    filter_column* reduce_column;
    filter_two_rows *reduce_two_c3, *reduce_two_c1;  // null where there is none
    merge_row *merge_even, *merge_odd;
    mix_two_rows* mix_rows;
    resample_row* resample_row_c3;
    convert_row *pack_rgb, *unpack_rgb;
    turn_row *turn_rgb, *turn_mask;
} row_ops;

// Plain C++, the definition of every result.
extern const row_ops plain_rows;

// What its table names; for others to fall back on.
turn_row plain_turn_rgb, plain_turn_mask;

// reduce_row_c3 and expand_row_c3 for rows whose pixels of three channels lie `step` bytes apart,
// in both rows. What is between them is left alone.
void reduce_row_apart(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                      int32_t dst_width, int32_t step);
void expand_row_apart(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                      int32_t dst_width, int32_t step);

// The vector operations that this machine can run, the fastest first: null behind the last. Each
// architecture's folder has its own.
const row_ops* machine_row_ops(int32_t rank);

// The fastest operations that this machine has, and which therefore run.
const row_ops* active_row_ops(void);

#endif
