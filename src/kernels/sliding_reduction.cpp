// SPDX-License-Identifier: Apache-2.0
#include "kernels/sliding_reduction.h"

#include "kernels/row_ops.h"
#include "numeric.h"

// Filtered rows that a coarser row takes, in whole pairs.
enum { RING_PAIRS = 3 };

static size_t pitch_of(const sliding_reduction* slide) {
    return whole_vectors((size_t)slide->dst_width * (size_t)slide->channels);
}

size_t sliding_bytes(int32_t dst_width, int32_t channels) {
    const sliding_reduction slide = {channels, 0, dst_width, NULL};
    return max_size(2 * RING_PAIRS * pitch_of(&slide), reduce_two_bytes(dst_width, channels));
}

static uint8_t* ring_row(const sliding_reduction* slide, int32_t row, size_t odd) {
    const size_t pair = (size_t)(row + RING_PAIRS) % RING_PAIRS;
    return slide->ring + (2 * pair + odd) * pitch_of(slide);
}

static void slide_ring(const sliding_reduction* slide, int32_t row, const uint8_t* even,
                       const uint8_t* odd, uint8_t* dst) {
    const row_ops* ops = active_row_ops();
    filter_row* filter = slide->channels == 1 ? ops->reduce_row_c1 : ops->reduce_row_c3;
    uint8_t* last = ring_row(slide, row, 0);
    filter(even, slide->src_width, last, slide->dst_width);
    filter(odd, slide->src_width, ring_row(slide, row, 1), slide->dst_width);
    if (dst == NULL) return;
    const uint8_t* const taps[5] = {ring_row(slide, row - 2, 0), ring_row(slide, row - 2, 1),
                                    ring_row(slide, row - 1, 0), ring_row(slide, row - 1, 1), last};
    ops->reduce_column(taps, dst, (size_t)slide->dst_width * (size_t)slide->channels);
}

void slide_rows(const sliding_reduction* slide, int32_t row, const uint8_t* even,
                const uint8_t* odd, uint8_t* dst) {
    const row_ops* ops = active_row_ops();
    filter_two_rows* two = slide->channels == 1 ? ops->reduce_two_c1 : ops->reduce_two_c3;
    if (two == NULL || slide->dst_width < LEAST_REDUCED_TWO) {
        slide_ring(slide, row, even, odd, dst);
    } else {
        two(even, odd, slide->src_width, slide->ring, dst, slide->dst_width);
    }
}
