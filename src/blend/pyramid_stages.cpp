// The stages of a pyramid blend: how a level is cut into bands and what each band's kernels get.
#include "blend/pyramid_run.h"
#include "blend/whole_level.h"

static int32_t level_width(const pyramid_run* run, int32_t level) {
    return (int32_t)run->ws->level_width[level];
}

static int32_t level_height(const pyramid_run* run, int32_t level) {
    return (int32_t)run->ws->level_height[level];
}

// Runs a task for each band, where the bundles say, and returns when all four are done.
static void run_stage(pyramid_run* run, void* (*routine)(void*)) {
    if (run->band_bundles[0].pool == NULL) {
        for (int32_t k = 0; k < BAND_COUNT; k++)
            routine(&run->band_bundles[k]);
        return;
    }
    pool_reset_done(run->pool);
    for (int32_t k = 0; k < BAND_COUNT; k++) {
        pool_add_task(run->pool, routine, &run->band_bundles[k]);
    }
    share_work(run->beside);
    pool_help(run->pool);
    pool_wait_done(run->pool, BAND_COUNT);
}

// A record with the sizes of a step from one level to another.
static band_task step_task(const pyramid_run* run, int32_t from, int32_t to,
                           const pixel_layout* layout) {
    band_task task = band_task();
    task.src_width = level_width(run, from);
    task.src_height = level_height(run, from);
    task.dst_width = level_width(run, to);
    task.dst_height = level_height(run, to);
    task.src_geom = task.src2_geom = task.dst_geom = layout;
    task.mask_geom = &run->layout_mask;
    return task;
}

// A record for kernels that run on single rows of a level.
static band_task row_task(const pyramid_run* run, int32_t level) {
    band_task task = step_task(run, level, level, &run->layout_c3);
    task.src_rows = 1;
    return task;
}

// Where a stage of the level runs: in the caller, null, if its work is less than that of waking
// threads and waiting for them. The finest level has all other work beside or before it.
static thread_pool* stage_pool(const pyramid_run* run, int32_t level) {
    const int64_t pixels = (int64_t)level_width(run, level) * level_height(run, level);
    return level == 0 || pixels >= run->min_stage_pixels ? run->pool : NULL;
}

// Fills the bundle of band k, which has rows [begin, end) of the coarser level.
static void fill_bundle(pyramid_run* run, int32_t level, int32_t k, int32_t begin, int32_t end) {
    band_bundle* bundle = &run->band_bundles[k];
    *bundle = band_bundle();
    bundle->widen = bundle->blend = row_task(run, level);
    bundle->pool = stage_pool(run, level);
    bundle->beside = run->beside;
    bundle->band = k;
    bundle->begin = begin;
    bundle->end = end;
    bundle->src = run->src[level];
    bundle->dst = run->dst[level];
    bundle->result = run->result[level];
    bundle->mask = run->mask[level];
    bundle->scratch = run->band_scratch[k];
    if (level == run->levels) return;
    bundle->reduce = step_task(run, level, level + 1, &run->layout_c3);
    bundle->mask_reduce = step_task(run, level, level + 1, &run->layout_mask);
    bundle->expand = step_task(run, level + 1, level, &run->layout_c3);
    bundle->coarse_src = run->src[level + 1];
    bundle->coarse_dst = run->dst[level + 1];
    bundle->coarse_result = run->result[level + 1];
    bundle->coarse_mask = run->ws->mask_levels[level + 1];
}

// Cuts `rows` rows into four bands, the last of which takes the remainder.
static void fill_bundles(pyramid_run* run, int32_t level, int32_t rows) {
    const int32_t unit = rows / BAND_COUNT;
    for (int32_t k = 0; k < BAND_COUNT; k++) {
        fill_bundle(run, level, k, k * unit, k == BAND_COUNT - 1 ? rows : (k + 1) * unit);
    }
}

void prepare_source(pyramid_run* run, const row_work* work) {
    fill_bundles(run, 0, work->height);
    for (int32_t k = 0; k < BAND_COUNT; k++)
        run->band_bundles[k].prepare = work;
    run_stage(run, band_bundle_prepare);
}

static bool fits_bands(const pyramid_run* run, int32_t level) {
    return level_width(run, level) > 0 && level_height(run, level) >= MIN_BAND_HEIGHT;
}

bool build_level(pyramid_run* run, int32_t level) {
    if (!fits_bands(run, level)) return build_whole_level(run, level);
    fill_bundles(run, level, level_height(run, level + 1));
    run_stage(run, band_bundle_build);
    return true;
}

void blend_top(pyramid_run* run) {
    fill_bundles(run, run->levels, level_height(run, run->levels));
    run_stage(run, band_bundle_top);
}

bool collapse_level(pyramid_run* run, int32_t level) {
    if (!fits_bands(run, level)) return collapse_whole_level(run, level);
    fill_bundles(run, level, level_height(run, level + 1));
    run_stage(run, band_bundle_collapse);
    return true;
}
