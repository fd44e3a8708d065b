#include "kernels/band_filters.h"

#include "kernels/columns.h"
#include "kernels/row_ops.h"
#include "log.h"

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

static void reduce_band(const band_task* task, size_t channels) {
    const bool size_rule = 2 * (int64_t)task->dst_width <= task->src_width &&
                           2 * (int64_t)task->dst_height <= task->src_height;
    if (!check_band(task, size_rule,
                    "It should be guaranteeed that dst_width * 2 <= src_width and dst_height * 2 "
                    "<= src_height\n") ||
        task->dst_width < 2) {
        return;
    }
    const row_ops* rows = active_rows();
    const size_t src_bytes = (size_t)task->src_width * channels;
    const size_t row_bytes = (size_t)task->dst_width * channels;
    const uint8_t* src = task->src + task->src_geom->offset;
    for (int32_t y = 0; y < task->src_rows; y++) {
        (channels == 3 ? rows->reduce_row_c3 : rows->reduce_row_c1)(
            src + (size_t)y * src_bytes, task->src_width, task->scratch + (size_t)y * row_bytes,
            task->dst_width);
    }
    if (task->src_rows < 1 || task->band_pos < BAND_FIRST || task->band_pos > BAND_LAST) return;
    int32_t ends = task->band_pos == BAND_FIRST ? ENDS_TOP : ENDS_NONE;
    if (task->band_pos == BAND_LAST && 2 * (int64_t)task->dst_height == task->src_height) {
        ends = ENDS_BOTTOM;
    }
    reduce_columns(task->scratch, row_bytes, task->dst, task->dst_rows, ends);
}

int32_t ImageReduce_BandC3(const band_task* task) {
    reduce_band(task, 3);
    return 0;
}

int32_t ImageReduce_BandC1(const band_task* task) {
    reduce_band(task, 1);
    return 0;
}

int32_t ImageExpand_BandC3(const band_task* task) {
    const bool size_rule = 2 * (int64_t)task->src_width <= task->dst_width &&
                           2 * (int64_t)task->src_height <= task->dst_height;
    if (!check_band(task, size_rule,
                    "It should be guaranteeed that src_width * 2 <=  dst_width and src_height * 2 "
                    "<= dst_height\n") ||
        task->src_width < 2) {
        return 0;
    }
    const size_t src_bytes = 3 * (size_t)task->src_width;
    const size_t row_bytes = 3 * (size_t)task->dst_width;
    for (int32_t y = 0; y < task->src_rows; y++) {
        active_rows()->expand_row_c3(task->src + (size_t)y * src_bytes, task->src_width,
                                     task->scratch + (size_t)y * row_bytes, task->dst_width);
    }
    // Below two rows there is no neighbour to expand towards.
    if (task->src_rows < 2 || task->band_pos < BAND_FIRST || task->band_pos > BAND_LAST) return 0;
    const int32_t ends = task->band_pos == BAND_FIRST  ? ENDS_TOP
                         : task->band_pos == BAND_LAST ? ENDS_BOTTOM
                                                       : ENDS_NONE;
    expand_columns(task->scratch, row_bytes, task->src_rows, task->dst, ends,
                   2 * (int64_t)task->src_height != task->dst_height);
    return 0;
}
