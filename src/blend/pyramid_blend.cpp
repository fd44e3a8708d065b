#include "blend/pyramid_blend.h"

#include "blend/row_conversion.h"
#include "kernels/row_ops.h"
#include "memory.h"

static int64_t pool_pixels_of_tests = -1;

void use_pool_from(int64_t pixels) {
    pool_pixels_of_tests = pixels;
}

// Work of less than 2 ms is done sooner by the caller alone: starting and joining four threads
// takes 0.1 to 0.3 ms, and at most half of the work is saved where there are two cores.
static int64_t min_pool_pixels(void) {
    if (pool_pixels_of_tests >= 0) return pool_pixels_of_tests;
    return active_rows()->pixels_a_ms * 2;
}

// All work of the call, in pixels of a blend.
static int64_t work_pixels(const blend_workspace* ws, const pyramid_extras* extras) {
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

// The 8-bit levels below the finest lie one behind the other in the workspace's byte planes: those
// of the source in down_plane, of the destination in down_plane2, of the result in up_plane.
// Together they have a third of the finest level's pixels.
static void place_levels(pyramid_run* run, const uint8_t* mask) {
    blend_workspace* ws = run->ws;
    size_t offset = 0;
    run->mask[0] = mask;
    for (int32_t l = 1; l <= run->levels; l++) {
        const int32_t width = (int32_t)ws->level_width[l], height = (int32_t)ws->level_height[l];
        run->src[l] = packed_picture(ws->down_plane + offset, width, height);
        run->dst[l] = packed_picture(ws->down_plane2 + offset, width, height);
        run->result[l] = packed_picture(ws->up_plane + offset, width, height);
        run->mask[l] = ws->mask_levels[l];
        offset += 3 * (size_t)width * (size_t)height;
    }
}

// Without a pool the bands run one after the other and share one scratch.
static bool alloc_band_scratch(pyramid_run* run) {
    const size_t bytes = band_scratch_bytes((int32_t)run->ws->width);
    const int64_t count = run->pool != NULL ? BAND_COUNT : 1;
    uint8_t* scratch = (uint8_t*)alloc_plane((int64_t)bytes, count, 1);
    for (int32_t k = 0; k < BAND_COUNT && scratch != NULL; k++) {
        run->band_scratch[k] = scratch + (run->pool != NULL ? (size_t)k * bytes : 0);
    }
    return scratch != NULL;
}

static bool run_stages(pyramid_run* run, const pyramid_extras* extras) {
    for (const row_work* work : extras->prepare) {
        if (work != NULL) prepare_source(run, work);
    }
    // With a single level the first stage writes the result already.
    if (run->levels == 0) share_work(run->beside);
    for (int32_t l = 0; l < run->levels; l++) {
        if (!build_level(run, l)) return false;
    }
    blend_top(run);
    for (int32_t l = run->levels - 1; l >= 0; l--) {
        if (!collapse_level(run, l)) return false;
    }
    return true;
}

int32_t blend_pictures(const picture* src, const picture* dst, const uint8_t* mask,
                       const picture* result, blend_workspace* ws, const pyramid_extras* extras) {
    pyramid_run run = pyramid_run();
    run.ws = ws;
    run.levels = buildable_levels(ws);
    run.beside = extras->beside;
    run.layout_mask.step = 1;
    run.layout_c3.step = 3;
    run.src[0] = *src;
    run.dst[0] = *dst;
    run.result[0] = *result;
    place_levels(&run, mask);
    const int64_t pool_pixels = min_pool_pixels();
    if (work_pixels(ws, extras) >= pool_pixels) {
        thread_pool* pool = NULL;
        if (pool_init(&pool, BAND_COUNT) == 0) run.pool = pool;
        run.min_stage_pixels = pool_pixels / 4;  // handing a stage over costs 20 to 60 us
    }
    const bool done = alloc_band_scratch(&run) && run_stages(&run, extras);
    if (run.pool != NULL) pool_destroy(run.pool);
    free(run.band_scratch[0]);
    return done ? 0 : -1;
}

int32_t pyramid_blend(const uint8_t* src_patch, const uint8_t* dst_patch, const uint8_t* mask,
                      uint8_t* result_patch, uint8_t* scratch_patch, size_t patch_bytes,
                      blend_workspace* ws) {
    (void)scratch_patch;
    const int32_t width = (int32_t)ws->width, height = (int32_t)ws->height;
    if (ws->levels < 1) {
        active_rows()->blend(mask, ws->lap_src[0], ws->lap_dst[0], ws->lap_dst[0], patch_bytes / 3);
        narrow_plane_c3(ws->lap_dst[0], ws->width, height, result_patch);
        return 0;
    }
    // A picture is a place to read or to write; the two inputs are only read.
    const picture src = packed_picture((uint8_t*)(uintptr_t)src_patch, width, height);
    const picture dst = packed_picture((uint8_t*)(uintptr_t)dst_patch, width, height);
    const picture result = packed_picture(result_patch, width, height);
    const pyramid_extras extras = {{NULL, NULL}, NULL};
    return blend_pictures(&src, &dst, mask, &result, ws, &extras);
}
