// SPDX-License-Identifier: Apache-2.0
#include "kernels/whole_plane.h"

#include "kernels/band_filters.h"
#include "log.h"
#include "memory.h"

// The scratch size as the log prints it.
static unsigned scratch_bytes(int32_t width, int32_t height, int32_t channels) {
    return (unsigned)width * (unsigned)height * (unsigned)channels;
}

static bool may_reduce(int64_t src_width, int64_t src_height, int64_t dst_width,
                       int64_t dst_height) {
    return 2 * dst_width <= src_width && 2 * dst_height <= src_height && dst_width != 1 &&
           dst_height != 1;
}

// A band that is the whole plane, from the first row of both levels on.
static band_task whole_band(const uint8_t* src, int32_t src_width, int32_t src_height, uint8_t* dst,
                            int32_t dst_width, int32_t dst_height, const pixel_layout* layout) {
    band_task task = band_task();
    task.src = src;
    task.src_width = src_width;
    task.src_height = task.src_rows = src_height;
    task.dst = dst;
    task.dst_width = dst_width;
    task.dst_height = task.dst_rows = dst_height;
    task.src_geom = task.dst_geom = layout;
    return task;
}

static const pixel_layout layout_c1 = {0, 1}, layout_c3 = {0, 3};

static void reduce_plane(band_task* task, uint8_t* scratch) {
    if (task->dst_width < 1 || task->dst_height < 1) return;
    task->scratch = scratch;
    reduce_band(task, task->src_geom->step, ENDS_TOP | ENDS_BOTTOM);
}

int32_t ImageDown_ByteNC(const uint8_t* src, int32_t src_width, int32_t src_height, uint8_t* dst,
                         int32_t dst_width, int32_t dst_height) {
    // The scratch comes before the checks: without memory that is what is reported, whatever the
    // arguments are.
    uint8_t* scratch = (uint8_t*)alloc_zeroed_plane(dst_width, src_height, 1);
    int32_t status = -1;
    if (scratch == NULL) {
        LOG_LINE(LOG_ERROR, "function:%s , malloc error size:%x", "ImageDown_ByteNC",
                 scratch_bytes(dst_width, src_height, 1));
    } else if (src == NULL || dst == NULL) {
        LOG_LINE(LOG_ERROR, "function:%s input pointer is null", "ImageDown_ByteNC");
    } else if (!may_reduce(src_width, src_height, dst_width, dst_height)) {
        LOG_LINE(LOG_ERROR,
                 "function:%s , Input size parameters: src_width/src_height: %d/%d  "
                 "dst_width/dst_height: %d/%d",
                 "ImageDown_ByteNC", src_width, src_height, dst_width, dst_height);
    } else {
        band_task task =
            whole_band(src, src_width, src_height, dst, dst_width, dst_height, &layout_c1);
        reduce_plane(&task, scratch);
        status = 0;
    }
    free(scratch);
    return status;
}

// Null planes and broken size rules of the three-channel routines.
static bool check_c3(const band_task* task, bool size_rule) {
    if (task->src == NULL || task->dst == NULL) {
        LOG_LINE(LOG_ERROR, "Input pointer is NULL.");
        return false;
    }
    if (!size_rule) {
        LOG_LINE(LOG_ERROR,
                 "Input size parameters: src_width/src_height: %d/%d  dst_width/dst_height: %d/%d",
                 task->src_width, task->src_height, task->dst_width, task->dst_height);
    }
    return size_rule;
}

// The reducer reports missing memory at debug priority, the expander as an error.
static uint8_t* alloc_c3_scratch(int32_t dst_width, int32_t src_height, int priority) {
    uint8_t* scratch = (uint8_t*)alloc_zeroed_plane(dst_width, src_height, 3);
    if (scratch == NULL) {
        LOG_LINE(priority, "malloc error size:%x", scratch_bytes(dst_width, src_height, 3));
    }
    return scratch;
}

int32_t ImageDown_ByteC3(const uint8_t* src, int32_t src_width, int32_t src_height, uint8_t* dst,
                         int32_t dst_width, int32_t dst_height) {
    band_task task = whole_band(src, src_width, src_height, dst, dst_width, dst_height, &layout_c3);
    if (!check_c3(&task, may_reduce(src_width, src_height, dst_width, dst_height))) return -1;
    uint8_t* scratch = alloc_c3_scratch(dst_width, src_height, LOG_DEBUG);
    if (scratch == NULL) return -1;
    reduce_plane(&task, scratch);
    free(scratch);
    return 0;
}

int32_t ImageUp_ByteC3(const uint8_t* src, int32_t src_width, int32_t src_height, uint8_t* dst,
                       int32_t dst_width, int32_t dst_height) {
    band_task task = whole_band(src, src_width, src_height, dst, dst_width, dst_height, &layout_c3);
    const bool size_rule = 2 * (int64_t)src_width <= dst_width &&
                           2 * (int64_t)src_height <= dst_height && src_width != 1 &&
                           src_height != 1;
    if (!check_c3(&task, size_rule)) return -1;
    task.scratch = alloc_c3_scratch(dst_width, src_height, LOG_ERROR);
    if (task.scratch == NULL) return -1;
    if (src_width > 0 && src_height > 0) expand_band(&task, ENDS_TOP | ENDS_BOTTOM);
    free(task.scratch);
    return 0;
}
