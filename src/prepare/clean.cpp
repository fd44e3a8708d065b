// SPDX-License-Identifier: Apache-2.0
#include <math.h>
#include <string.h>

#include "memory.h"
#include "numeric.h"
#include "prepare/alpha.h"
#include "prepare/colours.h"
#include "prepare/cut_out.h"
#include "prepare/distance.h"
#include "prepare/outline_fit.h"
#include "prepare/picture.h"

// Room around the object for the wide means of what is behind it.
enum { CLEAN_MARGIN = 48 };
// The outline of a soft mask that lies nearer to the picture's edge than this is better left alone:
// the fit is not more certain.
static const float certain_fit = 0.75f;
// Distances that the fit and the pixels along a moved outline need; grown, so much more.
enum { DISTANCE_FIT = 16 };
static_assert(DISTANCE_FIT + IMAGEBLEND_LARGEST_GROWTH <= DISTANCE_LONGEST,
              "a grown outline is in reach");

int32_t imageblend_clean_box(const imageblend_source* source, imageblend_box* box) {
    if (!source_is_valid(source) || box == NULL) return -1;
    const int32_t width = source->picture->width, height = source->picture->height;
    const bool own = source->mask == NULL;
    const uint8_t* row = own ? source->picture->data : source->mask->data;
    const int64_t step = own ? 4 : 1;
    int64_t left = width, right = 0, top = height, bottom = 0;
    for (int64_t y = 0; y < height; y++, row += width * step) {
        int64_t begin, end;
        find_seen(row, width, step, &begin, &end);
        if (begin == end) continue;
        left = min_i64(begin, left);
        right = max_i64(end, right);
        top = min_i64(y, top);
        bottom = y + 1;
    }
    *box = imageblend_box{0, 0, 0, 0};
    if (right == 0) return 0;
    box->left = (int32_t)max_i64(left - CLEAN_MARGIN, 0);
    box->top = (int32_t)max_i64(top - CLEAN_MARGIN, 0);
    box->width = (int32_t)min_i64(right + CLEAN_MARGIN, width) - box->left;
    box->height = (int32_t)min_i64(bottom + CLEAN_MARGIN, height) - box->top;
    return 0;
}

// One call of imageblend_clean. Planes have the box's size.
typedef struct clean_run {
    const imageblend_source* source;
    const imageblend_box* box;
    imageblend_findings findings;
    float inwards;      // pixels from the given outline to the one that comes out
    int16_t* distance;  // to the given outline
    colour_planes planes;
} clean_run;

// Alpha that passes 128 at the outline, `inwards` pixels from the one that the distance is to.
static uint8_t outline_alpha(int16_t distance, float inwards) {
    const float width = 1.5f;
    return float_to_byte(127.5f +
                         255.0f / width * ((float)distance / (float)DISTANCE_ONE - inwards));
}

static int64_t pixel_count(const clean_run* run) {
    return (int64_t)run->box->width * run->box->height;
}

static void split_row(const uint8_t* __restrict pixels, int64_t count, uint8_t* __restrict first,
                      uint8_t* __restrict second, uint8_t* __restrict third) {
    for (int64_t x = 0; x < count; x++) {
        first[x] = pixels[4 * x + 1];
        second[x] = pixels[4 * x + 2];
        third[x] = pixels[4 * x + 3];
    }
}

// Copies the colours into planes; divided by alpha where they are multiplied by it.
static void split_colours(const clean_run* run) {
    const blend_image* picture = run->source->picture;
    uint8_t* const* seen = run->planes.seen;
    const int64_t width = run->box->width, pixels = pixel_count(run);
    for (int64_t y = 0; y < run->box->height; y++) {
        const int64_t row = (run->box->top + y) * picture->width + run->box->left, to = y * width;
        split_row(picture->data + 4 * row, width, seen[0] + to, seen[1] + to, seen[2] + to);
    }
    if (!run->findings.premultiplied) return;
    for (int64_t i = 0; i < pixels; i++) {
        const uint8_t alpha = run->planes.alpha[i];
        for (int c = 0; alpha != 0 && c < 3; c++)
            seen[c][i] = divide_by_alpha(seen[c][i], alpha);
    }
}

static bool fit_and_note(clean_run* run) {
    outline_fit fit;
    if (!fit_outline(run->source->picture, run->box, run->distance, &fit)) return false;
    imageblend_findings* findings = &run->findings;
    findings->fit = fit.status;
    if (fit.status != IMAGEBLEND_FIT_KEPT) return true;
    const bool hard = findings->alpha == IMAGEBLEND_ALPHA_HARD;
    if (!hard && fabsf(fit.inwards) < certain_fit) return true;
    run->inwards = fit.inwards;
    findings->moved = -fit.inwards;
    if (fabsf(fit.inwards) >= certain_fit) findings->fit = IMAGEBLEND_FIT_MOVED;
    return true;
}

// What a pixel of some distance or alpha is given.
typedef struct pixel_marks {
    uint8_t alpha, object_weight, behind_weight, soft;
} pixel_marks;

// Distances that there are, and the one of 0 among them.
enum { ZERO_DISTANCE = DISTANCE_LONGEST * DISTANCE_ONE, DISTANCES = 2 * ZERO_DISTANCE + 1 };

// Moves softness that stays: the alpha of an outline that many pixels outside or inside is its
// upper or lower limit.
static void grow_alpha(const clean_run* run, float grow) {
    uint8_t limits[DISTANCES];
    for (int d = 0; d < DISTANCES; d++)
        limits[d] = outline_alpha((int16_t)(d - ZERO_DISTANCE), -grow);
    const int64_t pixels = pixel_count(run);
    for (int64_t i = 0; i < pixels; i++) {
        const uint8_t limit = limits[run->distance[i] + ZERO_DISTANCE];
        uint8_t* alpha = run->planes.alpha + i;
        if (grow > 0.0f ? limit > *alpha : limit < *alpha) *alpha = limit;
    }
}

static uint8_t weight_beyond(float depth) {
    return float_to_byte((depth - 0.5f) * (255.0f / 1.5f));
}

// Along an outline that is a guess, examples lie two pixels away from it.
static pixel_marks marks_of_distance(int distance, float inwards) {
    const float depth = (float)distance / (float)DISTANCE_ONE - inwards;
    const int alpha = outline_alpha((int16_t)distance, inwards);
    const int spare = alpha * alpha / (255 * 32), weight = weight_beyond(depth);
    return {(uint8_t)alpha, (uint8_t)(weight > spare ? weight : spare), weight_beyond(-depth),
            alpha > 0 && depth < 3.0f};
}

// Where alpha is right, it says what a pixel is an example of.
static pixel_marks marks_of_alpha(int alpha, bool sees_behind) {
    const int rest = 255 - alpha;
    const int object = alpha >= 250 ? 255 : (alpha * alpha + 255 * 15) / (255 * 16);
    const int behind = rest >= 250 ? 255 : (rest * rest + 255 * 63) / (255 * 64);
    return {(uint8_t)alpha, (uint8_t)object, (uint8_t)(sees_behind ? behind : 0),
            alpha > 0 && alpha < 255};
}

static void set_marks(const colour_planes* planes, int64_t i, pixel_marks marks) {
    planes->object_weight[i] = marks.object_weight;
    planes->behind_weight[i] = marks.behind_weight;
    planes->soft[i] = marks.soft;
}

// Draws alpha along the outline.
static void mark_outline(const clean_run* run) {
    pixel_marks marks[DISTANCES];
    for (int d = 0; d < DISTANCES; d++)
        marks[d] = marks_of_distance(d - ZERO_DISTANCE, run->inwards);
    const int64_t pixels = pixel_count(run);
    for (int64_t i = 0; i < pixels; i++) {
        const pixel_marks made = marks[run->distance[i] + ZERO_DISTANCE];
        run->planes.alpha[i] = made.alpha;
        set_marks(&run->planes, i, made);
    }
}

static void mark_softness(const clean_run* run, bool sees_behind) {
    pixel_marks marks[256];
    for (int alpha = 0; alpha < 256; alpha++)
        marks[alpha] = marks_of_alpha(alpha, sees_behind);
    const int64_t pixels = pixel_count(run);
    for (int64_t i = 0; i < pixels; i++)
        set_marks(&run->planes, i, marks[run->planes.alpha[i]]);
}

// From the given alpha to the one that comes out, and what is to be cleaned by it.
static bool find_alpha(clean_run* run, const imageblend_clean_options* options, int32_t* how) {
    imageblend_findings* findings = &run->findings;
    const int32_t kind = findings->alpha;
    const bool outlined = kind != IMAGEBLEND_ALPHA_SOFT, seen = findings->surroundings != 0;
    if (outlined || options->grow != 0.0f) {
        const int32_t reach = DISTANCE_FIT + (int32_t)ceilf(fabsf(options->grow));
        if (!signed_distance(run->planes.alpha, run->box->width, run->box->height, reach,
                             run->distance))
            return false;
    }
    if (outlined && seen && options->fit && !fit_and_note(run)) return false;

    const bool redrawn = kind == IMAGEBLEND_ALPHA_HARD || findings->fit == IMAGEBLEND_FIT_MOVED;
    run->inwards -= options->grow;
    if (redrawn) {
        mark_outline(run);
    } else if (options->grow != 0.0f) {
        grow_alpha(run, options->grow);
    }
    *how = !seen ? COLOURS_CUT_OUT : (redrawn ? COLOURS_OUTLINE : COLOURS_THROUGH);
    if (*how != COLOURS_OUTLINE) mark_softness(run, seen);
    return true;
}

// All planes from one allocation, which is returned.
static uint8_t* alloc_planes(clean_run* run) {
    const int64_t pixels = pixel_count(run);
    uint8_t* block = (uint8_t*)alloc_plane(pixels, 2 + 7, 1);
    if (block == NULL) return NULL;
    run->distance = (int16_t*)block;
    uint8_t* next = block + 2 * pixels;
    colour_planes* planes = &run->planes;
    planes->width = run->box->width;
    planes->height = run->box->height;
    uint8_t** all[] = {&planes->seen[0],       &planes->seen[1],       &planes->seen[2],
                       &planes->object_weight, &planes->behind_weight, &planes->alpha,
                       &planes->soft};
    for (uint8_t** plane : all) {
        *plane = next;
        next += pixels;
    }
    return block;
}

static bool box_is_inside(const imageblend_box* box, const blend_image* picture) {
    return box->left >= 0 && box->top >= 0 && box->width >= 1 && box->height >= 1 &&
           box->left <= picture->width - box->width && box->top <= picture->height - box->height;
}

int32_t imageblend_clean(const imageblend_source* source, const imageblend_clean_options* options,
                         const imageblend_box* box, blend_image* object,
                         imageblend_findings* findings) {
    if (!source_is_valid(source) || box == NULL || !box_is_inside(box, source->picture)) return -1;
    if (!has_size(object, box->width, box->height)) return -1;
    const imageblend_clean_options standard = {1, 0.0f};
    if (options == NULL) options = &standard;
    if (!(fabsf(options->grow) <= (float)IMAGEBLEND_LARGEST_GROWTH)) return -1;

    clean_run run = {source, box, {}, 0.0f, NULL, {}};
    uint8_t* planes = alloc_planes(&run);
    if (planes == NULL) return -1;
    copy_alpha(source, box, run.planes.alpha);
    run.findings.alpha = find_alpha_kind(run.planes.alpha, box->width, box->height);
    run.findings.surroundings =
        source->mask != NULL || shows_surroundings(source->picture, box) ? 1 : 0;
    if (!run.findings.surroundings)
        run.findings.premultiplied = is_premultiplied(source->picture, box) ? 1 : 0;
    split_colours(&run);
    int32_t how = COLOURS_CUT_OUT;
    const bool done =
        find_alpha(&run, options, &how) && clean_colours(&run.planes, how, object->data);
    free(planes);
    if (!done) return -1;
    if (findings != NULL) *findings = run.findings;
    return 0;
}
