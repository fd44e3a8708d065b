// SPDX-License-Identifier: Apache-2.0
// In place of src/pool in a module of one thread: a team whose caller does all work.
#include "pool/free_cores.h"
#include "pool/team.h"

int32_t free_cores(void) {
    return 1;
}

void open_team(team* t, int32_t) {
    *t = team();
}

void close_team(team*) {}

void run_stage(team*, const team_stage* stage) {
    for (int32_t i = 0; i < stage->pieces; i++)
        stage->piece(stage->arg, 0, i);
}
