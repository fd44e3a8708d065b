// SPDX-License-Identifier: Apache-2.0
#include "blend/patch.h"

#include <string.h>

#include "blend/rectangle.h"
#include "kernels/set_bytes.h"

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

const uint8_t* read_masked_row(const patch* from, int32_t row, int32_t width, const uint8_t* mask,
                               uint8_t* buffer) {
    if (from->packed) return packed_row(from, row);
    const int64_t begin = first_set(mask, width, 1);
    const int64_t end = begin + last_set(mask + begin, width - begin, 1) + 1;
    memset(buffer, 0, 3 * (size_t)begin);
    if (begin < end) {
        patch part = *from;
        part.x += (int32_t)begin;
        read_rows(&part, row, 1, (int32_t)(end - begin), buffer + 3 * begin);
    }
    memset(buffer + 3 * end, 0, 3 * (size_t)(width - end));
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
