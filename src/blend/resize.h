// SPDX-License-Identifier: Apache-2.0
// Bilinear resize of 8-bit planes in 7-bit fixed point, in two separable passes.
//
// Output sample i of n_out sits on the source position i * step in 1/128 pixel,
//   step = (n_in * 128 + (n_out >> 1) - 128) / (n_out - 1), truncating; 0 when n_out is 1,
// so the corners of both pictures coincide. It is
//   (in[a] * w_a + in[b] * w_b + 64) >> 7
// for the neighbours a and b = a + 1 around the position, clamped to the source, with weights that
// sum to 128. Shrinking keeps two taps; there is no averaging over areas.
//
// Planes are packed rows of `channels` interleaved bytes a pixel; source and target do not overlap.
// Sides below 1 leave the target untouched. Nothing beyond the planes is read or written.
#ifndef IMAGEBLEND_BLEND_RESIZE_H
#define IMAGEBLEND_BLEND_RESIZE_H

#include "blend/patch.h"
#include "kernels/row_ops.h"

// The resize of a rectangle of `src_width` x `src_height` pixels of a 4-byte frame, which is cut
// row by row as the output needs it, into a packed patch of three channels; a channel is a plane of
// its own in all but its place in memory. Four workers may make output rows at the same time.
typedef struct rectangle_resize {
    patch from;
    int32_t src_width, src_height;
    uint8_t* dst;
    int32_t dst_width, dst_height;
    row_tap* taps;  // of each output column
    uint8_t* rows;  // working rows of the four workers
} rectangle_resize;

// Allocates the taps and the working rows for a record whose other fields are set; false without
// memory. close_resize frees them in either case.
bool open_resize(rectangle_resize* resize);
void close_resize(rectangle_resize* resize);

// Makes output rows [begin, end) with the working rows of worker 0 .. 3. `resize` is a
// rectangle_resize.
void resize_part(void* resize, int32_t worker, int32_t begin, int32_t end);

// Both passes, rows first. Returns 0, or -1 with the target untouched when the intermediate plane
// of dst_width x src_height pixels cannot be had.
int32_t resize_plane(const uint8_t* src, uint8_t* dst, int32_t src_width, int32_t src_height,
                     int32_t dst_width, int32_t dst_height, int32_t channels);

// From src_width x rows to dst_width x rows pixels.
void resize_rows(const uint8_t* src, int32_t src_width, uint8_t* dst, int32_t dst_width,
                 int32_t rows, int32_t channels);

// From width x src_height to width x dst_height pixels.
void resize_cols(const uint8_t* src, int32_t src_height, uint8_t* dst, int32_t width,
                 int32_t dst_height, int32_t channels);

#endif
