// SPDX-License-Identifier: Apache-2.0
#include "blend/patch.h"

#include <stddef.h>

#include "blend/rectangle.h"

patch packed_patch(const uint8_t* pixels, int32_t width, int32_t height) {
    const patch packed = {{width, height, (uint8_t*)(uintptr_t)pixels}, 0, 0, true, NULL};
    return packed;
}

patch frame_patch(const blend_image* frame, const rotation* turn, int32_t x, int32_t y) {
    const patch cut = {*frame, x, y, false, turn};
    return cut;
}

static uint8_t* packed_row(const patch* packed, int32_t row) {
    return packed->frame.data + 3 * (size_t)row * (size_t)packed->frame.width;
}

const uint8_t* read_rows(const patch* from, int32_t row, int32_t rows, int32_t width,
                         uint8_t* buffer) {
    if (from->packed) return packed_row(from, row);
    const pixel_box box = {from->x, from->y + row, width, rows};
    if (from->turn != NULL) {
        crop_turned_to_rgb(&from->frame, from->turn, &box, buffer);
    } else {
        crop_to_rgb(&from->frame, &box, buffer);
    }
    return buffer;
}

uint8_t* result_rows(const patch* to, int32_t row, uint8_t* buffer) {
    return to->packed ? packed_row(to, row) : buffer;
}

void store_rows(const patch* to, int32_t row, int32_t rows, int32_t width, const uint8_t* packed) {
    if (to->packed) return;
    const pixel_box box = {to->x, to->y + row, width, rows};
    write_region_argb(&to->frame, &box, packed);
}
