// SPDX-License-Identifier: Apache-2.0
#include "pool/team.h"

#include <time.h>

// How long a look for news lasts before the thread sleeps. Waking one takes about as long.
enum { LOOK_NS = 50000 };

static int64_t now_ns(void) {
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (int64_t)now.tv_sec * 1000000000 + now.tv_nsec;
}

// A ticket is the number of the stage << 48 | pieces taken from its front << 24 | pieces left.
enum { FRONT_SHIFT = 24, STAGE_SHIFT = 48 };

static int32_t left_of(uint64_t ticket) {
    return (int32_t)(ticket & TEAM_MAX_PIECES);
}

static int32_t front_of(uint64_t ticket) {
    return (int32_t)(ticket >> FRONT_SHIFT & TEAM_MAX_PIECES);
}

static bool has_pieces(const team* t) {
    return left_of(__atomic_load_n(&t->ticket, __ATOMIC_SEQ_CST)) > 0;
}

// Takes the next piece, the caller from the front and helpers from the back, so that in each stage
// a core meets rows which it has in its caches from the one before. False when none is left. The
// stage's record stays as it is until the piece is done.
static bool take_piece(team* t, int32_t worker, int32_t* index) {
    const uint64_t taken = worker == 0 ? ((uint64_t)1 << FRONT_SHIFT) - 1 : (uint64_t)-1;
    uint64_t seen = __atomic_load_n(&t->ticket, __ATOMIC_ACQUIRE);
    while (left_of(seen) > 0) {
        if (__atomic_compare_exchange_n(&t->ticket, &seen, seen + taken, true, __ATOMIC_ACQUIRE,
                                        __ATOMIC_ACQUIRE)) {
            *index = front_of(seen) + (worker == 0 ? 0 : left_of(seen) - 1);
            return true;
        }
    }
    return false;
}

// Who finishes the last piece wakes the caller, if it sleeps.
static void do_pieces(team* t, int32_t worker) {
    int32_t index;
    while (take_piece(t, worker, &index)) {
        const int32_t pieces = t->stage.pieces;
        t->stage.piece(t->stage.arg, worker, index);
        if (__atomic_add_fetch(&t->done, 1, __ATOMIC_SEQ_CST) == pieces &&
            __atomic_exchange_n(&t->sleeping, 0, __ATOMIC_SEQ_CST) == 1) {
            pool_signal_done(t->pool);
        }
    }
}

// Whether there is a piece to take before the look for it ends.
static bool find_pieces(const team* t) {
    const int64_t begin = now_ns();
    do {
        if (has_pieces(t)) return true;
        if (pool_is_stopping(t->pool)) return false;
    } while (now_ns() - begin < LOOK_NS);
    return false;
}

// The task of a helper. A stage that begins while it leaves is seen here or calls it anew, not
// both.
static void* help(void* arg) {
    team_helper* self = (team_helper*)arg;
    team* t = self->team;
    do {
        while (find_pieces(t))
            do_pieces(t, self->worker);
        __atomic_store_n(&self->present, 0, __ATOMIC_SEQ_CST);
    } while (has_pieces(t) && __atomic_exchange_n(&self->present, 1, __ATOMIC_SEQ_CST) == 0);
    return NULL;
}

static bool all_done(const team* t) {
    return __atomic_load_n(&t->done, __ATOMIC_SEQ_CST) == t->stage.pieces;
}

static void wait_for_helpers(team* t) {
    const int64_t begin = now_ns();
    do {
        if (all_done(t)) return;
    } while (now_ns() - begin < LOOK_NS);
    // A helper that was held up behind the last piece of an earlier stage may signal in this one.
    while (!all_done(t)) {
        pool_reset_done(t->pool);
        __atomic_store_n(&t->sleeping, 1, __ATOMIC_SEQ_CST);
        // The last piece may have ended just before; nobody signals then.
        if (all_done(t) && __atomic_exchange_n(&t->sleeping, 0, __ATOMIC_SEQ_CST) == 1) return;
        pool_wait_done(t->pool, 1);
    }
}

static void call_helpers(team* t) {
    for (int32_t k = 0; k < t->helpers; k++) {
        if (__atomic_exchange_n(&t->helper[k].present, 1, __ATOMIC_SEQ_CST) == 0) {
            pool_add_task(t->pool, help, &t->helper[k]);
        }
    }
}

void run_stage(team* t, const team_stage* stage) {
    if (t->pool == NULL || stage->pieces == 1 || stage->pieces > TEAM_MAX_PIECES) {
        for (int32_t i = 0; i < stage->pieces; i++)
            stage->piece(stage->arg, 0, i);
        return;
    }
    t->stage = *stage;
    __atomic_store_n(&t->done, 0, __ATOMIC_RELAXED);
    const uint64_t last = __atomic_load_n(&t->ticket, __ATOMIC_RELAXED) >> STAGE_SHIFT;
    __atomic_store_n(&t->ticket, (last + 1) << STAGE_SHIFT | (uint64_t)stage->pieces,
                     __ATOMIC_SEQ_CST);
    call_helpers(t);
    do_pieces(t, 0);
    wait_for_helpers(t);
}

void open_team(team* t, int32_t helpers) {
    *t = team();
    if (helpers < 1) return;
    thread_pool* pool = NULL;
    if (pool_init(&pool, helpers) != 0) return;
    t->pool = pool;
    t->helpers = helpers;
    for (int32_t k = 0; k < helpers; k++) {
        t->helper[k].team = t;
        t->helper[k].worker = k + 1;
    }
}

void close_team(team* t) {
    if (t->pool == NULL) return;
    pool_destroy(t->pool);
}
