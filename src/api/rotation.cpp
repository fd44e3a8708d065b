// SPDX-License-Identifier: Apache-2.0
#include "api/rotation.h"

#include <math.h>
#include <string.h>

#include "memory.h"

rotation make_rotation(float angle, int32_t center_x, int32_t center_y, int32_t width,
                       int32_t height) {
    const float radians = (float)((double)angle * -3.1415926 / 180.0);
    rotation turn;
    turn.cosine = (float)cos((double)radians);
    turn.sine = (float)sin((double)radians);
    turn.center_x = center_x;
    turn.center_y = center_y;
    turn.width = width;
    turn.height = height;
    return turn;
}

static void grow(double value, double* low, double* high) {
    if (value < *low) *low = value;
    if (value > *high) *high = value;
}

static int32_t clamp_floor(double value, int32_t limit) {
    if (!(value > 0)) return 0;
    return value < limit ? (int32_t)value : limit;
}

// The output pixels that an object within `extent` can reach, with a few to spare.
static pixel_window rotated_reach(const rotation* turn, const mask_extent* extent) {
    pixel_window reach = {0, 0, turn->width, turn->height};
    const double c = (double)turn->cosine, s = (double)turn->sine;
    if (!(fabs(c) <= 1 && fabs(s) <= 1)) return reach;  // no angle at all: every pixel may be hit
    const int64_t longer = turn->width > turn->height ? turn->width : turn->height;
    // The mapping's single precision errs by a few units in the last place of a coordinate.
    const double slack = 4 + (double)longer / (1 << 18);
    double low_x = (double)INFINITY, low_y = low_x, high_x = -low_x, high_y = -low_x;
    for (int corner = 0; corner < 4; corner++) {
        const double u =
            (double)(corner % 2 != 0 ? extent->xmax + 1 : extent->xmin - 1) - turn->center_x;
        const double v =
            (double)(corner / 2 != 0 ? extent->ymax + 1 : extent->ymin - 1) - turn->center_y;
        grow(turn->center_x + c * u - s * v, &low_x, &high_x);
        grow(turn->center_y + s * u + c * v, &low_y, &high_y);
    }
    reach.x_begin = clamp_floor(low_x - slack, turn->width);
    reach.y_begin = clamp_floor(low_y - slack, turn->height);
    reach.x_end = clamp_floor(high_x + slack + 1, turn->width);
    reach.y_end = clamp_floor(high_y + slack + 1, turn->height);
    return reach;
}

// One output row: where the mapping starts. Along it both source coordinates only rise or only
// fall, since every step of the mapping, rounding included, keeps the order.
typedef struct source_row {
    float base, slope;  // coordinate = trunc(base + slope * (x - center))
    float center;
} source_row;

static int32_t source_at(const source_row* row, int32_t x) {
    return float_to_i32(row->base + row->slope * ((float)x - row->center));
}

static source_row source_columns(const rotation* turn, int32_t y) {
    const float fx = (float)turn->center_x, dy = (float)y - (float)turn->center_y;
    const source_row row = {fx + turn->sine * dy, turn->cosine, fx};
    return row;
}

static source_row source_rows(const rotation* turn, int32_t y) {
    const float fy = (float)turn->center_y, dy = (float)y - fy;
    const source_row row = {fy + turn->cosine * dy, -turn->sine, (float)turn->center_x};
    return row;
}

// The first x of [begin, end) whose coordinate has passed `limit`: is at least it where coordinates
// rise, below it where they fall; `end` when there is none.
static int32_t first_past(const source_row* row, int32_t begin, int32_t end, int32_t limit) {
    const bool falls = row->slope < 0;
    while (begin < end) {
        const int32_t middle = begin + (end - begin) / 2;
        if ((source_at(row, middle) >= limit) != falls) {
            end = middle;
        } else {
            begin = middle + 1;
        }
    }
    return begin;
}

typedef struct column_span {
    int32_t begin, end;
} column_span;

// The part of a span whose coordinates lie in [low, high).
static column_span within(const source_row* row, column_span span, int32_t low, int32_t high) {
    const bool falls = row->slope < 0;
    column_span part;
    part.begin = first_past(row, span.begin, span.end, falls ? high : low);
    part.end = first_past(row, part.begin, span.end, falls ? low : high);
    return part;
}

enum { CHUNK = 256, BLOCK = 8 };

// The sources along one axis of `count` pixels of a row. What is not a number reads as 0, and
// nothing inside the frame is out of the type's range.
static void find_sources(const source_row* row, int32_t x, int32_t count, int32_t* sources) {
    const float base = row->base, slope = row->slope, center = row->center;
    if (base != base) {
        memset(sources, 0, sizeof(int32_t) * (size_t)count);
        return;
    }
    int32_t i = 0;
    for (; i + BLOCK <= count; i += BLOCK) {
        int32_t block[BLOCK];  // vectors take loops of a fixed length
        for (int32_t k = 0; k < BLOCK; k++)
            block[k] = (int32_t)(base + slope * ((float)(x + i + k) - center));
        memcpy(sources + i, block, sizeof block);
    }
    for (; i < count; i++)
        sources[i] = (int32_t)(base + slope * ((float)(x + i) - center));
}

// Calls pixel(x, source x, source y) for a span of a row, all of whose sources lie inside the
// frame.
template <class Pixel>
static inline void map_span(const source_row* columns, const source_row* rows, column_span span,
                            Pixel pixel) {
    int32_t sx[CHUNK], sy[CHUNK];
    for (int32_t x = span.begin; x < span.end; x += CHUNK) {
        const int32_t count = (int32_t)min_i64(CHUNK, span.end - x);
        find_sources(columns, x, count, sx);
        find_sources(rows, x, count, sy);
        for (int32_t i = 0; i < count; i++)
            pixel(x + i, sx[i], sy[i]);
    }
}

// A row of the rotated mask; only sources within the object's extent can be set.
static void rotate_mask_row(const rotation* turn, const uint8_t* mask, const mask_extent* extent,
                            column_span reach, int32_t y, uint8_t* out) {
    const source_row columns = source_columns(turn, y), rows = source_rows(turn, y);
    column_span span = within(&columns, reach, (int32_t)extent->xmin, (int32_t)extent->xmax + 1);
    span = within(&rows, span, (int32_t)extent->ymin, (int32_t)extent->ymax + 1);
    const size_t width = (size_t)turn->width;
    memset(out, 0, (size_t)(reach.end - reach.begin));
    map_span(&columns, &rows, span, [=](int32_t x, int32_t sx, int32_t sy) {
        out[x - reach.begin] = mask[(size_t)sy * width + (size_t)sx];
    });
}

uint8_t* make_rotated_mask(const rotation* turn, const uint8_t* mask, const mask_extent* extent,
                           mask_view* rotated) {
    const pixel_window reach = rotated_reach(turn, extent);
    const int64_t columns = max_i64((int64_t)reach.x_end - reach.x_begin, 0);
    const int64_t rows = max_i64((int64_t)reach.y_end - reach.y_begin, 0);
    uint8_t* samples = (uint8_t*)alloc_plane(columns, rows, 1);
    if (samples == NULL) return NULL;
    *rotated = {samples, reach, columns, 1, turn->width, turn->height};
    const column_span span = {reach.x_begin, reach.x_end};
    for (int64_t r = 0; r < rows && columns > 0; r++) {
        rotate_mask_row(turn, mask, extent, span, reach.y_begin + (int32_t)r,
                        samples + r * columns);
    }
    return samples;
}

void rotate_colours(void* arg, int32_t, int32_t begin, int32_t end) {
    const colour_rotation* work = (const colour_rotation*)arg;
    const rotation* turn = &work->turn;
    const column_span window = {work->window.x_begin, work->window.x_end};
    const size_t row_bytes = 4 * (size_t)(window.end - window.begin);
    const size_t width = (size_t)turn->width;
    const uint8_t* frame = work->frame;
    for (int32_t r = begin; r < end; r++) {
        uint8_t* out = work->rotated + (size_t)r * row_bytes;
        const source_row columns = source_columns(turn, work->window.y_begin + r);
        const source_row rows = source_rows(turn, work->window.y_begin + r);
        column_span span = within(&columns, window, 0, turn->width);
        span = within(&rows, span, 0, turn->height);
        memset(out, 0, 4 * (size_t)(span.begin - window.begin));
        map_span(&columns, &rows, span, [=](int32_t x, int32_t sx, int32_t sy) {
            memcpy(out + 4 * (ptrdiff_t)(x - window.begin),
                   frame + 4 * ((size_t)sy * width + (size_t)sx), 4);
        });
        memset(out + 4 * (size_t)(span.end - window.begin), 0, 4 * (size_t)(window.end - span.end));
    }
}
