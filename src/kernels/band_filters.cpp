// SPDX-License-Identifier: Apache-2.0
#include "kernels/band_filters.h"

#include <string.h>

#include "kernels/row_math.h"
#include "kernels/row_ops.h"
#include "log.h"

// The bytes of a row of pixels: one run, or one for each pixel where these lie apart.
typedef struct row_runs {
    size_t count, bytes, step;
    size_t row_bytes;
} row_runs;

static row_runs runs_of(int32_t width, int32_t channels, int32_t step) {
    const size_t row_bytes = (size_t)width * (size_t)step;
    const row_runs whole = {1, row_bytes, row_bytes, row_bytes};
    const row_runs apart = {(size_t)width, (size_t)channels, (size_t)step, row_bytes};
    return step == channels ? whole : apart;
}

static void reduce_rows(const band_task* task, int32_t channels, size_t row_bytes) {
    const row_ops* ops = active_row_ops();
    const int32_t step = task->src_geom->step;
    const uint8_t* src = task->src + task->src_geom->offset;
    uint8_t* out = task->scratch;
    for (int32_t y = 0; y < task->src_rows; y++, out += row_bytes) {
        const uint8_t* row = src + (size_t)y * (size_t)task->src_width * (size_t)step;
        if (channels == 1) {
            ops->reduce_row_c1(row, task->src_width, out, task->dst_width);
        } else if (step == 3) {
            ops->reduce_row_c3(row, task->src_width, out, task->dst_width);
        } else {
            reduce_row_apart(row, task->src_width, out, task->dst_width, step);
        }
    }
}

static void reduce_columns(const band_task* task, const row_runs* runs, int32_t ends) {
    const row_ops* ops = active_row_ops();
    const size_t row_bytes = runs->row_bytes;
    const bool folds = (ends & ENDS_BOTTOM) && 2 * (int64_t)task->dst_height == task->src_height;
    const int32_t rows = (ends & ENDS_TOP) && task->dst_rows < 1 ? 1 : task->dst_rows;
    for (int32_t r = 0; r < rows; r++) {
        const size_t first = (ends & ENDS_TOP) ? 0 : 2;
        const uint8_t* centre = task->scratch + (2 * (size_t)r + first) * row_bytes;
        const bool top = (ends & ENDS_TOP) && r == 0, bottom = folds && r == rows - 1;
        const uint8_t* const above = top ? centre : centre - row_bytes;
        const uint8_t* const below = centre + row_bytes;
        uint8_t* out = task->dst + (size_t)r * row_bytes;
        for (size_t k = 0, at = 0; k < runs->count; k++, at += runs->step) {
            const uint8_t* const taps[5] = {(top ? above : above - row_bytes) + at, above + at,
                                            centre + at, below + at,
                                            (bottom ? below : below + row_bytes) + at};
            ops->reduce_column(taps, out + at, runs->bytes);
        }
    }
}

void reduce_band(const band_task* task, int32_t channels, int32_t ends) {
    const row_runs runs = runs_of(task->dst_width, channels, task->dst_geom->step);
    reduce_rows(task, channels, runs.row_bytes);
    reduce_columns(task, &runs, ends);
}

// Two output rows around a scratch row.
static void expand_columns(const uint8_t* above, const uint8_t* centre, const uint8_t* below,
                           const row_runs* runs, uint8_t* dst) {
    for (size_t k = 0; k < runs->count; k++) {
        for (size_t i = k * runs->step; i < k * runs->step + runs->bytes; i++) {
            dst[i] = expand3(above[i], centre[i], below[i]);
            dst[i + runs->row_bytes] = expand2(centre[i], below[i]);
        }
    }
}

static void copy_row(const uint8_t* row, const row_runs* runs, uint8_t* dst) {
    for (size_t k = 0, at = 0; k < runs->count; k++, at += runs->step)
        memcpy(dst + at, row + at, runs->bytes);
}

void expand_band(const band_task* task, int32_t ends) {
    const int32_t step = task->dst_geom->step;
    const row_runs runs = runs_of(task->dst_width, 3, step);
    const size_t src_bytes = (size_t)task->src_width * (size_t)task->src_geom->step;
    for (int32_t y = 0; y < task->src_rows; y++) {
        const uint8_t* row = task->src + (size_t)y * src_bytes;
        uint8_t* out = task->scratch + (size_t)y * runs.row_bytes;
        if (step == 3) {
            active_row_ops()->expand_row_c3(row, task->src_width, out, task->dst_width);
        } else {
            expand_row_apart(row, task->src_width, out, task->dst_width, step);
        }
    }
    const int32_t last = task->src_rows - 1;
    const int32_t end = (ends & ENDS_BOTTOM) ? task->src_rows : last;
    uint8_t* dst = task->dst;
    for (int32_t k = (ends & ENDS_TOP) ? 0 : 1; k < end; k++, dst += 2 * runs.row_bytes) {
        const uint8_t* centre = task->scratch + (size_t)k * runs.row_bytes;
        expand_columns(k > 0 ? centre - runs.row_bytes : centre, centre,
                       k < last ? centre + runs.row_bytes : centre, &runs, dst);
    }
    if ((ends & ENDS_BOTTOM) && 2 * (int64_t)task->src_height != task->dst_height) {
        copy_row(task->scratch + (size_t)last * runs.row_bytes, &runs, dst);
    }
}

static bool check_band(const band_task* task, bool size_rule, const char* size_message) {
    if (task->src == NULL || task->dst == NULL) {
        LOG_LINE(LOG_ERROR, "Input pointer is NULL.\n");
        return false;
    }
    if (!size_rule) {
        LOG_LINE(LOG_ERROR, "%s", size_message);
        LOG_LINE(LOG_ERROR,
                 "Input size parameters: src_width/src_height: %d/%d  dst_width/dst_height: %d/%d "
                 "\n",
                 task->src_width, task->src_height, task->dst_width, task->dst_height);
    }
    return size_rule;
}

static bool is_band(const band_task* task) {
    return task->band_pos >= BAND_FIRST && task->band_pos <= BAND_LAST;
}

static int32_t ends_of(const band_task* task) {
    if (task->band_pos == BAND_FIRST) return ENDS_TOP;
    return task->band_pos == BAND_LAST ? ENDS_BOTTOM : ENDS_NONE;
}

static int32_t reduce_checked(const band_task* task, int32_t channels) {
    const bool size_rule = 2 * (int64_t)task->dst_width <= task->src_width &&
                           2 * (int64_t)task->dst_height <= task->src_height;
    if (check_band(task, size_rule,
                   "It should be guaranteeed that dst_width * 2 <= src_width and dst_height * 2 "
                   "<= src_height\n") &&
        task->dst_width >= 2 && task->src_rows >= 1 && is_band(task)) {
        reduce_band(task, channels, ends_of(task));
    }
    return 0;
}

int32_t ImageReduce_BandC3(const band_task* task) {
    return reduce_checked(task, 3);
}

int32_t ImageReduce_BandC1(const band_task* task) {
    return reduce_checked(task, 1);
}

int32_t ImageExpand_BandC3(const band_task* task) {
    const bool size_rule = 2 * (int64_t)task->src_width <= task->dst_width &&
                           2 * (int64_t)task->src_height <= task->dst_height;
    // Below two rows there is no neighbour to expand towards.
    if (check_band(task, size_rule,
                   "It should be guaranteeed that src_width * 2 <=  dst_width and src_height * 2 "
                   "<= dst_height\n") &&
        task->src_width >= 2 && task->src_rows >= 2 && is_band(task)) {
        expand_band(task, ends_of(task));
    }
    return 0;
}
