// SPDX-License-Identifier: Apache-2.0
// Which of the vector paths of x86-64 this machine can run.
#include <cpuid.h>

#include "costs.h"
#include "kernels/x86/x86_rows.h"

enum { HAS_NOTHING = 1, HAS_AVX2 = 2, HAS_AVX512 = 3 };

// Asks the processor which vectors it has, and whether the system keeps them across a switch.
static int32_t ask_machine(void) {
    unsigned a, b, c, d, kept, high;
    if (!__get_cpuid(1, &a, &b, &c, &d) || (c & bit_OSXSAVE) == 0) return HAS_NOTHING;
    __asm__("xgetbv" : "=a"(kept), "=d"(high) : "c"(0));
    if ((kept & 0x6) != 0x6 || !__get_cpuid_count(7, 0, &a, &b, &c, &d) || (b & bit_AVX2) == 0) {
        return HAS_NOTHING;
    }
    const unsigned wide = bit_AVX512F | bit_AVX512BW | bit_AVX512VL;
    const bool has_wide = (kept & 0xe6) == 0xe6 && (b & wide) == wide && (c & bit_AVX512VBMI) != 0;
    return has_wide ? HAS_AVX512 : HAS_AVX2;
}

// The question takes microseconds in a virtual machine, so the answer is kept.
static int32_t machine_has(void) {
    static int32_t answer = 0;
    int32_t known = __atomic_load_n(&answer, __ATOMIC_RELAXED);
    if (known == 0) {
        known = ask_machine();
        __atomic_store_n(&answer, known, __ATOMIC_RELAXED);
    }
    return known;
}

// What 256-bit vectors do.
static constexpr row_ops avx2_operations(void) {
    return {
        "avx2",
        X86_PIXELS_A_MS,
        avx2_reduce_row_c3,
        avx2_reduce_row_c1,
        avx2_expand_row_c3,
        avx2_reduce_column,
        NULL,
        NULL,
        avx2_merge_even,
        avx2_merge_odd,
        avx2_mix_rows,
        avx2_resample_row_c3,
        avx2_pack_rgb,
        avx2_unpack_rgb,
        avx2_turn_rgb,
        avx2_turn_mask,
    };
}

// What wider ones do better; the rest is left to the narrow ones.
static constexpr row_ops avx512_operations(void) {
    row_ops table = avx2_operations();
    table.name = "avx512";
    table.reduce_two_c3 = avx512_reduce_two_c3;
    table.reduce_two_c1 = avx512_reduce_two_c1;
    table.expand_row_c3 = avx512_expand_row_c3;
    table.merge_even = avx512_merge_even;
    table.merge_odd = avx512_merge_odd;
    return table;
}

const row_ops* machine_row_ops(int32_t rank) {
    static constexpr row_ops tables[] = {avx2_operations(), avx512_operations()};
    const int32_t best = machine_has() - HAS_AVX2;
    return rank >= 0 && rank <= best ? &tables[best - rank] : NULL;
}
