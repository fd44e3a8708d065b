// SPDX-License-Identifier: Apache-2.0
#include "blend/row_conversion.h"

#include <stddef.h>

void narrow_plane_c3(const int16_t* src, uint32_t width, int32_t height, uint8_t* dst) {
    if (height < 1) return;
    const size_t count = 3 * (size_t)width * (size_t)height;
    for (size_t i = 0; i < count; i++)
        dst[i] = (uint8_t)src[i];
}
