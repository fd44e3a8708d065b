#include "blend/whole_level.h"

#include "kernels/row_ops.h"
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

bool collapse_whole_level(pyramid_run* run, int32_t level) {
    const row_ops* rows = active_rows();
    const level_sizes z = sizes_of(run->ws, level);
    const size_t pixels = (size_t)z.width * (size_t)z.height;
    int16_t* lap_src = run->ws->lap_src[level];
    int16_t* lap_dst = run->ws->lap_dst[level];
    uint8_t* expanded = (uint8_t*)alloc_plane(z.width, z.height, 3);
    bool done = expanded != NULL;
    if (done && (done = expand(&z, &run->src[level + 1], expanded))) {
        rows->subtract(run->src[level].pixels, expanded, lap_src, 3 * pixels);
    }
    if (done && (done = expand(&z, &run->dst[level + 1], expanded))) {
        rows->subtract(run->dst[level].pixels, expanded, lap_dst, 3 * pixels);
    }
    if (done && (done = expand(&z, &run->result[level + 1], expanded))) {
        rows->blend(run->mask[level], lap_src, lap_dst, lap_dst, pixels);
        rows->collapse(lap_dst, expanded, run->result[level].pixels, 3 * pixels);
    }
    free(expanded);
    return done;
}
