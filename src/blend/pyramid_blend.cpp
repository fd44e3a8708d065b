// SPDX-License-Identifier: Apache-2.0
#include "blend/pyramid_blend.h"

#include "blend/band_bundle.h"
#include "blend/threading.h"
#include "costs.h"
#include "memory.h"
#include "numeric.h"
#include "pool/free_cores.h"
#include "pool/team.h"

// What all stages of one blend share.
typedef struct pyramid {
    pyramid_level levels[MAX_LEVELS + 1];  // the finest first
    int32_t top;                           // index of the coarsest
    team workers;
    thread_limits limits;
    const side_work* beside;  // null when it is done, or where there is none
    uint8_t* scratch;         // of each worker in turn
    size_t scratch_bytes;     // of one
} pyramid;

// All work of the call, in pixels of a blend.
static int64_t work_pixels(const blend_workspace* ws, const blend_extras* extras) {
    int64_t pixels = (int64_t)ws->width * ws->height + TURNED_PIXEL_COST * extras->turned_pixels;
    if (extras->prepare != NULL) pixels += extras->prepare->pixels;
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

static bool alloc_scratch(pyramid* p) {
    p->scratch_bytes = band_scratch_bytes(p->levels[0].width);
    p->scratch = (uint8_t*)alloc_plane((int64_t)p->scratch_bytes, p->workers.helpers + 1, 1);
    return p->scratch != NULL;
}

static uint8_t* scratch_of(const pyramid* p, int32_t worker) {
    return p->scratch + (size_t)worker * p->scratch_bytes;
}

// Rows of a stage that make a piece, a multiple of PIECE_ROWS; all where nobody shares the stage.
// `pixels` is what the stage costs.
static int32_t rows_in_piece(const pyramid* p, int32_t rows, int64_t pixels) {
    if (p->workers.helpers == 0 || pixels < p->limits.least_stage) return (int32_t)max_i64(rows, 1);
    const int64_t wanted = p->limits.piece * rows / max_i64(pixels, 1);
    return (int32_t)min_i64((wanted / PIECE_ROWS + 1) * PIECE_ROWS, max_i64(rows, 1));
}

static int32_t pieces_of(int32_t rows, int32_t rows_in_piece) {
    return (int32_t)(((int64_t)rows + rows_in_piece - 1) / rows_in_piece);
}

// A stage of work on rows, cut into pieces.
typedef struct row_stage {
    const row_work* work;
    int32_t rows;  // in a piece
} row_stage;

static void do_row_piece(void* arg, int32_t worker, int32_t index) {
    const row_stage* stage = (const row_stage*)arg;
    const row_work* work = stage->work;
    const int32_t begin = index * stage->rows;
    work->rows(work->arg, worker, begin,
               (int32_t)min_i64((int64_t)begin + stage->rows, work->height));
}

static void run_rows(pyramid* p, const row_work* work) {
    row_stage rows = {work, rows_in_piece(p, work->height, work->pixels)};
    const team_stage stage = {do_row_piece, &rows, pieces_of(work->height, rows.rows)};
    run_stage(&p->workers, &stage);
}

// A step between a level and the next coarser one, cut by the rows of the latter. The pieces of the
// work beside come behind those of the step.
typedef struct level_step {
    const pyramid* p;
    void (*rows)(const band_bundle* bundle);
    band_bundle all;     // without scratch
    int32_t piece_rows;  // of the coarser level
    int32_t pieces;
} level_step;

static void do_step_piece(void* arg, int32_t worker, int32_t index) {
    const level_step* step = (const level_step*)arg;
    if (index >= step->pieces) {
        const side_work* beside = step->p->beside;
        beside->piece(beside->arg, index - step->pieces);
        return;
    }
    band_bundle piece = step->all;
    piece.begin = index * step->piece_rows;
    piece.end = (int32_t)min_i64((int64_t)piece.begin + step->piece_rows, step->all.end);
    piece.scratch = scratch_of(step->p, worker);
    step->rows(&piece);
}

static void run_step(pyramid* p, int32_t level, void (*rows)(const band_bundle* bundle)) {
    const pyramid_level *fine = &p->levels[level], *coarse = &p->levels[level + 1];
    const int64_t pixels = (int64_t)fine->width * fine->height;
    level_step step = {p, rows, {fine, coarse, 0, coarse->height, NULL}, 0, 0};
    step.piece_rows = rows_in_piece(p, coarse->height, pixels);
    step.pieces = pieces_of(coarse->height, step.piece_rows);
    const int32_t others = p->beside != NULL ? p->beside->count : 0;
    const team_stage stage = {do_step_piece, &step, step.pieces + others};
    run_stage(&p->workers, &stage);
    p->beside = NULL;
}

static void do_side_piece(void* arg, int32_t, int32_t index) {
    const side_work* work = (const side_work*)arg;
    work->piece(work->arg, index);
}

// Where no way down does it.
static void run_side_work(pyramid* p) {
    if (p->beside == NULL) return;
    side_work work = *p->beside;
    const team_stage stage = {do_side_piece, &work, work.count};
    run_stage(&p->workers, &stage);
}

static void merge_top(void* arg, int32_t worker, int32_t begin, int32_t end) {
    const pyramid* p = (const pyramid*)arg;
    merge_top_rows(&p->levels[p->top], begin, end, scratch_of(p, worker));
}

static void run_stages(pyramid* p, const blend_extras* extras) {
    if (extras->prepare != NULL) run_rows(p, extras->prepare);
    for (int32_t l = 0; l < p->top; l++)
        run_step(p, l, band_bundle_down);
    // With a single level the first stage writes the result already.
    if (p->top == 0) run_side_work(p);
    const pyramid_level* top = &p->levels[p->top];
    const row_work merge = {merge_top, p, top->height, (int64_t)top->width * top->height};
    run_rows(p, &merge);
    for (int32_t l = p->top - 1; l >= 0; l--)
        run_step(p, l, band_bundle_collapse);
}

// Opens a team that suits the work, with the caller alone where it is small.
static void open_workers(pyramid* p, int64_t pixels) {
    int32_t helpers = 0;
    p->limits = find_thread_limits();
    if (pixels >= p->limits.least_call) {
        helpers = (int32_t)min_i64(free_cores() - 1, TEAM_MAX_HELPERS);
    }
    open_team(&p->workers, helpers);
}

int32_t pyramid_blend(const patch* src, const patch* dst, const uint8_t* mask, const patch* result,
                      blend_workspace* ws, const blend_extras* extras) {
    static const blend_extras none = {NULL, NULL, 0};
    if (extras == NULL) extras = &none;
    pyramid p;
    place_levels(ws, &p);
    p.levels[0].src = *src;
    p.levels[0].dst = *dst;
    p.levels[0].result = *result;
    p.levels[0].mask = (uint8_t*)(uintptr_t)mask;  // only read
    p.beside = extras->beside;
    open_workers(&p, work_pixels(ws, extras));
    const bool done = alloc_scratch(&p);
    if (done) run_stages(&p, extras);
    close_team(&p.workers);
    free(p.scratch);
    return done ? 0 : -1;
}
