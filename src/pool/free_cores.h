// SPDX-License-Identifier: Apache-2.0
// How many threads the system would run at once just now.
#ifndef IMAGEBLEND_POOL_FREE_CORES_H
#define IMAGEBLEND_POOL_FREE_CORES_H

#include <stdint.h>

// Cores on which the calling thread may run and that nothing else keeps busy, the caller's own
// among them: 1 or more. A thread for a busy core only starts when the system takes that core from
// somebody, milliseconds later. Where the system does not tell what is running, as on phones, every
// core counts as free. A snapshot that costs a few microseconds.
int32_t free_cores(void);

#endif
