// SPDX-License-Identifier: Apache-2.0
#include "prepare/steps.h"

static inline int16_t less(int16_t a, int16_t b) {
    return a < b ? a : b;
}

static inline int16_t plus(int16_t steps, int more) {
    return (int16_t)(steps + more);
}

// Steps to a row from the one beside it.
static inline void step_across(const int16_t* __restrict beside, int64_t width,
                               int16_t* __restrict row) {
    for (int64_t x = 0; x < width; x++)
        row[x] = less(row[x], plus(beside[x], STEPS_STRAIGHT));
    for (int64_t x = 1; x < width; x++)
        row[x] = less(row[x], plus(beside[x - 1], STEPS_ACROSS));
    for (int64_t x = 1; x < width; x++)
        row[x - 1] = less(row[x - 1], plus(beside[x], STEPS_ACROSS));
}

// Steps from pixel to pixel of a row, the next one being `step` further.
static inline void step_along(int16_t* first, int64_t width, int64_t step) {
    int16_t steps = STEPS_NONE;
    for (int64_t x = 0; x != width * step; x += step)
        first[x] = steps = less(first[x], plus(steps, STEPS_STRAIGHT));
}

// Down and to the right, then up and to the left.
void spread_steps(int16_t* plane, int64_t width, int64_t height) {
    for (int64_t step = 1; step >= -1; step -= 2) {
        for (int64_t i = 0; i < height; i++) {
            int16_t* row = plane + (step > 0 ? i : height - 1 - i) * width;
            if (i > 0) step_across(row - step * width, width, row);
            step_along(step > 0 ? row : row + width - 1, width, step);
        }
    }
}
