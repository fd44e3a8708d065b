// SPDX-License-Identifier: Apache-2.0
#include "blend/band_bundle.h"

#include <string.h>

#include "costs.h"
#include "kernels/row_ops.h"
#include "kernels/sliding_reduction.h"
#include "numeric.h"

// Rows of the coarser level that a finer row lies between.
enum { RING_ROWS = 3 };

// Working rows of the way up.
typedef struct merge_scratch {
    uint8_t* ring[3];  // RING_ROWS coarse rows, widened, of source, destination and result
    uint8_t* cut_src;  // rows cut from a frame
    uint8_t* cut_dst;
    uint8_t* out;
} merge_scratch;

static size_t pitch_of(int32_t width) {
    return whole_vectors(3 * (size_t)width);
}

static uint8_t* first_vector(uint8_t* scratch) {
    return scratch + (-(uintptr_t)scratch & (VECTOR_BYTES - 1));
}

size_t band_scratch_bytes(int32_t width) {
    const size_t row_bytes = 3 * (size_t)width;
    const size_t reduce = 2 * pitch_of(width) + sliding_bytes(width / 2, 3);
    const size_t merge = (3 * RING_ROWS + 3) * pitch_of(width);
    const size_t top = 4 * max_size(row_bytes, 3 * TOP_RUN_PIXELS);
    return whole_vectors(max_size(max_size(reduce, merge), top)) + VECTOR_BYTES;
}

static merge_scratch split_for_merge(uint8_t* scratch, int32_t width) {
    const size_t pitch = pitch_of(width);
    merge_scratch parts;
    uint8_t* next = first_vector(scratch);
    for (size_t i = 0; i < 3; i++, next += RING_ROWS * pitch)
        parts.ring[i] = next;
    parts.cut_src = next;
    parts.cut_dst = next + pitch;
    parts.out = next + 2 * pitch;
    return parts;
}

// Two finer rows and what a reduction keeps of those before.
typedef struct reduce_scratch {
    uint8_t* ring;
    uint8_t* cut[2];  // rows cut from a frame
} reduce_scratch;

static reduce_scratch split_for_reduce(uint8_t* scratch, int32_t width) {
    reduce_scratch parts;
    parts.cut[0] = first_vector(scratch);
    parts.cut[1] = parts.cut[0] + pitch_of(width);
    parts.ring = parts.cut[1] + pitch_of(width);
    return parts;
}

// Finer row 2 row or 2 row + 1, clamped to the level.
static int32_t finer_row(const band_bundle* bundle, int32_t row, int32_t odd) {
    const int64_t y = 2 * (int64_t)row + odd;
    return (int32_t)(y < 0 ? 0 : min_i64(y, (int64_t)bundle->fine->height - 1));
}

static sliding_reduction make_slide(const band_bundle* bundle, int32_t channels, uint8_t* ring) {
    return {channels, bundle->fine->width, bundle->coarse->width, ring};
}

static void reduce_colours(const band_bundle* bundle, const patch* fine, const patch* coarse) {
    const int32_t width = bundle->fine->width;
    const reduce_scratch scratch = split_for_reduce(bundle->scratch, width);
    const sliding_reduction slide = make_slide(bundle, 3, scratch.ring);
    for (int32_t row = bundle->begin - 1; row <= bundle->end; row++) {
        const uint8_t* rows[2];
        for (int32_t k = 0; k < 2; k++)
            rows[k] = read_rows(fine, finer_row(bundle, row, k), 1, width, scratch.cut[k]);
        const bool is_made = row > bundle->begin;
        slide_rows(&slide, row, rows[0], rows[1],
                   is_made ? result_rows(coarse, row - 1, NULL) : NULL);
    }
}

static void reduce_mask(const band_bundle* bundle) {
    const pyramid_level *fine = bundle->fine, *coarse = bundle->coarse;
    const sliding_reduction slide =
        make_slide(bundle, 1, split_for_reduce(bundle->scratch, fine->width).ring);
    for (int32_t row = bundle->begin - 1; row <= bundle->end; row++) {
        const uint8_t* rows[2];
        for (int32_t k = 0; k < 2; k++)
            rows[k] = fine->mask + (size_t)finer_row(bundle, row, k) * (size_t)fine->width;
        const bool is_made = row > bundle->begin;
        slide_rows(&slide, row, rows[0], rows[1],
                   is_made ? coarse->mask + (size_t)(row - 1) * (size_t)coarse->width : NULL);
    }
}

void band_bundle_src(const band_bundle* bundle) {
    if (bundle->begin < bundle->end)
        reduce_colours(bundle, &bundle->fine->src, &bundle->coarse->src);
}

void band_bundle_dst(const band_bundle* bundle) {
    if (bundle->begin >= bundle->end) return;
    reduce_colours(bundle, &bundle->fine->dst, &bundle->coarse->dst);
    reduce_mask(bundle);
}

void band_bundle_down(const band_bundle* bundle) {
    band_bundle_src(bundle);
    band_bundle_dst(bundle);
}

// Coarse rows wait in rings, already as wide as the finer level.
static uint8_t* ring_row(const merge_scratch* scratch, size_t i, int32_t row, size_t pitch) {
    return scratch->ring[i] + (size_t)(row % RING_ROWS) * pitch;
}

// Coarse row `row` of all three pictures into the rings.
static void fill_rings(const band_bundle* bundle, int32_t row, const merge_scratch* scratch) {
    const row_ops* ops = active_row_ops();
    const pyramid_level* coarse = bundle->coarse;
    const patch* const pictures[3] = {&coarse->src, &coarse->dst, &coarse->result};
    const int32_t width = bundle->fine->width;
    for (size_t i = 0; i < 3; i++) {
        ops->expand_row_c3(read_rows(pictures[i], row, 1, coarse->width, NULL), coarse->width,
                           ring_row(scratch, i, row, pitch_of(width)), width);
    }
}

// The rows of the rings around coarse row `row`; at the level's ends it stands for its neighbour.
static void look_around(const band_bundle* bundle, int32_t row, const merge_scratch* scratch,
                        merge_rows* inputs) {
    const size_t pitch = pitch_of(bundle->fine->width);
    const int32_t above = row > 0 ? row - 1 : row;
    const int32_t below = row < bundle->coarse->height - 1 ? row + 1 : row;
    coarse_rows* const around[3] = {&inputs->coarse_src, &inputs->coarse_under,
                                    &inputs->coarse_result};
    for (size_t i = 0; i < 3; i++) {
        around[i]->above = ring_row(scratch, i, above, pitch);
        around[i]->centre = ring_row(scratch, i, row, pitch);
        around[i]->below = ring_row(scratch, i, below, pitch);
    }
}

// Row `row` of the result between the coarse rows of `inputs`.
static void make_row(const band_bundle* bundle, int32_t row, merge_row* merge,
                     const merge_scratch* scratch, merge_rows* inputs) {
    const pyramid_level* fine = bundle->fine;
    const int32_t width = fine->width;
    inputs->mask = fine->mask + (size_t)row * (size_t)width;
    inputs->src = read_masked_row(&fine->src, row, width, inputs->mask, scratch->cut_src);
    inputs->under = read_rows(&fine->dst, row, 1, width, scratch->cut_dst);
    uint8_t* out = result_rows(&fine->result, row, scratch->out);
    merge(inputs, out, (size_t)width);
    store_rows(&fine->result, row, 1, width, out);
}

void band_bundle_collapse(const band_bundle* bundle) {
    const row_ops* ops = active_row_ops();
    const int32_t coarse_height = bundle->coarse->height;
    const merge_scratch scratch = split_for_merge(bundle->scratch, bundle->fine->width);
    merge_rows inputs;
    if (bundle->begin > 0) fill_rings(bundle, bundle->begin - 1, &scratch);
    fill_rings(bundle, bundle->begin, &scratch);
    for (int32_t row = bundle->begin; row < bundle->end; row++) {
        if (row + 1 < coarse_height) fill_rings(bundle, row + 1, &scratch);
        look_around(bundle, row, &scratch, &inputs);
        make_row(bundle, 2 * row, ops->merge_even, &scratch, &inputs);
        make_row(bundle, 2 * row + 1, ops->merge_odd, &scratch, &inputs);
    }
    // Behind the rows of the last coarse row there may be one more, between that row and itself.
    if (bundle->end == coarse_height && 2 * coarse_height < bundle->fine->height) {
        make_row(bundle, 2 * coarse_height, ops->merge_odd, &scratch, &inputs);
    }
}

void merge_top_rows(const pyramid_level* top, int32_t begin, int32_t end, uint8_t* scratch) {
    const int32_t width = top->width;
    const int32_t most = width < TOP_RUN_PIXELS ? TOP_RUN_PIXELS / width : 1;
    const int32_t at_once = (int32_t)min_i64(most, (int64_t)end - begin);
    const size_t run_bytes = 3 * (size_t)width * (size_t)at_once;
    uint8_t* zeros = scratch + 3 * run_bytes;
    memset(zeros, 0, run_bytes);
    const coarse_rows nothing = {zeros, zeros, zeros};
    for (int32_t row = begin; row < end; row += at_once) {
        const int32_t rows = (int32_t)min_i64(at_once, (int64_t)end - row);
        merge_rows inputs;
        inputs.mask = top->mask + (size_t)row * (size_t)width;
        inputs.src = read_rows(&top->src, row, rows, width, scratch);
        inputs.under = read_rows(&top->dst, row, rows, width, scratch + run_bytes);
        inputs.coarse_src = inputs.coarse_under = inputs.coarse_result = nothing;
        uint8_t* out = result_rows(&top->result, row, scratch + 2 * run_bytes);
        active_row_ops()->merge_odd(&inputs, out, (size_t)rows * (size_t)width);
        store_rows(&top->result, row, rows, width, out);
    }
}
