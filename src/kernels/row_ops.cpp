// SPDX-License-Identifier: Apache-2.0
#include "kernels/row_ops.h"

const row_ops* active_row_ops(void) {
    const row_ops* ops = machine_row_ops(0);
    return ops != NULL ? ops : &plain_rows;
}
