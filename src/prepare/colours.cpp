// SPDX-License-Identifier: Apache-2.0
#include "prepare/colours.h"

#include <string.h>

#include "memory.h"
#include "numeric.h"
#include "prepare/wide_means.h"

// The second means reach NEAR pixels; they are made in blocks of columns, of rows that have soft
// pixels in the block.
enum { NEAR = 5, BLOCK = 64, BLOCK_COLUMNS = BLOCK + 2 * NEAR };

typedef struct colour {
    float channel[3];
} colour;

// Colours of the object and of what is behind it, around one pixel.
typedef struct estimate {
    colour object, behind;
    colour ground;  // what is behind, by little but the pixels that show nothing else
} estimate;

static colour mean_colour(const uint32_t* sums, const colour* otherwise) {
    if (sums[SUM_WEIGHT] == 0) return *otherwise;
    const float weight = (float)sums[SUM_WEIGHT];
    colour mean;
    for (int c = 0; c < 3; c++)
        mean.channel[c] = (float)sums[c] / weight;
    return mean;
}

static colour colour_at(uint8_t* const planes[3], int64_t i) {
    return {{(float)planes[0][i], (float)planes[1][i], (float)planes[2][i]}};
}

// What is left of the picture after both colours, shared out by the squares of their parts.
typedef struct residual {
    float object, behind;
} residual;

static residual share(float seen, float object, float behind, float alpha) {
    const float rest = seen - alpha * object - (1.0f - alpha) * behind;
    const float norm = alpha * alpha + (1.0f - alpha) * (1.0f - alpha);
    return {alpha * rest / norm, (1.0f - alpha) * rest / norm};
}

static estimate wide_estimate(const colour_planes* planes, const wide_means* means, int64_t x,
                              int64_t y) {
    const uint32_t* sums = wide_sums(means, x, y);
    const colour seen = colour_at(planes->seen, y * planes->width + x);
    estimate wide;
    wide.object = mean_colour(sums + SUM_OBJECT, &seen);
    wide.behind = mean_colour(sums + SUM_BEHIND, &seen);
    wide.ground = wide.behind;
    return wide;
}

// What the near means are made of: the picture, or copies of it with better colours in soft pixels.
typedef struct examples {
    uint8_t *object[3], *behind[3];
    uint8_t* copies;  // the allocation, null if there is none
} examples;

static bool alloc_examples(const colour_planes* planes, bool through, examples* made) {
    const int64_t pixels = (int64_t)planes->width * planes->height;
    made->copies = through ? (uint8_t*)alloc_plane(pixels, 6, 1) : NULL;
    for (int c = 0; c < 3; c++) {
        const bool copied = made->copies != NULL;
        made->object[c] = copied ? made->copies + c * pixels : planes->seen[c];
        made->behind[c] = copied ? made->copies + (3 + c) * pixels : planes->seen[c];
    }
    return !through || made->copies != NULL;
}

// The examples of soft pixels are made from the wide means.
static void make_examples(const colour_planes* planes, const wide_means* means,
                          const examples* made) {
    const size_t pixels = (size_t)planes->width * (size_t)planes->height;
    for (int c = 0; c < 3; c++) {
        memcpy(made->object[c], planes->seen[c], pixels);
        memcpy(made->behind[c], planes->seen[c], pixels);
    }
    for (int64_t y = 0; y < planes->height; y++) {
        for (int64_t x = 0; x < planes->width; x++) {
            const int64_t i = y * planes->width + x;
            if (!planes->soft[i]) continue;
            const estimate wide = wide_estimate(planes, means, x, y);
            const float alpha = (float)planes->alpha[i] / 255.0f;
            for (int c = 0; c < 3; c++) {
                const float object = wide.object.channel[c], behind = wide.behind.channel[c];
                const residual rest = share((float)planes->seen[c][i], object, behind, alpha);
                made->object[c][i] = float_to_byte(object + rest.object);
                made->behind[c][i] = float_to_byte(behind + rest.behind);
            }
        }
    }
}

// 0 where alpha changes slowly around a pixel, 1 where it changes quickly.
static float steepness(const colour_planes* planes, int64_t x, int64_t y) {
    int lowest = 255, highest = 0;
    for (int64_t v = max_i64(y - 1, 0); v <= min_i64(y + 1, planes->height - 1); v++) {
        for (int64_t u = max_i64(x - 1, 0); u <= min_i64(x + 1, planes->width - 1); u++) {
            const int alpha = planes->alpha[v * planes->width + u];
            lowest = alpha < lowest ? alpha : lowest;
            highest = alpha > highest ? alpha : highest;
        }
    }
    const float range = (float)(highest - lowest);
    return range <= 16.0f ? 0.0f : (range >= 48.0f ? 1.0f : (range - 16.0f) / 32.0f);
}

static colour clean_through(const colour_planes* planes, int64_t x, int64_t y,
                            const estimate* near) {
    const int64_t i = y * planes->width + x;
    const float alpha = (float)planes->alpha[i] / 255.0f, steep = steepness(planes, x, y);
    colour clean;
    for (int c = 0; c < 3; c++) {
        const float seen = (float)planes->seen[c][i];
        const float object = near->object.channel[c], behind = near->behind.channel[c];
        const float shared = object + share(seen, object, behind, alpha).object;
        float direct = (seen - (1.0f - alpha) * near->ground.channel[c]) / alpha;
        direct = direct < 0.0f ? 0.0f : (direct > 255.0f ? 255.0f : direct);
        clean.channel[c] = steep * shared + (1.0f - steep) * direct;
    }
    return clean;
}

static colour clean_outline(const colour_planes* planes, int64_t i, const estimate* near) {
    const colour seen = colour_at(planes->seen, i);
    float along = 0.0f, length = 0.0f;
    for (int c = 0; c < 3; c++) {
        const float line = near->behind.channel[c] - near->object.channel[c];
        along += (seen.channel[c] - near->object.channel[c]) * line;
        length += line * line;
    }
    // Colours that are alike need no cleaning.
    if (length < 16.0f || along <= 0.0f) return seen;
    const float part = along / length;
    if (part >= 0.5f) return near->object;
    colour clean;
    for (int c = 0; c < 3; c++) {
        clean.channel[c] =
            seen.channel[c] + part * (near->object.channel[c] - near->behind.channel[c]);
    }
    return clean;
}

// How far the pixels of a steep edge are from the object's colours, by alpha: alike for clean
// pixels, growing as alpha falls for pixels that show what was behind them.
typedef struct edge_doubt {
    double faint, strong;
    int64_t faint_pixels, strong_pixels;
} edge_doubt;

static void note_doubt(const colour_planes* planes, int64_t x, int64_t y, const estimate* near,
                       edge_doubt* doubt) {
    const int64_t i = y * planes->width + x;
    const uint8_t alpha = planes->alpha[i];
    const bool faint = alpha >= 16 && alpha < 96, strong = alpha >= 160 && alpha < 240;
    if ((!faint && !strong) || steepness(planes, x, y) < 1.0f) return;
    float difference = 0.0f;
    for (int c = 0; c < 3; c++) {
        const float channel = (float)planes->seen[c][i] - near->object.channel[c];
        difference += channel < 0.0f ? -channel : channel;
    }
    (faint ? doubt->faint : doubt->strong) += (double)difference;
    (faint ? doubt->faint_pixels : doubt->strong_pixels)++;
}

static bool edge_is_clean(const edge_doubt* doubt) {
    if (doubt->faint_pixels < 16 || doubt->strong_pixels < 16) return true;
    const double faint = doubt->faint / (double)doubt->faint_pixels;
    const double strong = doubt->strong / (double)doubt->strong_pixels;
    return faint < 1.6 * strong + 8.0;
}

// Everything that the blocks share.
typedef struct cleaning {
    const colour_planes* planes;
    const wide_means* means;
    const examples* samples;
    int32_t how;
    uint8_t* object;  // result, 4 bytes a pixel
    edge_doubt doubt;
} cleaning;

// Sums of columns over the rows within reach, for the columns of one block.
typedef struct block {
    int64_t left, columns;  // columns of the planes
    uint32_t sums[SUMS][BLOCK_COLUMNS];
} block;

static void add_weighed(const uint8_t* values, const uint8_t* weights, int64_t count,
                        uint32_t factor, uint32_t* __restrict sums) {
    for (int64_t x = 0; x < count; x++)
        sums[x] += factor * ((uint32_t)values[x] * weights[x]);
}

static void add_weights(const uint8_t* weights, int64_t count, uint32_t factor,
                        uint32_t* __restrict sums) {
    for (int64_t x = 0; x < count; x++)
        sums[x] += factor * weights[x];
}

// `factor` is 1, or the largest number to take the row away again.
static void add_row(const cleaning* work, int64_t y, uint32_t factor, block* to) {
    const colour_planes* planes = work->planes;
    if (y < 0 || y >= planes->height) return;
    const int64_t first = y * planes->width + to->left;
    const uint8_t *object = planes->object_weight + first, *behind = planes->behind_weight + first;
    for (int c = 0; c < 3; c++) {
        add_weighed(work->samples->object[c] + first, object, to->columns, factor,
                    to->sums[SUM_OBJECT + c]);
        add_weighed(work->samples->behind[c] + first, behind, to->columns, factor,
                    to->sums[SUM_BEHIND + c]);
    }
    add_weights(object, to->columns, factor, to->sums[SUM_OBJECT + SUM_WEIGHT]);
    add_weights(behind, to->columns, factor, to->sums[SUM_BEHIND + SUM_WEIGHT]);
}

// Weights by which near means count half: those of a pixel or two, and of a tenth of all.
static const float FEW = 2.0f * 255.0f, MANY = 12.0f * 255.0f;

static void move_towards(const colour* aim, float part, colour* from) {
    for (int c = 0; c < 3; c++)
        from->channel[c] += (aim->channel[c] - from->channel[c]) * part;
}

// Near means where there is enough to go by, wide ones elsewhere.
static estimate near_estimate(const cleaning* work, const block* from, int64_t x, int64_t y) {
    const int64_t begin = max_i64(x - NEAR - from->left, 0);
    const int64_t end = min_i64(x + NEAR + 1 - from->left, from->columns);
    uint32_t sums[SUMS] = {};
    for (int s = 0; s < SUMS; s++) {
        for (int64_t i = begin; i < end; i++)
            sums[s] += from->sums[s][i];
    }
    const estimate wide = wide_estimate(work->planes, work->means, x, y);
    estimate near;
    near.object = mean_colour(sums + SUM_OBJECT, &wide.object);
    near.behind = mean_colour(sums + SUM_BEHIND, &wide.behind);
    near.ground = near.behind;
    const float object_weight = (float)sums[SUM_OBJECT + SUM_WEIGHT];
    const float behind_weight = (float)sums[SUM_BEHIND + SUM_WEIGHT];
    move_towards(&wide.object, FEW / (FEW + object_weight), &near.object);
    move_towards(&wide.behind, FEW / (FEW + behind_weight), &near.behind);
    // Examples of what is behind that were made inside of a wide soft area hold some of it.
    move_towards(&wide.behind, MANY / (MANY + behind_weight), &near.ground);
    return near;
}

static void clean_pixel(cleaning* work, const block* from, int64_t x, int64_t y) {
    const colour_planes* planes = work->planes;
    const int64_t i = y * planes->width + x;
    if (planes->alpha[i] == 0) return;
    const estimate near = near_estimate(work, from, x, y);
    colour clean = near.object;
    if (work->how == COLOURS_THROUGH) clean = clean_through(planes, x, y, &near);
    if (work->how == COLOURS_OUTLINE) clean = clean_outline(planes, i, &near);
    if (work->how == COLOURS_CUT_OUT) note_doubt(planes, x, y, &near, &work->doubt);
    for (int c = 0; c < 3; c++)
        work->object[4 * i + 1 + c] = float_to_byte(clean.channel[c]);
}

static bool row_is_soft(const colour_planes* planes, int64_t left, int64_t right, int64_t y) {
    const uint8_t* soft = planes->soft + y * planes->width;
    int any = 0;
    for (int64_t x = left; x < right; x++)
        any |= soft[x];
    return any != 0;
}

static void clean_block(cleaning* work, int64_t left, int64_t right, block* sums) {
    const colour_planes* planes = work->planes;
    sums->left = max_i64(left - NEAR, 0);
    sums->columns = min_i64(right + NEAR, planes->width) - sums->left;
    int64_t summed = -2 * NEAR - 2;  // the row that the sums are around
    for (int64_t y = 0; y < planes->height; y++) {
        if (!row_is_soft(planes, left, right, y)) continue;
        if (y - summed > 2 * NEAR) {
            memset(sums->sums, 0, sizeof sums->sums);
            for (int64_t v = y - NEAR; v <= y + NEAR; v++)
                add_row(work, v, 1, sums);
        } else {
            for (int64_t v = summed + 1; v <= y; v++) {
                add_row(work, v + NEAR, 1, sums);
                add_row(work, v - NEAR - 1, UINT32_MAX, sums);
            }
        }
        summed = y;
        for (int64_t x = left; x < right; x++) {
            if (planes->soft[y * planes->width + x]) clean_pixel(work, sums, x, y);
        }
    }
}

static void copy_picture(const colour_planes* planes, uint8_t* __restrict object) {
    const int64_t pixels = (int64_t)planes->width * planes->height;
    const uint8_t* __restrict alpha = planes->alpha, * __restrict first = planes->seen[0];
    const uint8_t* __restrict second = planes->seen[1], * __restrict third = planes->seen[2];
    for (int64_t i = 0; i < pixels; i++) {
        const uint8_t all = alpha[i] != 0 ? 255 : 0;
        object[4 * i] = alpha[i];
        object[4 * i + 1] = first[i] & all;
        object[4 * i + 2] = second[i] & all;
        object[4 * i + 3] = third[i] & all;
    }
}

// Pixels of a clean edge keep their colours, but for the faintest, which say little.
static void keep_clean_edge(const colour_planes* planes, uint8_t* object) {
    const int64_t pixels = (int64_t)planes->width * planes->height;
    for (int64_t i = 0; i < pixels; i++, object += 4) {
        if (!planes->soft[i] || planes->alpha[i] == 0) continue;
        const int trust = planes->alpha[i] >= 48 ? 48 : planes->alpha[i];
        for (int c = 0; c < 3; c++) {
            const int seen = planes->seen[c][i];
            object[1 + c] = (uint8_t)((object[1 + c] * (48 - trust) + seen * trust + 24) / 48);
        }
    }
}

bool clean_colours(const colour_planes* planes, int32_t how, uint8_t* object) {
    wide_means means;
    if (!make_wide_means(planes, &means)) return false;
    examples samples;
    const bool through = how == COLOURS_THROUGH;
    block* sums = (block*)malloc(sizeof(block));
    const bool ready = alloc_examples(planes, through, &samples) && sums != NULL;
    if (ready) {
        if (through) make_examples(planes, &means, &samples);
        copy_picture(planes, object);
        cleaning work = {planes, &means, &samples, how, object, {0.0, 0.0, 0, 0}};
        for (int64_t left = 0; left < planes->width; left += BLOCK)
            clean_block(&work, left, min_i64(left + BLOCK, planes->width), sums);
        if (how == COLOURS_CUT_OUT && edge_is_clean(&work.doubt)) keep_clean_edge(planes, object);
    }
    free(samples.copies);
    free(sums);
    free_wide_means(&means);
    return ready;
}
