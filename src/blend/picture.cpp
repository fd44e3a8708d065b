#include "blend/picture.h"

#include <stddef.h>

#include "blend/rectangle.h"

static const pixel_layout layout_frame = {0, 4};
static const pixel_layout layout_packed = {0, 3};

picture packed_picture(uint8_t* pixels, int32_t width, int32_t height) {
    const picture patch = {pixels, width, height, 0, 0, true};
    return patch;
}

picture frame_picture(uint8_t* pixels, int32_t frame_width, int32_t frame_height, int32_t x,
                      int32_t y) {
    const picture frame = {pixels, frame_width, frame_height, x, y, false};
    return frame;
}

static uint8_t* patch_row(const picture* patch, int32_t row, int32_t width) {
    return patch->pixels + 3 * (size_t)row * (size_t)width;
}

const uint8_t* read_rows(const picture* from, int32_t row, int32_t rows, int32_t width,
                         uint8_t* buffer) {
    if (from->packed) return patch_row(from, row, width);
    crop_to_rgb(from->pixels, from->frame_width, buffer, from->x, from->y + row, width, rows,
                &layout_frame, &layout_packed, from->frame_height);
    return buffer;
}

uint8_t* result_row(const picture* to, int32_t row, int32_t width, uint8_t* buffer) {
    return to->packed ? patch_row(to, row, width) : buffer;
}

void store_row(const picture* to, int32_t row, int32_t width, const uint8_t* packed) {
    if (to->packed) return;
    write_region_argb(to->pixels, to->frame_width, packed, to->x, to->y + row, width, 1,
                      to->frame_height);
}
