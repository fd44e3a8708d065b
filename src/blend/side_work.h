// Work that is cut into independent pieces and shared by whatever threads come along.
#ifndef IMAGEBLEND_BLEND_SIDE_WORK_H
#define IMAGEBLEND_BLEND_SIDE_WORK_H

#include <stddef.h>
#include <stdint.h>

typedef struct side_work {
    void (*piece)(void* arg, int32_t index);
    void* arg;
    int32_t count;  // pieces 0 .. count - 1
    int32_t next;   // the first that nobody has taken; changed atomically
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

#endif
