// SPDX-License-Identifier: Apache-2.0
// Processors without a vector path.
#include "kernels/row_ops.h"

const row_ops* machine_row_ops(int32_t) {
    return NULL;
}
