// SPDX-License-Identifier: Apache-2.0
// When a blend uses threads, and how it cuts its work for them.
#ifndef IMAGEBLEND_BLEND_THREADING_H
#define IMAGEBLEND_BLEND_THREADING_H

#include <stdint.h>

// In pixels of a blend, at the speed of this processor.
typedef struct thread_limits {
    int64_t least_call;   // work of a call that is worth starting threads
    int64_t least_stage;  // work of a stage that is worth sharing
    int64_t piece;        // work of a piece of such a stage
} thread_limits;

thread_limits find_thread_limits(void);

#endif
