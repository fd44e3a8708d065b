// SPDX-License-Identifier: Apache-2.0
#include "engine_choices.h"

#include "blend/threading.h"
#include "kernels/row_ops.h"
#include "pool/free_cores.h"

namespace {

int64_t threads_from = -1;
bool plain_is_forced = false;

}  // namespace

namespace support {

void use_threads_from(int64_t pixels) {
    threads_from = pixels;
}

void force_plain_rows(bool force) {
    plain_is_forced = force;
}

}  // namespace support

// The linker's names for find_thread_limits(), free_cores() and active_row_ops().
extern "C" {

thread_limits __real__Z18find_thread_limitsv();
int32_t __real__Z10free_coresv();
const row_ops* __real__Z14active_row_opsv();

thread_limits __wrap__Z18find_thread_limitsv() {
    if (threads_from < 0) return __real__Z18find_thread_limitsv();
    return {threads_from, 0, 1};
}

int32_t __wrap__Z10free_coresv() {
    return threads_from >= 0 ? 4 : __real__Z10free_coresv();
}

const row_ops* __wrap__Z14active_row_opsv() {
    return plain_is_forced ? &plain_rows : __real__Z14active_row_opsv();
}

}  // extern "C"
