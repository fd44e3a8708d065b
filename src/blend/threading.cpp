// SPDX-License-Identifier: Apache-2.0
#include "blend/threading.h"

#include "costs.h"
#include "kernels/row_ops.h"

thread_limits find_thread_limits(void) {
    const int64_t a_ms = active_row_ops()->pixels_a_ms;
    const thread_limits limits = {a_ms * THREADED_US / 1000, a_ms * THREADED_STAGE_US / 1000,
                                  a_ms * PIECE_US / 1000};
    return limits;
}
