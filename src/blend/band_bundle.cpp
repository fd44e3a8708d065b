#include "blend/band_bundle.h"

#include "blend/row_conversion.h"
#include "kernels/band_filters.h"
#include "kernels/band_kernels.h"
#include "kernels/row_ops.h"
#include "numeric.h"

// Rows of the coarser level in a strip of a reduction. More rows filter fewer overlap rows twice;
// fewer rows need less cache.
enum { STRIP_ROWS = 16 };
enum { REDUCE_ROWS = 2 * STRIP_ROWS + 4 };

size_t band_scratch_bytes(int32_t width) {
    const size_t row_bytes = 3 * (size_t)width;
    const size_t rows = 2 * 2 + REDUCE_ROWS + 1 + 1 + 3 * 3;
    return (rows * row_bytes + REDUCE_ROWS * (row_bytes / 2) + 63) & ~(size_t)63;
}

band_rows split_band_scratch(uint8_t* scratch, int32_t width) {
    const size_t row_bytes = 3 * (size_t)width;
    band_rows rows;
    rows.lap_src = (int16_t*)scratch;
    rows.lap_dst = rows.lap_src + row_bytes;
    rows.cut_src = scratch + 4 * row_bytes;
    rows.cut_dst = rows.cut_src + REDUCE_ROWS * row_bytes;
    rows.out = rows.cut_dst + row_bytes;
    rows.filter = rows.out + row_bytes;
    rows.ring[0] = rows.filter + REDUCE_ROWS * (row_bytes / 2);
    rows.ring[1] = rows.ring[0] + 3 * row_bytes;
    rows.ring[2] = rows.ring[1] + 3 * row_bytes;
    return rows;
}

// Rows [begin, end) of the coarser level and what they take of the finer one.
typedef struct strip {
    int32_t begin, end;
    int32_t band_pos;
} strip;

static strip next_strip(const band_bundle* bundle, int32_t begin) {
    strip s;
    s.begin = begin;
    s.end = (int32_t)min_i64(begin + STRIP_ROWS, bundle->end);
    s.band_pos = begin == 0                           ? BAND_FIRST
                 : s.end == bundle->expand.src_height ? BAND_LAST
                                                      : BAND_MIDDLE;
    return s;
}

// The finer rows that the filter of a strip reaches: two above its first centre, two below its
// last.
static void place_reduction(const strip* s, band_task* task, int32_t* first_row) {
    *first_row = s->band_pos == BAND_FIRST ? 0 : 2 * s->begin - 2;
    const int32_t end = s->band_pos == BAND_LAST ? task->src_height : 2 * s->end + 1;
    task->src_rows = end - *first_row;
    task->dst_rows = s->end - s->begin;
    task->band_pos = s->band_pos;
}

static void reduce_colours(const band_bundle* bundle, const picture* fine, const picture* coarse) {
    band_task task = bundle->reduce;
    const band_rows rows = split_band_scratch(bundle->scratch, task.src_width);
    task.scratch = rows.filter;
    for (int32_t row = bundle->begin; row < bundle->end;) {
        const strip s = next_strip(bundle, row);
        int32_t first_row;
        place_reduction(&s, &task, &first_row);
        task.src = read_rows(fine, first_row, task.src_rows, task.src_width, rows.cut_src);
        task.dst = result_row(coarse, s.begin, task.dst_width, NULL);
        ImageReduce_BandC3(&task);
        row = s.end;
    }
}

static void reduce_mask(const band_bundle* bundle) {
    band_task task = bundle->mask_reduce;
    task.scratch = split_band_scratch(bundle->scratch, task.src_width).filter;
    for (int32_t row = bundle->begin; row < bundle->end;) {
        const strip s = next_strip(bundle, row);
        int32_t first_row;
        place_reduction(&s, &task, &first_row);
        task.src = bundle->mask + (size_t)first_row * (size_t)task.src_width;
        task.dst = bundle->coarse_mask + (size_t)s.begin * (size_t)task.dst_width;
        ImageReduce_BandC1(&task);
        row = s.end;
    }
}

void* band_bundle_src(void* arg) {
    const band_bundle* bundle = (const band_bundle*)arg;
    reduce_colours(bundle, &bundle->src, &bundle->coarse_src);
    return NULL;
}

void* band_bundle_dst(void* arg) {
    const band_bundle* bundle = (const band_bundle*)arg;
    reduce_colours(bundle, &bundle->dst, &bundle->coarse_dst);
    reduce_mask(bundle);
    return NULL;
}

void* band_bundle_prepare(void* arg) {
    const band_bundle* bundle = (const band_bundle*)arg;
    bundle->prepare->rows(bundle->prepare->arg, bundle->band, bundle->begin, bundle->end);
    share_work(bundle->beside);
    pool_signal_done(bundle->pool);
    return NULL;
}

void* band_bundle_build(void* arg) {
    band_bundle_src(arg);
    band_bundle_dst(arg);
    share_work(((const band_bundle*)arg)->beside);
    pool_signal_done(((const band_bundle*)arg)->pool);
    return NULL;
}

// Coarse rows wait in rings of three, already as wide as the finer level.
static uint8_t* ring_row(const band_rows* rows, size_t i, int32_t row, size_t row_bytes) {
    return rows->ring[i] + (size_t)(row % 3) * row_bytes;
}

// Coarse row `row` of all three pictures into the rings.
static void fill_rings(const band_bundle* bundle, int32_t row, const band_rows* rows) {
    const band_task* task = &bundle->expand;
    const picture* const coarse[3] = {&bundle->coarse_src, &bundle->coarse_dst,
                                      &bundle->coarse_result};
    for (size_t i = 0; i < 3; i++) {
        active_rows()->expand_row_c3(
            read_rows(coarse[i], row, 1, task->src_width, NULL), task->src_width,
            ring_row(rows, i, row, 3 * (size_t)task->dst_width), task->dst_width);
    }
}

// The rows of the rings around coarse row `row`, or the row alone where it is to be copied.
static coarse_rows rows_around(const band_bundle* bundle, size_t i, int32_t row, bool copied,
                               const band_rows* rows) {
    const size_t row_bytes = 3 * (size_t)bundle->expand.dst_width;
    const bool is_last = copied || row == bundle->expand.src_height - 1;
    coarse_rows around;
    around.above = ring_row(rows, i, row > 0 ? row - 1 : row, row_bytes);
    around.centre = ring_row(rows, i, row, row_bytes);
    around.below = ring_row(rows, i, is_last ? row : row + 1, row_bytes);
    return around;
}

// Row `row` of the result. Behind the rows of the last coarse row there may be one more, a copy:
// between the row and itself.
static void merge_row(const band_bundle* bundle, int32_t row, const band_rows* rows) {
    const int32_t width = bundle->expand.dst_width;
    const bool copied = row == 2 * bundle->expand.src_height;
    const int32_t coarse = copied ? row / 2 - 1 : row / 2;
    merge_rows inputs;
    inputs.mask = bundle->mask + (size_t)row * (size_t)width;
    inputs.src = read_rows(&bundle->src, row, 1, width, rows->cut_src);
    inputs.under = read_rows(&bundle->dst, row, 1, width, rows->cut_dst);
    inputs.coarse_src = rows_around(bundle, 0, coarse, copied, rows);
    inputs.coarse_under = rows_around(bundle, 1, coarse, copied, rows);
    inputs.coarse_result = rows_around(bundle, 2, coarse, copied, rows);
    uint8_t* out = result_row(&bundle->result, row, width, rows->out);
    ImageMerge_Byte3C(&inputs, copied || row % 2 == 1, out, width);
    store_row(&bundle->result, row, width, out);
}

void* band_bundle_collapse(void* arg) {
    const band_bundle* bundle = (const band_bundle*)arg;
    const band_rows rows = split_band_scratch(bundle->scratch, bundle->expand.dst_width);
    if (bundle->begin > 0) fill_rings(bundle, bundle->begin - 1, &rows);
    fill_rings(bundle, bundle->begin, &rows);
    for (int32_t row = bundle->begin; row < bundle->end; row++) {
        if (row + 1 < bundle->expand.src_height) fill_rings(bundle, row + 1, &rows);
        merge_row(bundle, 2 * row, &rows);
        merge_row(bundle, 2 * row + 1, &rows);
    }
    const bool is_last = bundle->end == bundle->expand.src_height;
    if (is_last && 2 * bundle->end < bundle->expand.dst_height) {
        merge_row(bundle, 2 * bundle->end, &rows);
    }
    pool_signal_done(bundle->pool);
    return NULL;
}

void* band_bundle_top(void* arg) {
    const band_bundle* bundle = (const band_bundle*)arg;
    band_task widen = bundle->widen;
    band_task blend = bundle->blend;
    const int32_t width = widen.src_width;
    const band_rows rows = split_band_scratch(bundle->scratch, width);
    for (int32_t row = bundle->begin; row < bundle->end; row++) {
        widen.src = read_rows(&bundle->src, row, 1, width, rows.cut_src);
        widen.dst_lap = rows.lap_src;
        ImageWiden_Byte3C(&widen);
        widen.src = read_rows(&bundle->dst, row, 1, width, rows.cut_dst);
        widen.dst_lap = rows.lap_dst;
        ImageWiden_Byte3C(&widen);
        blend.src = bundle->mask + (size_t)row * (size_t)width;
        blend.lap = rows.lap_src;
        blend.lap2 = blend.dst_lap = rows.lap_dst;
        ImageBlend_Short3C(&blend);
        uint8_t* out = result_row(&bundle->result, row, width, rows.out);
        narrow_plane_c3(rows.lap_dst, (uint32_t)width, 1, out);
        store_row(&bundle->result, row, width, out);
    }
    pool_signal_done(bundle->pool);
    return NULL;
}
