// SPDX-License-Identifier: Apache-2.0
#include "blend/depth.h"

int32_t depth_of_side(int32_t side, int32_t base, bool cap) {
    const int32_t log2_side = side < 1 ? 0 : 31 - __builtin_clz((unsigned)side);
    const int64_t depth = (int64_t)log2_side - base;
    if (depth == 0) return 1;
    if (cap && depth >= 5) return 4;
    return saturate_i32(depth);
}

uint32_t margin_level(int32_t width, int32_t height, uint32_t subtract, bool cap, float zoom) {
    const int32_t shorter = width < height ? width : height;
    return (uint32_t)depth_of_side(float_to_i32((float)shorter * zoom), (int32_t)subtract, cap);
}

int32_t margin_of_level(int32_t level) {
    if (level < 0) return 0;
    return level < 29 ? 4 << level : INT32_MAX;
}
