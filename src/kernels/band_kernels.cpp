#include "kernels/band_kernels.h"

#include "kernels/row_ops.h"

// Elements of the band; 0 where there is nothing to do.
static size_t band_elements(const band_task* task) {
    if (task->src_rows < 1 || task->src_width < 1) return 0;
    return 3 * (size_t)task->src_rows * (size_t)task->src_width;
}

int32_t ImageLaplace_Byte3C(const band_task* task) {
    active_row_ops()->subtract(task->src, task->src2, task->dst_lap, band_elements(task));
    return 0;
}

int32_t ImageWiden_Byte3C(const band_task* task) {
    active_row_ops()->widen(task->src, task->dst_lap, band_elements(task));
    return 0;
}

int32_t ImageCollapse_Short3C(const band_task* task) {
    active_row_ops()->collapse(task->lap, task->src, task->dst, band_elements(task));
    return 0;
}

static void blend_band(const band_task* task, size_t pixels) {
    const row_ops* rows = active_row_ops();
    const size_t mask_step = (size_t)task->mask_geom->step;
    const size_t lap_step = (size_t)task->src_geom->step;
    const size_t lap2_step = (size_t)task->src2_geom->step;
    const size_t dst_step = (size_t)task->dst_geom->step;
    if (mask_step == 1 && lap_step == 3 && lap2_step == 3 && dst_step == 3) {
        rows->blend(task->src, task->lap, task->lap2, task->dst_lap, pixels);
        return;
    }
    for (size_t p = 0; p < pixels; p++) {
        rows->blend(task->src + p * mask_step, task->lap + p * lap_step, task->lap2 + p * lap2_step,
                    task->dst_lap + p * dst_step, 1);
    }
}

void* ImageBlend_Short3C(void* arg) {
    const band_task* task = (const band_task*)arg;
    const size_t pixels = band_elements(task) / 3;
    if (pixels > 0) blend_band(task, pixels);
    pool_signal_done(task->pool);
    return NULL;
}

void* ImageNarrow_Short3C(void* arg) {
    const band_task* task = (const band_task*)arg;
    active_row_ops()->narrow(task->lap, task->dst, band_elements(task));
    pool_signal_done(task->pool);
    return NULL;
}
