// SPDX-License-Identifier: Apache-2.0
#include "pool/free_cores.h"

#include <fcntl.h>
#include <sched.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

// Threads that run or are about to, in the whole system and with the caller, or 0 where that is not
// told. The fourth field of the file is "running/all".
static int32_t running_threads(void) {
    const int file = open("/proc/loadavg", O_RDONLY | O_CLOEXEC);
    if (file < 0) return 0;
    char text[64];
    const ssize_t length = read(file, text, sizeof text - 1);
    close(file);
    if (length <= 0) return 0;
    text[length] = '\0';
    const char* slash = strchr(text, '/');
    while (slash != NULL && slash > text && slash[-1] != ' ')
        slash--;
    return slash != NULL ? atoi(slash) : 0;
}

// Cores of the whole system, or of this process where the C library knows no others: then fewer
// threads start beside busy ones elsewhere. Asked for once, as that opens another file.
static int32_t all_cores(void) {
    static int32_t known = 0;
    int32_t cores = __atomic_load_n(&known, __ATOMIC_RELAXED);
    if (cores == 0) {
        cores = (int32_t)sysconf(_SC_NPROCESSORS_ONLN);
        __atomic_store_n(&known, cores, __ATOMIC_RELAXED);
    }
    return cores;
}

int32_t free_cores(void) {
    cpu_set_t allowed;
    if (sched_getaffinity(0, sizeof allowed, &allowed) != 0) return 1;
    const int32_t mine = CPU_COUNT(&allowed);
    if (mine < 2) return 1;
    const int32_t running = running_threads();
    const int32_t others = running > 0 ? running - 1 : 0;
    const int32_t all = all_cores();
    const int32_t idle = (all > mine ? all : mine) - others;
    return idle < 1 ? 1 : idle < mine ? idle : mine;
}
