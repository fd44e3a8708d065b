// SPDX-License-Identifier: Apache-2.0
// The threads of one call: the caller and up to three helpers from a pool, which work through
// stages of small pieces.
//
// Whoever is free takes the next piece, so a helper that the system does not run holds up nothing
// but a piece it has begun. Between stages both sides look for news without sleeping for some tens
// of microseconds; then a helper goes back to the pool, from where the next stage calls it, and the
// caller sleeps until the last piece is done.
#ifndef IMAGEBLEND_POOL_TEAM_H
#define IMAGEBLEND_POOL_TEAM_H

#include "pool/thread_pool.h"

// The caller is one of as many workers as a pool may have threads.
enum { TEAM_MAX_HELPERS = POOL_MAX_THREADS - 1, TEAM_MAX_PIECES = 0xFFFFFF };

// Pieces 0 .. pieces - 1, which may run in any order and at the same time. `worker` is 0 for the
// caller and 1 .. helpers for the others; no two pieces with the same worker run at once.
typedef struct team_stage {
    void (*piece)(void* arg, int32_t worker, int32_t index);
    void* arg;
    int32_t pieces;
} team_stage;

struct team;

typedef struct team_helper {
    struct team* team;
    int32_t worker;
    int32_t present;  // atomic: 1 while its task waits in the pool, works or looks for work
} team_helper;

typedef struct team {
    thread_pool* pool;  // null where the caller works alone
    int32_t helpers;
    team_stage stage;  // read only by who holds a piece of it
    uint64_t ticket;   // atomic: the stage's number and which of its pieces are left
    int32_t done;      // atomic: finished pieces of the stage
    int32_t sleeping;  // atomic: 1 while the caller waits for pool_signal_done
    team_helper helper[TEAM_MAX_HELPERS];
} team;

// Makes a team with up to `helpers` helpers, 0 .. TEAM_MAX_HELPERS; without any when no thread can
// be started. The record must stay where it is until close_team, which ends the threads.
void open_team(team* t, int32_t helpers);
void close_team(team* t);

// Runs a stage and returns when all pieces are done; what they wrote is seen by the caller and by
// all later stages. More than TEAM_MAX_PIECES run in the caller.
void run_stage(team* t, const team_stage* stage);

#endif
