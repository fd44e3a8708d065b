#include "blend/rectangle.h"

#include <string.h>

#include "kernels/row_ops.h"
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

// Pixels outside the linear range, one by one, from the nearest pixel of the frame.
static void copy_clamped(const uint8_t* frame, int64_t frame_width, int64_t frame_height,
                         int64_t step, int64_t x, int64_t y, int64_t count, uint8_t* dst,
                         int64_t dst_step) {
    const int64_t row = clamp_i64(y, 0, frame_height - 1) * frame_width;
    for (int64_t c = 0; c < count; c++) {
        const int64_t index = row + clamp_i64(x + c, 0, frame_width - 1);
        memcpy(dst + c * dst_step, frame + index * step + 1, 3);
    }
}

// Rows of a rectangle lie a frame's row apart, too far for the processor to foresee. While one is
// packed or unpacked, the same pixels of the next are fetched, a run of this many at a time.
enum { RUN_PIXELS = 128, CACHE_LINE = 64 };

// `ahead` is the distance in bytes to the same pixel a row further; 0 in the frame's last row.
template <int for_writing>
static void fetch_ahead(const uint8_t* pixels, int64_t count, int64_t ahead) {
    if (ahead == 0) return;
    for (int64_t i = 0; i < 4 * count; i += CACHE_LINE) {
        __builtin_prefetch(pixels + ahead + i, for_writing);
    }
}

static void copy_inside(const uint8_t* src, int64_t src_step, uint8_t* dst, int64_t dst_step,
                        int64_t count, int64_t ahead) {
    if (src_step != 4 || dst_step != 3) {
        for (int64_t c = 0; c < count; c++)
            memcpy(dst + c * dst_step, src + c * src_step + 1, 3);
        return;
    }
    for (int64_t c = 0; c < count; c += RUN_PIXELS) {
        const int64_t run = min_i64(RUN_PIXELS, count - c);
        fetch_ahead<0>(src + 4 * c, run, ahead);
        active_rows()->pack_rgb(src + 4 * c, dst + 3 * c, (size_t)run);
    }
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
    for (int64_t r = 0; r < height; r++, dst += width * dst_step) {
        const int64_t y = (int64_t)y0 + r;
        const int64_t first = y * src_width + x0;
        const inside_span span = span_inside(first, width, frame_pixels);
        copy_clamped(src, src_width, src_height, src_step, x0, y, span.begin, dst, dst_step);
        if (span.begin < span.end) {
            const int64_t ahead =
                first + span.end + src_width <= frame_pixels ? src_width * src_step : 0;
            copy_inside(src + (first + span.begin) * src_step, src_step,
                        dst + span.begin * dst_step, dst_step, span.end - span.begin, ahead);
        }
        copy_clamped(src, src_width, src_height, src_step, x0 + span.end, y, width - span.end,
                     dst + span.end * dst_step, dst_step);
    }
}

void write_region_argb(uint8_t* out_pixels, int32_t row_width, const uint8_t* patch, int32_t x,
                       int32_t y, int32_t width, int32_t height, int32_t frame_height) {
    if (width < 1 || height < 1 || row_width < 1 || frame_height < 1) return;
    const int64_t frame_pixels = (int64_t)row_width * frame_height;
    for (int64_t r = 0; r < height; r++) {
        const int64_t first = ((int64_t)y + r) * row_width + x;
        const inside_span span = span_inside(first, width, frame_pixels);
        if (span.begin == span.end) continue;
        const int64_t ahead =
            first + span.end + row_width <= frame_pixels ? 4 * (int64_t)row_width : 0;
        for (int64_t c = span.begin; c < span.end; c += RUN_PIXELS) {
            const int64_t run = min_i64(RUN_PIXELS, span.end - c);
            uint8_t* out = out_pixels + 4 * (first + c);
            fetch_ahead<1>(out, run, ahead);
            active_rows()->unpack_rgb(patch + 3 * (r * width + c), out, (size_t)run);
        }
    }
}
