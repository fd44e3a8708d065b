#include "blend/band_bundle.h"

#include "blend/row_conversion.h"
#include "kernels/band_filters.h"
#include "kernels/band_kernels.h"
#include "numeric.h"

// Rows of the coarser level in a strip, for a finer level of `width` pixels. More rows filter fewer
// overlap rows twice; fewer rows stay in a smaller cache: at most 300 KB up to a width of 1024.
static int32_t strip_rows(int32_t width) {
    return width <= 640 ? 16 : 8;
}
static size_t strip_fine_rows(int32_t width) {
    return 2 * (size_t)strip_rows(width) + 1;
}
static size_t reduce_rows(int32_t width) {
    return 2 * (size_t)strip_rows(width) + 4;
}

// Coarser levels of half the width need no more than the finest, even with strips twice as high.
size_t band_scratch_bytes(int32_t width) {
    const size_t rows = 2 * 2 + 2 * reduce_rows(width) + 1 + 3 * strip_fine_rows(width) + 1;
    return (rows * 3 * (size_t)width + 63) & ~(size_t)63;
}

band_rows split_band_scratch(uint8_t* scratch, int32_t width) {
    const size_t row_bytes = 3 * (size_t)width;
    band_rows rows;
    rows.lap_src = (int16_t*)scratch;
    rows.lap_dst = rows.lap_src + row_bytes;
    rows.filter = scratch + 4 * row_bytes;
    rows.cut_src = rows.filter + reduce_rows(width) * row_bytes;
    rows.cut_dst = rows.cut_src + reduce_rows(width) * row_bytes;
    rows.expanded[0] = rows.cut_dst + row_bytes;
    rows.expanded[1] = rows.expanded[0] + strip_fine_rows(width) * row_bytes;
    rows.expanded[2] = rows.expanded[1] + strip_fine_rows(width) * row_bytes;
    rows.out = rows.expanded[2] + strip_fine_rows(width) * row_bytes;
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
    s.end = (int32_t)min_i64(begin + strip_rows(bundle->expand.dst_width), bundle->end);
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

// Expands a strip of one coarse picture, with a context row on each inner side, into `fine`.
static void expand_strip(const band_bundle* bundle, const strip* s, const picture* coarse,
                         const band_rows* rows, uint8_t* fine) {
    band_task task = bundle->expand;
    const int32_t above = s->band_pos == BAND_FIRST ? 0 : 1;
    const int32_t below = s->band_pos == BAND_LAST ? 0 : 1;
    task.src_rows = s->end - s->begin + above + below;
    task.src = read_rows(coarse, s->begin - above, task.src_rows, task.src_width, NULL);
    task.dst = fine;
    task.band_pos = s->band_pos;
    task.scratch = rows->filter;
    ImageExpand_BandC3(&task);
}

// Row `row` of the result from row `index` of the expanded strips.
static void merge_row(const band_bundle* bundle, int32_t row, size_t index, const band_rows* rows) {
    const int32_t width = bundle->expand.dst_width;
    const size_t offset = index * 3 * (size_t)width;
    merge_rows inputs;
    inputs.mask = bundle->mask + (size_t)row * (size_t)width;
    inputs.src = read_rows(&bundle->src, row, 1, width, rows->cut_src);
    inputs.under = read_rows(&bundle->dst, row, 1, width, rows->cut_dst);
    inputs.expanded_src = rows->expanded[0] + offset;
    inputs.expanded_under = rows->expanded[1] + offset;
    inputs.expanded_result = rows->expanded[2] + offset;
    uint8_t* out = result_row(&bundle->result, row, width, rows->out);
    ImageMerge_Byte3C(&inputs, out, width);
    store_row(&bundle->result, row, width, out);
}

void* band_bundle_collapse(void* arg) {
    const band_bundle* bundle = (const band_bundle*)arg;
    const band_rows rows = split_band_scratch(bundle->scratch, bundle->expand.dst_width);
    const picture* const coarse[3] = {&bundle->coarse_src, &bundle->coarse_dst,
                                      &bundle->coarse_result};
    for (int32_t row = bundle->begin; row < bundle->end;) {
        const strip s = next_strip(bundle, row);
        for (size_t i = 0; i < 3; i++) {
            expand_strip(bundle, &s, coarse[i], &rows, rows.expanded[i]);
        }
        const int32_t fine_begin = 2 * s.begin;
        const int32_t fine_end = s.band_pos == BAND_LAST ? bundle->expand.dst_height : 2 * s.end;
        for (int32_t y = fine_begin; y < fine_end; y++) {
            merge_row(bundle, y, (size_t)(y - fine_begin), &rows);
        }
        row = s.end;
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
