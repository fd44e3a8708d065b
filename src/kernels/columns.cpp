#include "kernels/columns.h"

#include <string.h>

#include "kernels/row_ops.h"

void reduce_columns(const uint8_t* scratch, size_t row_bytes, uint8_t* dst, int32_t dst_rows,
                    int32_t ends) {
    const row_ops* rows = active_rows();
    for (int32_t r = 0; r < dst_rows; r++) {
        const uint8_t* center = scratch + (2 * (size_t)r + ((ends & ENDS_TOP) ? 0 : 2)) * row_bytes;
        const bool top = (ends & ENDS_TOP) && r == 0;
        const bool bottom = (ends & ENDS_BOTTOM) && r == dst_rows - 1;
        const uint8_t* const below = center + row_bytes;
        const uint8_t* const taps[5] = {
            top ? center : center - 2 * row_bytes, top ? center : center - row_bytes, center, below,
            bottom ? below : below + row_bytes,
        };
        rows->reduce_column(taps, dst + (size_t)r * row_bytes, row_bytes);
    }
}

void expand_columns(const uint8_t* scratch, size_t row_bytes, int32_t scratch_rows, uint8_t* dst,
                    int32_t ends, bool extra_row) {
    const row_ops* rows = active_rows();
    const int32_t last = scratch_rows - 1;
    const int32_t begin = (ends & ENDS_TOP) ? 0 : 1;
    const int32_t end = (ends & ENDS_BOTTOM) ? scratch_rows : last;
    for (int32_t k = begin; k < end; k++) {
        const uint8_t* center = scratch + (size_t)k * row_bytes;
        const uint8_t* above = k > 0 ? center - row_bytes : center;
        const uint8_t* below = k < last ? center + row_bytes : center;
        rows->expand_even(above, center, below, dst, row_bytes);
        rows->expand_odd(center, below, dst + row_bytes, row_bytes);
        dst += 2 * row_bytes;
    }
    if ((ends & ENDS_BOTTOM) && extra_row) {
        memcpy(dst, scratch + (size_t)last * row_bytes, row_bytes);
    }
}
