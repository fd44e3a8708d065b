#include "prepare/wide_means.h"

#include <string.h>

#include "memory.h"

// 23 squares of 16 pixels, squared, times 255 * 255 stay below 2^30.
enum { QUARTER_RADIUS = 11 };

static void add_pixel(const colour_planes* planes, int64_t i, uint32_t* sums) {
    const uint32_t object = planes->object_weight[i], behind = planes->behind_weight[i];
    for (int c = 0; c < 3; c++) {
        sums[SUM_OBJECT + c] += planes->seen[c][i] * object;
        sums[SUM_BEHIND + c] += planes->seen[c][i] * behind;
    }
    sums[SUM_OBJECT + SUM_WEIGHT] += object;
    sums[SUM_BEHIND + SUM_WEIGHT] += behind;
}

// A row of squares of 4 x 4 pixels.
static void sum_squares(const colour_planes* planes, int64_t square_y, uint32_t* row) {
    const int64_t bottom = min_i64(4 * square_y + 4, planes->height);
    for (int64_t y = 4 * square_y; y < bottom; y++) {
        const int64_t first = y * planes->width;
        for (int64_t x = 0; x < planes->width; x++)
            add_pixel(planes, first + x, row + x / 4 * SUMS);
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
    means->sums =
        (uint32_t*)alloc_zeroed_plane(means->width, means->height, SUMS * sizeof(uint32_t));
    const int64_t longer = max_i64(means->width, means->height);
    uint32_t* copy = (uint32_t*)alloc_plane(longer, SUMS, sizeof(uint32_t));
    const bool ready = means->sums != NULL && copy != NULL;
    if (ready) {
        const int64_t row = (int64_t)means->width * SUMS;
        for (int64_t y = 0; y < means->height; y++) {
            sum_squares(planes, y, means->sums + y * row);
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
