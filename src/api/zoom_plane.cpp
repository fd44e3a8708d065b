#include "api/zoom_plane.h"

#include <string.h>

#include "fixed_step.h"
#include "numeric.h"

void zoom_plane_nearest(const uint8_t* source, int32_t source_width, int32_t source_height,
                        uint8_t* target, int32_t target_width, int32_t target_height,
                        int32_t channels) {
    if (target_height < 1 || target_width < 1 || source_width < 1 || source_height < 1) return;
    const size_t pixel_bytes = (size_t)channels;
    const int64_t step_x = fixed_step(source_width, target_width);
    const int64_t step_y = fixed_step(source_height, target_height);
    for (int64_t y = 0; y < target_height; y++) {
        const int64_t sy = clamp_i64(fixed_nearest(y * step_y), 0, source_height - 1);
        const uint8_t* row = source + (size_t)sy * (size_t)source_width * pixel_bytes;
        for (int64_t x = 0; x < target_width; x++, target += pixel_bytes) {
            const int64_t sx = clamp_i64(fixed_nearest(x * step_x), 0, source_width - 1);
            memcpy(target, row + (size_t)sx * pixel_bytes, pixel_bytes);
        }
    }
}
