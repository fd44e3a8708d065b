// SPDX-License-Identifier: Apache-2.0
#include "prepare/wide_means.h"

#include <string.h>

#include "memory.h"
#include "numeric.h"

// 23 squares of 16 pixels, squared, times 255 * 255 stay below 2^30.
enum { QUARTER_RADIUS = 11 };

// Columns that are summed together.
enum { COLUMNS = 128 };

static void weigh_columns(const uint8_t* __restrict values, const uint8_t* __restrict weights,
                          int64_t count, uint32_t* __restrict sums) {
    for (int64_t x = 0; x < count; x++)
        sums[x] += (uint32_t)(values[x] * weights[x]);
}

static void count_columns(const uint8_t* __restrict weights, int64_t count,
                          uint32_t* __restrict sums) {
    for (int64_t x = 0; x < count; x++)
        sums[x] += weights[x];
}

// A row of squares of 4 x 4 pixels, for up to COLUMNS columns from `left` on.
static void sum_squares(const colour_planes* planes, int64_t square_y, int64_t left,
                        uint32_t* row) {
    uint32_t columns[SUMS][COLUMNS] = {};
    const int64_t count = min_i64(COLUMNS, planes->width - left);
    const int64_t bottom = min_i64(4 * square_y + 4, planes->height);
    for (int64_t y = 4 * square_y; y < bottom; y++) {
        const int64_t first = y * planes->width + left;
        const uint8_t* object = planes->object_weight + first;
        const uint8_t* behind = planes->behind_weight + first;
        for (int c = 0; c < 3; c++) {
            weigh_columns(planes->seen[c] + first, object, count, columns[SUM_OBJECT + c]);
            weigh_columns(planes->seen[c] + first, behind, count, columns[SUM_BEHIND + c]);
        }
        count_columns(object, count, columns[SUM_OBJECT + SUM_WEIGHT]);
        count_columns(behind, count, columns[SUM_BEHIND + SUM_WEIGHT]);
    }
    // Columns behind the last one hold 0.
    for (int64_t x = 0; x < count; x += 4) {
        uint32_t* square = row + (left + x) / 4 * SUMS;
        for (int s = 0; s < SUMS; s++) {
            const uint32_t* four = columns[s] + x;
            square[s] = four[0] + four[1] + four[2] + four[3];
        }
    }
}

static void add_sums(const uint32_t* from, uint32_t* to) {
    for (int i = 0; i < SUMS; i++)
        to[i] += from[i];
}

static void take_sums(const uint32_t* from, uint32_t* to) {
    for (int i = 0; i < SUMS; i++)
        to[i] -= from[i];
}

// Replaces each of `count` cells, `step` sums apart, by the sum over those within the radius.
static void slide(uint32_t* cells, int64_t count, int64_t step, uint32_t* copy) {
    for (int64_t i = 0; i < count; i++)
        memcpy(copy + i * SUMS, cells + i * step, SUMS * sizeof *cells);
    uint32_t sum[SUMS] = {};
    for (int64_t i = 0; i < min_i64(QUARTER_RADIUS, count); i++)
        add_sums(copy + i * SUMS, sum);
    for (int64_t i = 0; i < count; i++) {
        if (i + QUARTER_RADIUS < count) add_sums(copy + (i + QUARTER_RADIUS) * SUMS, sum);
        if (i > QUARTER_RADIUS) take_sums(copy + (i - QUARTER_RADIUS - 1) * SUMS, sum);
        memcpy(cells + i * step, sum, sizeof sum);
    }
}

bool make_wide_means(const colour_planes* planes, wide_means* means) {
    means->width = (int32_t)(((int64_t)planes->width + 3) / 4);
    means->height = (int32_t)(((int64_t)planes->height + 3) / 4);
    means->sums = (uint32_t*)alloc_plane(means->width, means->height, SUMS * sizeof(uint32_t));
    const int64_t longer = max_i64(means->width, means->height);
    uint32_t* copy = (uint32_t*)alloc_plane(longer, SUMS, sizeof(uint32_t));
    const bool ready = means->sums != NULL && copy != NULL;
    if (ready) {
        const int64_t row = (int64_t)means->width * SUMS;
        for (int64_t y = 0; y < means->height; y++) {
            for (int64_t left = 0; left < planes->width; left += COLUMNS)
                sum_squares(planes, y, left, means->sums + y * row);
            slide(means->sums + y * row, means->width, SUMS, copy);
        }
        for (int64_t x = 0; x < means->width; x++)
            slide(means->sums + x * SUMS, means->height, row, copy);
    }
    free(copy);
    if (!ready) free_wide_means(means);
    return ready;
}

void free_wide_means(wide_means* means) {
    free(means->sums);
    means->sums = NULL;
}
