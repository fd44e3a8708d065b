// SPDX-License-Identifier: Apache-2.0
// A frame turned about a point, never whole in memory: its rows are taken from the upright frame
// where they are read.
#ifndef IMAGEBLEND_BLEND_TURNED_FRAME_H
#define IMAGEBLEND_BLEND_TURNED_FRAME_H

#include "imageblend.h"
#include "pixel_layout.h"

// Inverse mapping without interpolation: the turned pixel (x, y), with dx and dy its distance from
// the centre, is the upright frame's pixel
//   (trunc((center_x + sine dy) + cosine dx), trunc((center_y + cosine dy) - sine dx))
// in single precision, or 0 where that lies outside the frame of width x height pixels. Since
// truncation is toward zero, positions between -1 and 0 read row or column 0. What is not a number
// reads as 0.
typedef struct rotation {
    float cosine, sine;
    int32_t center_x, center_y;
    int32_t width, height;
} rotation;

// Some columns of a row.
typedef struct column_span {
    int32_t begin, end;
} column_span;

// The part of a span of turned row y whose pixels come from columns x_begin to x_end and rows
// y_begin to y_end, half open, of the upright frame.
typedef struct source_area {
    int32_t x_begin, y_begin, x_end, y_end;
} source_area;
column_span span_within(const rotation* turn, int32_t y, column_span span, const source_area* area);

// A span of row y, all of whose pixels come from within the frame: of single bytes.
void turn_mask_span(const rotation* turn, const uint8_t* mask, int32_t y, column_span span,
                    uint8_t* dst);

// What crop_to_rgb of rectangle.h makes of the turned frame.
void crop_turned_to_rgb(const blend_image* src, const rotation* turn, const pixel_box* box,
                        uint8_t* dst);

#endif
