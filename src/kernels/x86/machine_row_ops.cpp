// Which of the vector paths of x86-64 this machine can run.
#include "kernels/vector_rows.h"

#if defined(__x86_64__)

#include <cpuid.h>

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

const row_ops* avx2_rows(void) {
    return machine_has() >= HAS_AVX2 ? avx2_table() : NULL;
}

const row_ops* avx512_rows(void) {
    return machine_has() >= HAS_AVX512 ? avx512_table() : NULL;
}

#else

const row_ops* avx2_rows(void) {
    return NULL;
}

const row_ops* avx512_rows(void) {
    return NULL;
}

#endif
