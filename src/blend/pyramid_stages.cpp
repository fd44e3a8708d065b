#include "blend/pyramid_stages.h"

#include "kernels/band_kernels.h"
#include "kernels/row_ops.h"
#include "kernels/whole_plane.h"

// Runs four tasks, on the pool where there is one, and returns when all are done.
static void run_stage(pyramid_run* run, void* (*routine)(void*), void* const args[BAND_COUNT]) {
    if (run->pool == NULL) {
        for (int32_t k = 0; k < BAND_COUNT; k++)
            routine(args[k]);
        return;
    }
    pool_reset_done(run->pool);
    for (int32_t k = 0; k < BAND_COUNT; k++)
        pool_add_task(run->pool, routine, args[k]);
    pool_wait_done(run->pool, BAND_COUNT);
}

static void run_bundles(pyramid_run* run, void* (*routine)(void*)) {
    void* args[BAND_COUNT];
    for (int32_t k = 0; k < BAND_COUNT; k++) {
        run->bundles[k].pool = run->pool;
        run->bundles[k].levels = run->levels;
        run->bundles[k].band = k;
        args[k] = &run->bundles[k];
    }
    run_stage(run, routine, args);
}

static int32_t level_width(const pyramid_run* run, int32_t level) {
    return (int32_t)run->ws->level_width[level];
}

static int32_t level_height(const pyramid_run* run, int32_t level) {
    return (int32_t)run->ws->level_height[level];
}

static int32_t position_of(int32_t band) {
    return band == 0 ? BAND_FIRST : (band == BAND_COUNT - 1 ? BAND_LAST : BAND_MIDDLE);
}

// First row of band k, and of the row after the last band, when each band but the last has `unit`.
static int32_t band_row(int32_t k, int32_t unit, int32_t height) {
    return k == BAND_COUNT ? height : k * unit;
}

// The reduction of rows [row, end) of a level, k-th band, with the overlap that the expansion of
// the same rows needs: one coarser row above and one below, filtered from two finer rows more.
// `channels` is 3 for colours and 1 for the mask. The rows go behind the scratch rows of the filter
// passes, and the band's own ones from there into `reduced`.
static void fill_reduce(const pyramid_run* run, int32_t level, int32_t k, int32_t channels,
                        const uint8_t* image, uint8_t* reduced, band_task* task,
                        band_publish* publish) {
    const int32_t height = level_height(run, level);
    const int32_t unit = height / 4 & ~1;
    const int32_t row = band_row(k, unit, height);
    const bool first = k == 0, last = k == BAND_COUNT - 1;
    const size_t src_bytes = (size_t)level_width(run, level) * (size_t)channels;
    const size_t dst_bytes = (size_t)level_width(run, level + 1) * (size_t)channels;

    *task = band_task();
    task->src = image + (size_t)(first ? 0 : row - 4) * src_bytes;
    task->src_width = level_width(run, level);
    task->src_height = height;
    task->src_rows = first ? unit + 3 : (last ? height - row + 4 : unit + 7);
    task->dst_width = level_width(run, level + 1);
    task->dst_height = level_height(run, level + 1);
    task->dst_rows = first ? unit / 2 + 1 : (last ? (height - row + 2) / 2 : unit / 2 + 2);
    task->band_pos = position_of(k);
    task->src_geom = task->dst_geom = channels == 3 ? &run->layout_c3 : &run->layout_mask;
    task->scratch = run->band_scratch[k];
    // The expansion reuses the scratch for rows of the level's own width while it reads these rows.
    const size_t filtered = (size_t)task->src_rows * dst_bytes;
    const size_t expanded = (size_t)task->dst_rows * src_bytes;
    task->dst = task->scratch + (filtered > expanded ? filtered : expanded);

    const int32_t own_end = last ? task->dst_height : (row + unit) / 2;
    publish->from = task->dst + (first ? 0 : dst_bytes);
    publish->to = reduced + (size_t)(row / 2) * dst_bytes;
    publish->bytes = (size_t)(own_end - row / 2) * dst_bytes;
}

// The expansion of the reduced rows, the difference to the level, and the widening of the top.
static void fill_laplace(const pyramid_run* run, int32_t level, int32_t k, const uint8_t* image,
                         int16_t* const* lap, band_bundle* bundle) {
    const int32_t height = level_height(run, level);
    const int32_t unit = height / 4 & ~1;
    const int32_t row = band_row(k, unit, height);
    const size_t row_elements = 3 * (size_t)level_width(run, level);
    const size_t offset = (size_t)row * row_elements;
    const band_task* reduce = &bundle->reduce;

    band_task* expand = &bundle->expand;
    *expand = band_task();
    expand->src = reduce->dst;
    expand->src_width = reduce->dst_width;
    expand->src_height = reduce->dst_height;
    expand->src_rows = reduce->dst_rows;
    expand->dst = run->ws->up_plane + offset;
    expand->dst_width = reduce->src_width;
    expand->dst_height = height;
    expand->band_pos = reduce->band_pos;
    expand->src_geom = expand->dst_geom = &run->layout_c3;
    expand->scratch = reduce->scratch;

    band_task* laplace = &bundle->laplace;
    *laplace = band_task();
    laplace->src = image + offset;
    laplace->src2 = expand->dst;
    laplace->src_width = reduce->src_width;
    laplace->src_height = height;
    laplace->src_rows = band_row(k + 1, unit, height) - row;
    laplace->dst_lap = lap[level] + offset;

    band_task* widen = &bundle->widen;
    *widen = band_task();
    widen->src = bundle->publish.from;
    widen->src_width = reduce->dst_width;
    widen->src_height = reduce->dst_height;
    widen->src_rows = (int32_t)(bundle->publish.bytes / (3 * (size_t)level_width(run, level + 1)));
    widen->dst_lap = lap[level + 1] + 3 * (size_t)(row / 2) * (size_t)reduce->dst_width;
}

static bool build_whole_level(pyramid_run* run, int32_t level, const uint8_t* image,
                              uint8_t* reduced, int16_t* const* lap, bool with_mask) {
    const row_ops* rows = active_rows();
    blend_workspace* ws = run->ws;
    const int32_t width = level_width(run, level), height = level_height(run, level);
    const int32_t half_width = level_width(run, level + 1);
    const int32_t half_height = level_height(run, level + 1);
    if (ImageDown_ByteC3(image, width, height, reduced, half_width, half_height) != 0 ||
        ImageUp_ByteC3(reduced, half_width, half_height, ws->up_plane, width, height) != 0) {
        return false;
    }
    rows->subtract(image, ws->up_plane, lap[level], 3 * (size_t)width * (size_t)height);
    if (level == run->levels - 1) {
        rows->widen(reduced, lap[level + 1], 3 * (size_t)half_width * (size_t)half_height);
    }
    return !with_mask || ImageDown_ByteNC(ws->mask_levels[level], width, height,
                                          ws->mask_levels[level + 1], half_width, half_height) == 0;
}

static bool fits_bands(const pyramid_run* run, int32_t level) {
    return level_width(run, level) > 0 && level_height(run, level) >= MIN_BAND_HEIGHT;
}

bool build_level(pyramid_run* run, int32_t level, const uint8_t* image, uint8_t* reduced,
                 int16_t* const* lap, bool with_mask) {
    if (!fits_bands(run, level)) {
        return build_whole_level(run, level, image, reduced, lap, with_mask);
    }
    for (int32_t k = 0; k < BAND_COUNT; k++) {
        band_bundle* bundle = &run->bundles[k];
        bundle->level = level;
        fill_reduce(run, level, k, 3, image, reduced, &bundle->reduce, &bundle->publish);
        fill_laplace(run, level, k, image, lap, bundle);
        if (with_mask) {
            fill_reduce(run, level, k, 1, run->ws->mask_levels[level],
                        run->ws->mask_levels[level + 1], &bundle->mask_reduce,
                        &bundle->publish_mask);
        }
    }
    run_bundles(run, with_mask ? band_bundle_dst : band_bundle_src);
    return true;
}

void blend_level(pyramid_run* run, int32_t level) {
    blend_workspace* ws = run->ws;
    const int32_t width = level_width(run, level), height = level_height(run, level);
    if (width < 1) return;
    const int32_t unit = height / 4;
    void* args[BAND_COUNT];
    for (int32_t k = 0; k < BAND_COUNT; k++) {
        const int32_t row = band_row(k, unit, height);
        const size_t offset = (size_t)row * (size_t)width;
        band_task* task = &run->blends[k];
        *task = band_task();
        task->src = ws->mask_levels[level] + offset;
        task->lap = ws->lap_src[level] + 3 * offset;
        task->lap2 = ws->lap_dst[level] + 3 * offset;
        task->dst_lap = ws->lap_dst[level] + 3 * offset;
        task->src_width = width;
        task->src_height = height;
        task->src_rows = band_row(k + 1, unit, height) - row;
        task->pool = run->pool;
        task->mask_geom = &run->layout_mask;
        task->src_geom = task->src2_geom = task->dst_geom = &run->layout_c3;
        args[k] = task;
    }
    run_stage(run, ImageBlend_Short3C, args);
}

// Coarse rows [row, end) of band k with one context row on each inner side, expanded and added to
// the finer level.
static void fill_collapse(const pyramid_run* run, int32_t level, int32_t k, const uint8_t* coarse,
                          uint8_t* fine, band_bundle* bundle) {
    const int32_t height = level_height(run, level);
    const int32_t fine_height = level_height(run, level - 1);
    const int32_t unit = height / 4;
    const int32_t row = band_row(k, unit, height);
    const bool first = k == 0, last = k == BAND_COUNT - 1;
    const int32_t read_from = first ? 0 : row - 1;
    const int32_t read_end = last ? height : row + unit + 1;
    const size_t offset = 2 * (size_t)row * 3 * (size_t)level_width(run, level - 1);

    band_task* expand = &bundle->expand;
    *expand = band_task();
    expand->src = coarse + (size_t)read_from * 3 * (size_t)level_width(run, level);
    expand->src_width = level_width(run, level);
    expand->src_height = height;
    expand->src_rows = read_end - read_from;
    expand->dst = run->ws->up_plane + offset;
    expand->dst_width = level_width(run, level - 1);
    expand->dst_height = fine_height;
    expand->band_pos = position_of(k);
    expand->src_geom = expand->dst_geom = &run->layout_c3;
    expand->scratch = run->band_scratch[k];

    band_task* collapse = &bundle->collapse;
    *collapse = band_task();
    collapse->src = expand->dst;
    collapse->lap = run->ws->lap_dst[level - 1] + offset;
    collapse->src_width = expand->dst_width;
    collapse->src_height = fine_height;
    collapse->src_rows = last ? fine_height - 2 * row : 2 * unit;
    collapse->dst = fine + offset;
}

bool collapse_level(pyramid_run* run, int32_t level, const uint8_t* coarse, uint8_t* fine) {
    if (!fits_bands(run, level - 1)) {
        blend_workspace* ws = run->ws;
        const int32_t fine_width = level_width(run, level - 1);
        const int32_t fine_height = level_height(run, level - 1);
        if (ImageUp_ByteC3(coarse, level_width(run, level), level_height(run, level), ws->up_plane,
                           fine_width, fine_height) != 0) {
            return false;
        }
        active_rows()->collapse(ws->lap_dst[level - 1], ws->up_plane, fine,
                                3 * (size_t)fine_width * (size_t)fine_height);
        return true;
    }
    for (int32_t k = 0; k < BAND_COUNT; k++) {
        run->bundles[k].level = level;
        fill_collapse(run, level, k, coarse, fine, &run->bundles[k]);
    }
    run_bundles(run, band_bundle_collapse);
    return true;
}
