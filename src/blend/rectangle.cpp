// SPDX-License-Identifier: Apache-2.0
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

// `count` pixels outside the linear range, one by one, from the nearest pixel of the frame.
static void copy_clamped(const blend_image* frame, int64_t x, int64_t y, int64_t count,
                         uint8_t* dst) {
    const int64_t row = clamp_i64(y, 0, (int64_t)frame->height - 1) * frame->width;
    for (int64_t c = 0; c < count; c++) {
        const int64_t index = row + clamp_i64(x + c, 0, (int64_t)frame->width - 1);
        memcpy(dst + 3 * c, frame->data + 4 * index + 1, 3);
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

static void copy_inside(const uint8_t* src, uint8_t* dst, int64_t count, int64_t ahead) {
    for (int64_t c = 0; c < count; c += RUN_PIXELS) {
        const int64_t run = min_i64(RUN_PIXELS, count - c);
        fetch_ahead<0>(src + 4 * c, run, ahead);
        active_row_ops()->pack_rgb(src + 4 * c, dst + 3 * c, (size_t)run);
    }
}

// Where a row of a rectangle lies in a frame of `frame_pixels` pixels.
typedef struct row_place {
    int64_t first;     // index of its first pixel
    inside_span span;  // columns inside
    int64_t ahead;
} row_place;

static row_place place_row(const blend_image* frame, const pixel_box* box, int64_t row) {
    const int64_t frame_pixels = (int64_t)frame->width * frame->height;
    row_place place;
    place.first = (box->y + row) * frame->width + box->x;
    place.span = span_inside(place.first, box->width, frame_pixels);
    const bool has_next = place.first + place.span.end + frame->width <= frame_pixels;
    place.ahead = has_next ? 4 * (int64_t)frame->width : 0;
    return place;
}

void crop_to_rgb(const blend_image* src, const pixel_box* box, uint8_t* dst) {
    if (box->width < 1 || box->height < 1) return;
    if (src->width < 1 || src->height < 1) {
        memset(dst, 0, 3 * (size_t)box->width * (size_t)box->height);
        return;
    }
    for (int64_t r = 0; r < box->height; r++, dst += 3 * (ptrdiff_t)box->width) {
        const row_place place = place_row(src, box, r);
        const inside_span span = place.span;
        copy_clamped(src, box->x, box->y + r, span.begin, dst);
        if (span.begin < span.end) {
            copy_inside(src->data + 4 * (place.first + span.begin), dst + 3 * span.begin,
                        span.end - span.begin, place.ahead);
        }
        copy_clamped(src, box->x + span.end, box->y + r, box->width - span.end, dst + 3 * span.end);
    }
}

void write_region_argb(const blend_image* out, const pixel_box* box, const uint8_t* patch) {
    if (box->width < 1 || box->height < 1 || out->width < 1 || out->height < 1) return;
    for (int64_t r = 0; r < box->height; r++, patch += 3 * (ptrdiff_t)box->width) {
        const row_place place = place_row(out, box, r);
        for (int64_t c = place.span.begin; c < place.span.end; c += RUN_PIXELS) {
            const int64_t run = min_i64(RUN_PIXELS, place.span.end - c);
            uint8_t* pixels = out->data + 4 * (place.first + c);
            fetch_ahead<1>(pixels, run, place.ahead);
            active_row_ops()->unpack_rgb(patch + 3 * c, pixels, (size_t)run);
        }
    }
}
