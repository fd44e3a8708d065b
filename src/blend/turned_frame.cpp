// SPDX-License-Identifier: Apache-2.0
#include "blend/turned_frame.h"

#include <string.h>

#include "costs.h"
#include "kernels/row_ops.h"
#include "numeric.h"

// Where a row lies in the upright frame. Along it both coordinates only rise or only fall, since
// every step of the mapping, rounding included, keeps the order.
static turned_row row_through(const rotation* turn, int32_t y) {
    const float fx = (float)turn->center_x, fy = (float)turn->center_y, dy = (float)y - fy;
    turned_row row = turned_row();
    row.column = fx + turn->sine * dy;
    row.row = fy + turn->cosine * dy;
    row.column_step = turn->cosine;
    row.row_step = -turn->sine;
    row.centre = fx;
    if (row.column != row.column) row.column = row.row = row.column_step = row.row_step = 0;
    row.frame_width = turn->width;
    row.frame_height = turn->height;
    const float below = (float)FETCHED_ROWS;
    row.ahead =
        (ptrdiff_t)(row.column_step * below) * turn->width - (ptrdiff_t)(row.row_step * below);
    row.phase = y & 3;
    return row;
}

// One coordinate along a row: trunc(start + step * (x - centre)).
typedef struct coordinate {
    float start, step, centre;
} coordinate;

static bool is_past(const coordinate* c, int32_t x, int32_t limit) {
    const int32_t value = float_to_i32(c->start + c->step * ((float)x - c->centre));
    return (value >= limit) != (c->step < 0);
}

// The first x of [begin, end) whose coordinate has passed `limit`: is at least it where coordinates
// rise, below it where they fall; `end` when there is none.
static int32_t first_past(const coordinate* c, int32_t begin, int32_t end, int32_t limit) {
    // Mostly it is where a division says, or beside that.
    const int32_t guess = float_to_i32(c->centre + ((float)limit - c->start) / c->step);
    const int32_t low = (int32_t)clamp_i64((int64_t)guess - 2, begin, end);
    const int32_t high = (int32_t)clamp_i64((int64_t)guess + 2, begin, end);
    if (low > begin && is_past(c, low - 1, limit)) {
        end = low - 1;
    } else if (high < end && !is_past(c, high, limit)) {
        begin = high + 1;
    } else {
        begin = low;
        end = high;
    }
    while (begin < end) {
        const int32_t middle = begin + (end - begin) / 2;
        if (is_past(c, middle, limit)) {
            end = middle;
        } else {
            begin = middle + 1;
        }
    }
    return begin;
}

// The part of a span whose coordinates lie in [low, high).
static column_span within(const coordinate* c, column_span span, int32_t low, int32_t high) {
    const bool falls = c->step < 0;
    column_span part;
    part.begin = first_past(c, span.begin, span.end, falls ? high : low);
    part.end = first_past(c, part.begin, span.end, falls ? low : high);
    return part;
}

static column_span part_within(const turned_row* row, column_span span, const source_area* area) {
    const coordinate column = {row->column, row->column_step, row->centre};
    const coordinate line = {row->row, row->row_step, row->centre};
    span = within(&column, span, area->x_begin, area->x_end);
    return within(&line, span, area->y_begin, area->y_end);
}

column_span span_within(const rotation* turn, int32_t y, column_span span,
                        const source_area* area) {
    const turned_row row = row_through(turn, y);
    return part_within(&row, span, area);
}

void turn_mask_span(const rotation* turn, const uint8_t* mask, int32_t y, column_span span,
                    uint8_t* dst) {
    turned_row row = row_through(turn, y);
    row.frame = mask;
    active_row_ops()->turn_mask(&row, span.begin, dst, (size_t)(span.end - span.begin));
}

// A span of row y of the turned frame.
static void turn_colours(const blend_image* src, const rotation* turn, int32_t y, column_span span,
                         uint8_t* dst) {
    const source_area frame = {0, 0, turn->width, turn->height};
    turned_row row = row_through(turn, y);
    row.frame = src->data;
    const column_span inside = part_within(&row, span, &frame);
    const size_t before = (size_t)(inside.begin - span.begin);
    const size_t pixels = (size_t)(inside.end - inside.begin);
    memset(dst, 0, 3 * before);
    active_row_ops()->turn_rgb(&row, inside.begin, dst + 3 * before, pixels);
    memset(dst + 3 * (before + pixels), 0, 3 * (size_t)(span.end - inside.end));
}

// The nearest pixel of the frame.
static void turn_clamped(const blend_image* src, const rotation* turn, int64_t x, int64_t y,
                         uint8_t* dst) {
    const int32_t column = (int32_t)clamp_i64(x, 0, (int64_t)src->width - 1);
    turn_colours(src, turn, (int32_t)clamp_i64(y, 0, (int64_t)src->height - 1),
                 {column, column + 1}, dst);
}

void crop_turned_to_rgb(const blend_image* src, const rotation* turn, const pixel_box* box,
                        uint8_t* dst) {
    if (box->width < 1 || box->height < 1) return;
    if (src->width < 1 || src->height < 1) {
        memset(dst, 0, 3 * (size_t)box->width * (size_t)box->height);
        return;
    }
    const int64_t width = src->width, frame_pixels = width * src->height;
    for (int64_t r = 0; r < box->height; r++) {
        const int64_t y = box->y + r, first = y * width + box->x;
        for (int64_t c = 0, run; c < box->width; c += run, dst += 3 * run) {
            const int64_t index = first + c, column = index % width;
            if (index < 0 || index >= frame_pixels) {
                run = 1;
                turn_clamped(src, turn, box->x + c, y, dst);
            } else {
                run = min_i64(width - column, box->width - c);
                turn_colours(src, turn, (int32_t)(index / width),
                             {(int32_t)column, (int32_t)(column + run)}, dst);
            }
        }
    }
}
