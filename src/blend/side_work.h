// SPDX-License-Identifier: Apache-2.0
// Work that the blend's threads do beside or before the pyramid.
#ifndef IMAGEBLEND_BLEND_SIDE_WORK_H
#define IMAGEBLEND_BLEND_SIDE_WORK_H

#include <stddef.h>
#include <stdint.h>

// Work that is cut into independent pieces and shared by whatever threads come along.
typedef struct side_work {
    void (*piece)(void* arg, int32_t index);
    void* arg;
    int32_t count;   // pieces 0 .. count - 1
    int32_t next;    // the first that nobody has taken; changed atomically
    int64_t pixels;  // what all of it costs, in pixels of a blend
} side_work;

// Does pieces until none is left to take. When all threads that called it have returned, all pieces
// are done. Null is no work.
static inline void share_work(side_work* work) {
    if (work == NULL) return;
    int32_t index;
    while ((index = __atomic_fetch_add(&work->next, 1, __ATOMIC_RELAXED)) < work->count) {
        work->piece(work->arg, index);
    }
}

// Work on independent rows, a band of them on each thread: rows [begin, end) of band 0 .. 3.
typedef struct row_work {
    void (*rows)(void* arg, int32_t band, int32_t begin, int32_t end);
    void* arg;
    int32_t height;
    int64_t pixels;  // what all of it costs, in pixels of a blend
} row_work;

// All rows on the calling thread. Null is no work.
static inline void do_rows(const row_work* work) {
    if (work != NULL) work->rows(work->arg, 0, 0, work->height);
}

#endif
