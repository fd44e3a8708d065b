#include "blend/whole_level.h"

#include "kernels/band_kernels.h"
#include "kernels/whole_plane.h"
#include "memory.h"

// Sizes of a level and the next coarser one.
typedef struct level_sizes {
    int32_t width, height, coarse_width, coarse_height;
} level_sizes;

static level_sizes sizes_of(const blend_workspace* ws, int32_t level) {
    const level_sizes sizes = {(int32_t)ws->level_width[level], (int32_t)ws->level_height[level],
                               (int32_t)ws->level_width[level + 1],
                               (int32_t)ws->level_height[level + 1]};
    return sizes;
}

static bool reduce(const level_sizes* z, const picture* fine, const picture* coarse) {
    return ImageDown_ByteC3(fine->pixels, z->width, z->height, coarse->pixels, z->coarse_width,
                            z->coarse_height) == 0;
}

bool build_whole_level(pyramid_run* run, int32_t level) {
    const level_sizes z = sizes_of(run->ws, level);
    return reduce(&z, &run->src[level], &run->src[level + 1]) &&
           reduce(&z, &run->dst[level], &run->dst[level + 1]) &&
           ImageDown_ByteNC(run->mask[level], z.width, z.height, run->ws->mask_levels[level + 1],
                            z.coarse_width, z.coarse_height) == 0;
}

static bool expand(const level_sizes* z, const picture* coarse, uint8_t* fine) {
    return ImageUp_ByteC3(coarse->pixels, z->coarse_width, z->coarse_height, fine, z->width,
                          z->height) == 0;
}

// One record serves the four kernels of the way up: each reads the planes that it needs.
static band_task whole_task(const level_sizes* z, const uint8_t* expanded) {
    static const pixel_layout layout_c3 = {0, 3}, layout_mask = {0, 1};
    band_task task = band_task();
    task.src_width = z->width;
    task.src_height = task.src_rows = z->height;
    task.src_geom = task.src2_geom = task.dst_geom = &layout_c3;
    task.mask_geom = &layout_mask;
    task.src2 = expanded;
    return task;
}

bool collapse_whole_level(pyramid_run* run, int32_t level) {
    const level_sizes z = sizes_of(run->ws, level);
    uint8_t* expanded = (uint8_t*)alloc_plane(z.width, z.height, 3);
    if (expanded == NULL) return false;
    band_task task = whole_task(&z, expanded);
    bool done = expand(&z, &run->src[level + 1], expanded);
    if (done) {
        task.src = run->src[level].pixels;
        task.dst_lap = run->ws->lap_src[level];
        ImageLaplace_Byte3C(&task);
        done = expand(&z, &run->dst[level + 1], expanded);
    }
    if (done) {
        task.src = run->dst[level].pixels;
        task.dst_lap = run->ws->lap_dst[level];
        ImageLaplace_Byte3C(&task);
        done = expand(&z, &run->result[level + 1], expanded);
    }
    if (done) {
        task.src = run->mask[level];
        task.lap = run->ws->lap_src[level];
        task.lap2 = task.dst_lap;
        ImageBlend_Short3C(&task);
        task.src = expanded;
        task.lap = task.dst_lap;
        task.dst = run->result[level].pixels;
        ImageCollapse_Short3C(&task);
    }
    free(expanded);
    return done;
}
