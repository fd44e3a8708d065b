// SPDX-License-Identifier: Apache-2.0
// Work that the blend's threads do beside or before the pyramid.
#ifndef IMAGEBLEND_BLEND_SIDE_WORK_H
#define IMAGEBLEND_BLEND_SIDE_WORK_H

#include <stddef.h>
#include <stdint.h>

// Work that is cut into independent pieces.
typedef struct side_work {
    void (*piece)(void* arg, int32_t index);
    void* arg;
    int32_t count;   // pieces 0 .. count - 1
    int64_t pixels;  // what all of it costs, in pixels of a blend
} side_work;

// Work on independent rows: rows [begin, end) by worker 0 .. 3, each of whom does one part at a
// time.
typedef struct row_work {
    void (*rows)(void* arg, int32_t worker, int32_t begin, int32_t end);
    void* arg;
    int32_t height;
    int64_t pixels;  // what all of it costs, in pixels of a blend
} row_work;

// All rows on the calling thread. Null is no work.
static inline void do_rows(const row_work* work) {
    if (work != NULL) work->rows(work->arg, 0, 0, work->height);
}

#endif
