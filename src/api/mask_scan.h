// SPDX-License-Identifier: Apache-2.0
// The walk that finds the extreme columns and rows of a mask, over whatever its rows are.
#ifndef IMAGEBLEND_API_MASK_SCAN_H
#define IMAGEBLEND_API_MASK_SCAN_H

#include "api/mask_view.h"

// For a mask that is zero outside of a window. first(y, begin, end) is the first non-zero column of
// [begin, end) in row y, or `end`; last(y, begin, end) is the last one, or begin - 1.
//
// Rows without a sample are passed over whole, from both ends; of the rows between, only what lies
// outside the columns found so far is looked at.
template <class First, class Last>
static inline mask_extent scan_window(int32_t frame_width, int32_t frame_height,
                                      const pixel_window& w, First first, Last last) {
    mask_extent extent = {(int64_t)frame_width - 1, (int64_t)frame_height - 1, 0, 0};
    if (w.x_begin >= w.x_end) return extent;
    int64_t top = w.y_begin, bottom = (int64_t)w.y_end - 1, left = w.x_end;
    for (; top < w.y_end; top++) {
        left = first(top, w.x_begin, w.x_end);
        if (left < w.x_end) break;
    }
    if (top >= w.y_end) return extent;
    int64_t right = last(top, left, w.x_end);
    while (bottom > top && last(bottom, w.x_begin, w.x_end) < w.x_begin)
        bottom--;
    for (int64_t y = top + 1; y <= bottom; y++) {
        left = first(y, w.x_begin, left);
        right = last(y, right + 1, w.x_end);
    }
    extent = {left, top, right, bottom};
    return extent;
}

#endif
