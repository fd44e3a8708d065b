// SPDX-License-Identifier: Apache-2.0
// The vector path of WebAssembly: a module with vectors is refused as a whole where there are none.
#include "costs.h"
#include "kernels/wasm/simd128_rows.h"

const row_ops* machine_row_ops(int32_t rank) {
    static constexpr row_ops table = {
        "simd128",
        WASM_PIXELS_A_MS,
        simd128_reduce_row_c3,
        simd128_reduce_row_c1,
        simd128_expand_row_c3,
        simd128_reduce_column,
        NULL,
        NULL,
        simd128_merge_even,
        simd128_merge_odd,
        simd128_mix_rows,
        simd128_resample_row_c3,
        simd128_pack_rgb,
        simd128_unpack_rgb,
        plain_turn_rgb,
        plain_turn_mask,
    };
    return rank == 0 ? &table : NULL;
}
