// SPDX-License-Identifier: Apache-2.0
#include "blend/pyramid_blend.h"

#include "blend/band_bundle.h"
#include "blend/threading.h"
#include "costs.h"
#include "memory.h"

enum { BAND_COUNT = 4 };

// What all stages of one blend share.
typedef struct pyramid {
    pyramid_level levels[MAX_LEVELS + 1];  // the finest first
    int32_t top;                           // index of the coarsest
    thread_pool* pool;                     // null when everything runs in the caller
    int64_t least_stage_pixels;            // smaller levels run in the caller all the same
    side_work* beside;                     // may be null
    uint8_t* band_scratch[BAND_COUNT];
} pyramid;

// All work of the call, in pixels of a blend.
static int64_t work_pixels(const blend_workspace* ws, const blend_extras* extras) {
    int64_t pixels = (int64_t)ws->width * ws->height;
    for (const row_work* work : extras->prepare) {
        if (work != NULL) pixels += work->pixels;
    }
    return extras->beside != NULL ? pixels + extras->beside->pixels : pixels;
}

// The depth at which the next level would have a side below 2, at most the workspace's.
static int32_t buildable_levels(const blend_workspace* ws) {
    int32_t levels = 0;
    while (levels < (int32_t)ws->levels && ws->level_width[levels + 1] >= 2 &&
           ws->level_height[levels + 1] >= 2) {
        levels++;
    }
    return levels;
}

// The levels below the finest lie one behind the other in the workspace's byte planes: those of the
// source in down_plane, of the destination in down_plane2, of the result in up_plane.
static void place_levels(const blend_workspace* ws, pyramid* p) {
    size_t offset = 0;
    p->top = buildable_levels(ws);
    for (int32_t l = 0; l <= p->top; l++) {
        pyramid_level* level = &p->levels[l];
        level->width = (int32_t)ws->level_width[l];
        level->height = (int32_t)ws->level_height[l];
        if (l == 0) continue;
        level->src = packed_patch(ws->down_plane + offset, level->width, level->height);
        level->dst = packed_patch(ws->down_plane2 + offset, level->width, level->height);
        level->result = packed_patch(ws->up_plane + offset, level->width, level->height);
        level->mask = ws->mask_levels[l];
        offset += 3 * (size_t)level->width * (size_t)level->height;
    }
}

// The caller alone needs one scratch.
static bool alloc_band_scratch(pyramid* p) {
    const size_t bytes = band_scratch_bytes(p->levels[0].width);
    const int64_t count = p->pool != NULL ? BAND_COUNT : 1;
    uint8_t* scratch = (uint8_t*)alloc_plane((int64_t)bytes, count, 1);
    for (int32_t k = 0; k < BAND_COUNT && scratch != NULL; k++) {
        p->band_scratch[k] = scratch + (p->pool != NULL ? (size_t)k * bytes : 0);
    }
    return scratch != NULL;
}

// The first row of band k of `rows` rows; the last band takes the remainder.
static int32_t band_start(int32_t rows, int32_t k) {
    return k < BAND_COUNT ? k * (rows / BAND_COUNT) : rows;
}

// Runs a task for each of four arguments that lie `arg_bytes` apart on the pool's threads and
// returns when all are done.
static void run_bands(pyramid* p, void* (*routine)(void*), void* args, size_t arg_bytes) {
    pool_reset_done(p->pool);
    for (size_t k = 0; k < BAND_COUNT; k++)
        pool_add_task(p->pool, routine, (uint8_t*)args + k * arg_bytes);
    share_work(p->beside);
    pool_help(p->pool);
    pool_wait_done(p->pool, BAND_COUNT);
}

// A band of work on rows, as one pool task.
typedef struct row_band {
    const row_work* work;
    int32_t band;
    thread_pool* pool;
    side_work* beside;
} row_band;

static void* run_row_band(void* arg) {
    const row_band* task = (const row_band*)arg;
    const row_work* work = task->work;
    work->rows(work->arg, task->band, band_start(work->height, task->band),
               band_start(work->height, task->band + 1));
    share_work(task->beside);
    pool_signal_done(task->pool);
    return NULL;
}

static void run_rows(pyramid* p, const row_work* work) {
    row_band bands[BAND_COUNT];
    for (int32_t k = 0; k < BAND_COUNT; k++)
        bands[k] = {work, k, p->pool, p->beside};
    run_bands(p, run_row_band, bands, sizeof bands[0]);
}

// Whether a stage of the level is worth waking threads and waiting for them; the caller does it
// whole otherwise. The finest level has all other work beside or before it.
static bool uses_threads(const pyramid* p, int32_t level) {
    const int64_t pixels = (int64_t)p->levels[level].width * p->levels[level].height;
    return p->pool != NULL && (level == 0 || pixels >= p->least_stage_pixels);
}

// A step between `level` and the next coarser one.
static void run_step(pyramid* p, int32_t level, void* (*routine)(void*)) {
    const pyramid_level *fine = &p->levels[level], *coarse = &p->levels[level + 1];
    if (!uses_threads(p, level)) {
        band_bundle whole = {fine, coarse, 0, coarse->height, p->band_scratch[0], p->beside, NULL};
        routine(&whole);
        return;
    }
    band_bundle bundles[BAND_COUNT];
    for (int32_t k = 0; k < BAND_COUNT; k++) {
        bundles[k] = {fine,
                      coarse,
                      band_start(coarse->height, k),
                      band_start(coarse->height, k + 1),
                      p->band_scratch[k],
                      p->beside,
                      p->pool};
    }
    run_bands(p, routine, bundles, sizeof bundles[0]);
}

static void merge_top_band(void* arg, int32_t band, int32_t begin, int32_t end) {
    const pyramid* p = (const pyramid*)arg;
    merge_top_rows(&p->levels[p->top], begin, end, p->band_scratch[band]);
}

static void run_stages(pyramid* p, const blend_extras* extras) {
    for (const row_work* work : extras->prepare) {
        if (work != NULL && p->pool != NULL) run_rows(p, work);
        if (p->pool == NULL) do_rows(work);
    }
    // With a single level the first stage writes the result already.
    if (p->top == 0) share_work(p->beside);
    for (int32_t l = 0; l < p->top; l++)
        run_step(p, l, band_bundle_down);
    const row_work top = {merge_top_band, p, p->levels[p->top].height, 0};
    if (uses_threads(p, p->top)) {
        run_rows(p, &top);
    } else {
        do_rows(&top);
    }
    for (int32_t l = p->top - 1; l >= 0; l--)
        run_step(p, l, band_bundle_collapse);
}

int32_t pyramid_blend(const patch* src, const patch* dst, const uint8_t* mask, const patch* result,
                      blend_workspace* ws, const blend_extras* extras) {
    static const blend_extras none = {{NULL, NULL}, NULL};
    if (extras == NULL) extras = &none;
    pyramid p;
    place_levels(ws, &p);
    p.levels[0].src = *src;
    p.levels[0].dst = *dst;
    p.levels[0].result = *result;
    p.levels[0].mask = (uint8_t*)(uintptr_t)mask;  // only read
    p.beside = extras->beside;
    p.pool = NULL;
    p.least_stage_pixels = 0;
    p.band_scratch[0] = NULL;
    const int64_t threaded_pixels = least_threaded_pixels();
    if (work_pixels(ws, extras) >= threaded_pixels) {
        thread_pool* pool = NULL;
        if (pool_init(&pool, BAND_COUNT) == 0) p.pool = pool;
        p.least_stage_pixels = threaded_pixels / THREADED_STAGE_PARTS;
    }
    const bool done = alloc_band_scratch(&p);
    if (done) run_stages(&p, extras);
    if (p.pool != NULL) pool_destroy(p.pool);
    free(p.band_scratch[0]);
    return done ? 0 : -1;
}
