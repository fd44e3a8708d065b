// SPDX-License-Identifier: Apache-2.0
#include "kernels/band_kernels.h"

#include <stddef.h>

#include "kernels/row_math.h"

// Elements of the band; 0 where there is nothing to do.
static size_t band_elements(const band_task* task) {
    if (task->src_rows < 1 || task->src_width < 1) return 0;
    return 3 * (size_t)task->src_rows * (size_t)task->src_width;
}

int32_t ImageLaplace_Byte3C(const band_task* task) {
    const size_t count = band_elements(task);
    for (size_t i = 0; i < count; i++)
        task->dst_lap[i] = (int16_t)(task->src[i] - task->src2[i]);
    return 0;
}

int32_t ImageWiden_Byte3C(const band_task* task) {
    const size_t count = band_elements(task);
    for (size_t i = 0; i < count; i++)
        task->dst_lap[i] = task->src[i];
    return 0;
}

int32_t ImageCollapse_Short3C(const band_task* task) {
    const size_t count = band_elements(task);
    for (size_t i = 0; i < count; i++) {
        const int32_t sum = task->lap[i] + task->src[i];
        task->dst[i] = clamp_to_byte((int16_t)(uint16_t)sum);
    }
    return 0;
}

void* ImageBlend_Short3C(void* arg) {
    const band_task* task = (const band_task*)arg;
    const size_t pixels = band_elements(task) / 3;
    for (size_t p = 0; p < pixels; p++) {
        const int32_t mask = task->src[p * (size_t)task->mask_geom->step];
        const int16_t* lap = task->lap + p * (size_t)task->src_geom->step;
        const int16_t* lap2 = task->lap2 + p * (size_t)task->src2_geom->step;
        int16_t* out = task->dst_lap + p * (size_t)task->dst_geom->step;
        for (size_t c = 0; c < 3; c++)
            out[c] = (int16_t)(uint16_t)blended(mask, lap[c], lap2[c]);
    }
    pool_signal_done(task->pool);
    return NULL;
}

void* ImageNarrow_Short3C(void* arg) {
    const band_task* task = (const band_task*)arg;
    const size_t count = band_elements(task);
    for (size_t i = 0; i < count; i++)
        task->dst[i] = (uint8_t)task->lap[i];
    pool_signal_done(task->pool);
    return NULL;
}
