// SPDX-License-Identifier: Apache-2.0
#include "api/zoom_plane.h"

#include <string.h>

#include "fixed_step.h"
#include "numeric.h"

// One row of single bytes. Positions never decrease and start at 0; from `inside` on they are
// behind the last sample.
static void zoom_row(const uint8_t* row, int32_t source_width, uint8_t* target,
                     int32_t target_width, int64_t step) {
    const int64_t last = (int64_t)source_width - 1;
    const int64_t inside = step > 0 ? min_i64(last * 128 / step + 1, target_width) : target_width;
    int64_t position = 64;
    int64_t x = 0;
    for (; x < inside; x++, position += step)
        target[x] = row[position >> 7];
    for (; x < target_width; x++)
        target[x] = row[last];
}

void zoom_plane_nearest(const uint8_t* source, int32_t source_width, int32_t source_height,
                        uint8_t* target, int32_t target_width, int32_t target_height,
                        int32_t channels) {
    if (target_height < 1 || target_width < 1 || source_width < 1 || source_height < 1) return;
    const size_t pixel_bytes = (size_t)channels;
    const size_t target_bytes = (size_t)target_width * pixel_bytes;
    const int64_t step_x = fixed_step(source_width, target_width);
    const int64_t step_y = fixed_step(source_height, target_height);
    int64_t previous = -1;
    for (int64_t y = 0; y < target_height; y++, target += target_bytes) {
        const int64_t sy = min_i64(fixed_nearest(y * step_y), source_height - 1);
        if (sy == previous) {
            memcpy(target, target - target_bytes, target_bytes);
            continue;
        }
        previous = sy;
        const uint8_t* row = source + (size_t)sy * (size_t)source_width * pixel_bytes;
        if (channels == 1) {
            zoom_row(row, source_width, target, target_width, step_x);
            continue;
        }
        for (int64_t x = 0; x < target_width; x++) {
            const int64_t sx = min_i64(fixed_nearest(x * step_x), source_width - 1);
            memcpy(target + x * channels, row + (size_t)sx * pixel_bytes, pixel_bytes);
        }
    }
}
