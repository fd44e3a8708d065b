// SPDX-License-Identifier: Apache-2.0
#include <string.h>

#include "kernels/turned_row.h"

static inline const uint8_t* source_of(const turned_row* row, int32_t x, size_t pixel_bytes) {
    const float distance = (float)x - row->centre;
    const size_t column = (size_t)(int32_t)(row->column + row->column_step * distance);
    const size_t line = (size_t)(int32_t)(row->row + row->row_step * distance);
    return row->frame + pixel_bytes * (line * (size_t)row->frame_width + column);
}

template <int pixel_bytes>
static inline void turn(const turned_row* row, int32_t x, uint8_t* __restrict dst, size_t pixels) {
    const ptrdiff_t ahead = pixel_bytes * row->ahead;
    for (size_t p = 0; p < pixels; p++) {
        const uint8_t* source = source_of(row, x + (int32_t)p, pixel_bytes);
        if (((int32_t)p & 3) == row->phase) fetch_from(source, ahead);
        if (pixel_bytes == 1) {
            dst[p] = *source;
        } else {
            memcpy(dst + 3 * p, source + 1, 3);
        }
    }
}

void plain_turn_rgb(const turned_row* row, int32_t x, uint8_t* __restrict dst, size_t pixels) {
    turn<4>(row, x, dst, pixels);
}

void plain_turn_mask(const turned_row* row, int32_t x, uint8_t* __restrict dst, size_t pixels) {
    turn<1>(row, x, dst, pixels);
}
