// SPDX-License-Identifier: Apache-2.0
#include "api/rotation.h"

#include <math.h>
#include <string.h>

#include "api/mask_scan.h"
#include "kernels/set_bytes.h"
#include "numeric.h"

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

static source_area object_area(const turned_mask* mask) {
    const mask_extent* object = &mask->object;
    return {saturate_i32(object->xmin), saturate_i32(object->ymin), saturate_i32(object->xmax + 1),
            saturate_i32(object->ymax + 1)};
}

// The columns of [begin, end) in row y that show a part of the object.
static column_span object_span(const turned_mask* mask, int64_t y, int64_t begin, int64_t end) {
    const source_area area = object_area(mask);
    return span_within(&mask->turn, (int32_t)y, {(int32_t)begin, (int32_t)end}, &area);
}

// Pixels of a row that are turned and looked at together.
enum { CHUNK = 128 };

static int64_t first_set_turned(const turned_mask* mask, int64_t y, int64_t begin, int64_t end) {
    const column_span span = object_span(mask, y, begin, end);
    uint8_t samples[CHUNK];
    for (int32_t x = span.begin, count; x < span.end; x += count) {
        count = (int32_t)min_i64(CHUNK, span.end - x);
        turn_mask_span(&mask->turn, mask->samples, (int32_t)y, {x, x + count}, samples);
        const int64_t first = first_set(samples, count, 1);
        if (first < count) return x + first;
    }
    return end;
}

static int64_t last_set_turned(const turned_mask* mask, int64_t y, int64_t begin, int64_t end) {
    const column_span span = object_span(mask, y, begin, end);
    uint8_t samples[CHUNK];
    for (int32_t x = span.end, count; x > span.begin; x -= count) {
        count = (int32_t)min_i64(CHUNK, x - span.begin);
        turn_mask_span(&mask->turn, mask->samples, (int32_t)y, {x - count, x}, samples);
        const int64_t last = last_set(samples, count, 1);
        if (last >= 0) return x - count + last;
    }
    return begin - 1;
}

mask_extent scan_turned_mask(const turned_mask* mask) {
    const auto first = [=](int64_t y, int64_t begin, int64_t end) {
        return first_set_turned(mask, y, begin, end);
    };
    const auto last = [=](int64_t y, int64_t begin, int64_t end) {
        return last_set_turned(mask, y, begin, end);
    };
    const pixel_window reach = rotated_reach(&mask->turn, &mask->object);
    return scan_window(mask->turn.width, mask->turn.height, reach, first, last);
}

void copy_turned_box(const turned_mask* mask, const pixel_box* box, uint8_t* crop,
                     size_t crop_bytes) {
    if (box->width < 1 || box->height < 1) return;
    const int64_t begin = clamp_i64(box->x, 0, max_i64(mask->turn.width, 0));
    const int64_t end =
        clamp_i64((int64_t)box->x + box->width, begin, max_i64(mask->turn.width, begin));
    const size_t row_bytes = (size_t)box->width;
    for (size_t r = 0; r < (size_t)box->height && (r + 1) * row_bytes <= crop_bytes; r++) {
        uint8_t* out = crop + r * row_bytes;
        const int64_t y = (int64_t)box->y + (int64_t)r;
        memset(out, 0, row_bytes);
        if (y < 0 || y >= mask->turn.height) continue;
        const column_span span = object_span(mask, y, begin, end);
        if (span.begin < span.end)
            turn_mask_span(&mask->turn, mask->samples, (int32_t)y, span,
                           out + (span.begin - box->x));
    }
}
