// SPDX-License-Identifier: Apache-2.0
#include "prepare/distance.h"

#include <math.h>
#include <string.h>

#include "memory.h"
#include "numeric.h"
#include "prepare/alpha.h"

// The least distance along a column or row that is beyond the longest reach, pixels that are
// measured together, and the largest sum of squares.
enum { FAR = DISTANCE_LONGEST + 1, RUN = 32, LARGEST_SQUARE = 2 * FAR * FAR };

// From each pixel to the nearest one of a class, along its column.
typedef struct columns {
    uint8_t *to_inside, *to_outside;
} columns;

// Takes the nearer of a row's own distances and a step more than the next row's.
static void pass_on(const uint8_t* __restrict next, int64_t width, uint8_t* __restrict row) {
    for (int64_t x = 0; x < width; x++) {
        const uint8_t step = (uint8_t)(next[x] + 1);
        row[x] = row[x] < step ? row[x] : step;
    }
}

static void measure_columns(const uint8_t* alpha, int64_t width, int64_t height, columns* to) {
    for (int64_t i = 0; i < width * height; i++) {
        const bool inside = alpha[i] >= ALPHA_INSIDE;
        to->to_inside[i] = inside ? 0 : FAR;
        to->to_outside[i] = inside ? FAR : 0;
    }
    for (int64_t y = 1; y < height; y++) {
        pass_on(to->to_inside + (y - 1) * width, width, to->to_inside + y * width);
        pass_on(to->to_outside + (y - 1) * width, width, to->to_outside + y * width);
    }
    for (int64_t y = height - 2; y >= 0; y--) {
        pass_on(to->to_inside + (y + 1) * width, width, to->to_inside + y * width);
        pass_on(to->to_outside + (y + 1) * width, width, to->to_outside + y * width);
    }
}

// Squares of a row of column distances, with FAR squared around it.
static void square_row(const uint8_t* row, int64_t width, uint16_t* __restrict squares) {
    for (int64_t x = 0; x < FAR; x++)
        squares[x] = squares[x + FAR + width] = FAR * FAR;
    for (int64_t x = 0; x < width; x++)
        squares[x + FAR] = (uint16_t)(row[x] * row[x]);
}

static bool any_below(const uint16_t* values, int64_t count, uint16_t limit) {
    int any = 0;
    for (int64_t i = 0; i < count; i++)
        any |= values[i] < limit;
    return any != 0;
}

// The smallest sums of squares over the columns within reach, for a run of pixels.
static void nearest_run(const uint16_t* squares, int64_t count, int reach,
                        uint16_t* __restrict nearest) {
    for (int64_t i = 0; i < count; i++)
        nearest[i] = LARGEST_SQUARE;
    for (int dx = -reach; dx <= reach; dx++) {
        const uint16_t* from = squares + FAR + dx;
        const uint16_t across = (uint16_t)(dx * dx);
        for (int64_t i = 0; i < count; i++) {
            const uint16_t sum = (uint16_t)(from[i] + across);
            nearest[i] = nearest[i] < sum ? nearest[i] : sum;
        }
    }
}

typedef struct row_work {
    int32_t reach;
    uint16_t *to_inside, *to_outside;  // squares, FAR more on both sides
    int16_t lengths[LARGEST_SQUARE + 1];
} row_work;

static void measure_row(const uint8_t* alpha, int64_t width, const row_work* work,
                        int16_t* __restrict distance) {
    for (int64_t x = 0; x < width; x += RUN) {
        const int64_t count = min_i64(RUN, width - x);
        const int64_t first = x + FAR - work->reach, around = count + 2 * work->reach;
        const uint16_t beyond = (uint16_t)((work->reach + 1) * (work->reach + 1));
        uint16_t to_inside[RUN], to_outside[RUN];
        const bool has_inside = any_below(work->to_inside + first, around, beyond);
        const bool has_outside = any_below(work->to_outside + first, around, beyond);
        if (!has_inside || !has_outside) {
            const int16_t all = (int16_t)(has_inside ? work->reach : -work->reach);
            for (int64_t i = 0; i < count; i++)
                distance[x + i] = (int16_t)(all * DISTANCE_ONE);
            continue;
        }
        nearest_run(work->to_inside + x, count, work->reach, to_inside);
        nearest_run(work->to_outside + x, count, work->reach, to_outside);
        for (int64_t i = 0; i < count; i++) {
            const bool inside = alpha[x + i] >= ALPHA_INSIDE;
            const int16_t length = work->lengths[inside ? to_outside[i] : to_inside[i]];
            distance[x + i] = inside ? length : (int16_t)-length;
        }
    }
}

static void set_lengths(int32_t reach, int16_t* lengths) {
    for (int i = 0; i <= LARGEST_SQUARE; i++) {
        const float length = sqrtf((float)i) - 0.5f;
        const float reached = length < (float)reach ? length : (float)reach;
        lengths[i] = (int16_t)float_to_i32(reached * (float)DISTANCE_ONE + 0.5f);
    }
}

static inline int16_t smooth5(int a, int b, int c, int d, int e) {
    return (int16_t)((a + 4 * b + 6 * c + 4 * d + e + 8) >> 4);
}

// Smooths the plane in place, with three rows of its own behind it.
static void smooth(int16_t* plane, int64_t width, int64_t height, int16_t* rows) {
    for (int64_t y = 0; y < height; y++) {
        int16_t* row = plane + y * width;
        int16_t* padded = rows + 2;
        memcpy(padded, row, (size_t)width * sizeof *row);
        padded[-1] = padded[-2] = row[0];
        padded[width] = padded[width + 1] = row[width - 1];
        for (int64_t x = 0; x < width; x++) {
            row[x] = smooth5(padded[x - 2], padded[x - 1], padded[x], padded[x + 1], padded[x + 2]);
        }
    }
    // The two rows above, as they were, are kept in turn.
    int16_t *above2 = rows, *above1 = rows + width, *centre = rows + 2 * width;
    memcpy(above1, plane, (size_t)width * sizeof *plane);
    memcpy(above2, plane, (size_t)width * sizeof *plane);
    for (int64_t y = 0; y < height; y++) {
        int16_t* row = plane + y * width;
        memcpy(centre, row, (size_t)width * sizeof *row);
        const int16_t* next1 = y + 1 < height ? row + width : centre;
        const int16_t* next2 = y + 2 < height ? row + 2 * width : next1;
        for (int64_t x = 0; x < width; x++)
            row[x] = smooth5(above2[x], above1[x], centre[x], next1[x], next2[x]);
        int16_t* const oldest = above2;
        above2 = above1;
        above1 = centre;
        centre = oldest;
    }
}

bool signed_distance(const uint8_t* alpha, int32_t width, int32_t height, int32_t reach,
                     int16_t* distance) {
    const int64_t pixels = (int64_t)width * height;
    columns to;
    to.to_inside = (uint8_t*)alloc_plane(pixels, 2, 1);
    uint16_t* rows = (uint16_t*)alloc_plane((int64_t)width + 2 * FAR, 3, sizeof(uint16_t));
    row_work* work = (row_work*)malloc(sizeof(row_work));
    const bool ready = to.to_inside != NULL && rows != NULL && work != NULL;
    if (ready) {
        to.to_outside = to.to_inside + pixels;
        measure_columns(alpha, width, height, &to);
        work->to_inside = rows;
        work->to_outside = rows + width + 2 * FAR;
        work->reach = reach;
        set_lengths(reach, work->lengths);
        for (int64_t y = 0; y < height; y++) {
            square_row(to.to_inside + y * width, width, work->to_inside);
            square_row(to.to_outside + y * width, width, work->to_outside);
            measure_row(alpha + y * width, width, work, distance + y * width);
        }
        smooth(distance, width, height, (int16_t*)rows);
    }
    free(work);
    free(rows);
    free(to.to_inside);
    return ready;
}
