#include "blend/rectangle.h"

#include <string.h>

#include "numeric.h"

// Columns [begin, end) of one row of a rectangle whose linear index lies inside the frame.
typedef struct inside_span {
    int64_t begin, end;
} inside_span;

static inside_span span_inside(int64_t first_index, int64_t width, int64_t frame_pixels) {
    inside_span span;
    span.begin = clamp_i64(-first_index, 0, width);
    span.end = clamp_i64(frame_pixels - first_index, span.begin, width);
    return span;
}

static void copy_colour(uint8_t* dst, const uint8_t* src) {
    dst[0] = src[1];
    dst[1] = src[2];
    dst[2] = src[3];
}

void crop_to_rgb(const uint8_t* src, int32_t src_width, uint8_t* dst, int32_t x0, int32_t y0,
                 int32_t width, int32_t height, const pixel_layout* src_layout,
                 const pixel_layout* dst_layout, int32_t src_height) {
    if (width < 1 || height < 1) return;
    const int64_t src_step = src_layout->step, dst_step = dst_layout->step;
    if (src_width < 1 || src_height < 1) {
        memset(dst, 0, (size_t)width * (size_t)height * (size_t)dst_step);
        return;
    }
    const int64_t frame_pixels = (int64_t)src_width * src_height;
    for (int64_t r = 0; r < height; r++) {
        const int64_t y = (int64_t)y0 + r;
        const int64_t first = y * src_width + x0;
        const inside_span span = span_inside(first, width, frame_pixels);
        const int64_t clamped_row = clamp_i64(y, 0, src_height - 1) * src_width;
        uint8_t* out = dst + r * width * dst_step;
        for (int64_t c = 0; c < width; c++, out += dst_step) {
            const bool inside = c >= span.begin && c < span.end;
            const int64_t index =
                inside ? first + c : clamped_row + clamp_i64(x0 + c, 0, src_width - 1);
            copy_colour(out, src + index * src_step);
        }
    }
}

void write_region_argb(uint8_t* out_pixels, int32_t row_width, const uint8_t* patch, int32_t x,
                       int32_t y, int32_t width, int32_t height, int32_t frame_height) {
    if (width < 1 || height < 1 || row_width < 1 || frame_height < 1) return;
    const int64_t frame_pixels = (int64_t)row_width * frame_height;
    for (int64_t r = 0; r < height; r++) {
        const int64_t first = ((int64_t)y + r) * row_width + x;
        const inside_span span = span_inside(first, width, frame_pixels);
        const uint8_t* in = patch + (r * width + span.begin) * 3;
        for (int64_t c = span.begin; c < span.end; c++, in += 3) {
            uint8_t* out = out_pixels + (first + c) * 4;
            out[0] = 255;
            memcpy(out + 1, in, 3);
        }
    }
}
