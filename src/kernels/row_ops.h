// The arithmetic of the pyramids, one row at a time.
//
// Every kernel, whole-plane or band, is a walk over rows that calls these operations, so each
// formula exists once for a plain path (row_math.h) and once for each kind of vectors.
// `active_row_ops` chooses between them.
//
// Rows are packed. Unless said otherwise, the operands of one call have equal lengths, outputs do
// not overlap inputs, and nothing outside the given lengths is read or written.
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

typedef struct row_ops {
    const char* name;

    // About as many pixels of a blend as one thread gets through in a millisecond.
    int64_t pixels_a_ms;

    // 2:1 reduction of a row of `src_width` pixels to `dst_width`, 2 <= dst_width <= src_width / 2:
    //   dst[i] = (s[2i-2] + 4 s[2i-1] + 6 s[2i] + 4 s[2i+1] + s[2i+2] + 8) >> 4
    // with positions clamped to the row. c3: three interleaved channels, c1: one.
    void (*reduce_row_c3)(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                          int32_t dst_width);
    void (*reduce_row_c1)(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                          int32_t dst_width);

    // 1:2 expansion of a row of `src_width` >= 2 pixels of three channels, dst_width >= 2
    // src_width:
    //   dst[2i]   = (s[i-1] + 6 s[i] + s[i+1] + 4) >> 3
    //   dst[2i+1] = (4 s[i] + 4 s[i+1] + 4) >> 3
    // with positions clamped to the row. When dst_width > 2 src_width one more pixel is written, a
    // copy of the last; pixels after that are left alone.
    void (*expand_row_c3)(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                          int32_t dst_width);

    // The same filter down the columns; `taps` are the source rows in order, rows may repeat.
    //   dst = (t0 + 4 t1 + 6 t2 + 4 t3 + t4 + 8) >> 4
    void (*reduce_column)(const uint8_t* const taps[5], uint8_t* __restrict dst, size_t bytes);

    // One row of one level of the blended pyramid, made from the level's pictures and from the
    // coarser levels of both and of the result: three expansions down the columns, two differences,
    // their blend under the mask and its sum with the result.
    //   e_x = (x.above + 6 x.centre + x.below + 4) >> 3         for an even row
    //   e_x = (4 x.centre + 4 x.below + 4) >> 3                 for an odd row
    //   dst = min(max(e_result + ((m (src - e_src) + (255 - m) (under - e_under) + 128) >> 8), 0),
    //             255), the shift rounding down
    // Weights sum to 255, not 256: a full mask shrinks a difference of 255 to 254.
    void (*merge_even)(const merge_rows* rows, uint8_t* __restrict dst, size_t pixels);
    void (*merge_odd)(const merge_rows* rows, uint8_t* __restrict dst, size_t pixels);

    // Linear interpolation, dst = ((128 - weight) s0 + weight s1 + 64) >> 7.
    //   mix_rows: between two rows
    //   resample_row_c3: between neighbouring pixels of a row of three channels; up to two bytes
    //   behind the last pixel that the taps name are read
    void (*mix_rows)(const uint8_t* s0, const uint8_t* s1, int32_t weight, uint8_t* __restrict dst,
                     size_t bytes);
    void (*resample_row_c3)(const uint8_t* __restrict src, const row_tap* taps,
                            uint8_t* __restrict dst, size_t pixels);

    // Colours of 4-byte pixels, bytes 1 to 3, to packed ones, and back with byte 0 set to 255.
    void (*pack_rgb)(const uint8_t* __restrict argb, uint8_t* __restrict rgb, size_t pixels);
    void (*unpack_rgb)(const uint8_t* __restrict rgb, uint8_t* __restrict argb, size_t pixels);
} row_ops;

// Plain C++, the definition of every result.
extern const row_ops plain_rows;

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
