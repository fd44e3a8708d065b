// SPDX-License-Identifier: Apache-2.0
// The vector path of 64-bit Arm, whose baseline has it.
#include "costs.h"
#include "kernels/arm/neon_rows.h"

const row_ops* machine_row_ops(int32_t rank) {
    static constexpr row_ops table = {
        "neon",
        ARM_PIXELS_A_MS,
        neon_reduce_row_c3,
        neon_reduce_row_c1,
        neon_expand_row_c3,
        neon_reduce_column,
        NULL,
        NULL,
        neon_merge_even,
        neon_merge_odd,
        neon_mix_rows,
        neon_resample_row_c3,
        neon_pack_rgb,
        neon_unpack_rgb,
        neon_turn_rgb,
        neon_turn_mask,
    };
    return rank == 0 ? &table : NULL;
}
