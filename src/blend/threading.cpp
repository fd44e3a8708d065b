// SPDX-License-Identifier: Apache-2.0
#include "blend/threading.h"

#include "costs.h"
#include "kernels/row_ops.h"

int64_t least_threaded_pixels(void) {
    return active_row_ops()->pixels_a_ms * THREADED_MS;
}
