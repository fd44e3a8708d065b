// SPDX-License-Identifier: Apache-2.0
#include "engine_choices.h"

#include "kernels/row_ops.h"

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

// The linker's names for least_threaded_pixels() and active_row_ops().
extern "C" {

int64_t __real__Z21least_threaded_pixelsv();
const row_ops* __real__Z14active_row_opsv();

int64_t __wrap__Z21least_threaded_pixelsv() {
    return threads_from >= 0 ? threads_from : __real__Z21least_threaded_pixelsv();
}

const row_ops* __wrap__Z14active_row_opsv() {
    return plain_is_forced ? &plain_rows : __real__Z14active_row_opsv();
}

}  // extern "C"
