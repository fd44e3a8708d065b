// The two row filters that have to take pixels apart, in 512-bit vectors with byte permutes: one
// instruction gathers any 64 of 64 or 128 bytes, where 256-bit vectors shuffle halves. Everything
// else is bound by memory and stays as it is in avx2_rows.cpp.
#include "kernels/vector_rows.h"

#if defined(__AVX512VBMI__) && defined(__AVX512BW__) && defined(__AVX512VL__)

#if !defined(__clang__)
// The compiler's own header passes vectors on that it declares without a value.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

#include "kernels/avx2_vectors.h"

typedef __m512i bytes64;

static inline bytes64 load64(const uint8_t* p) {
    return _mm512_loadu_si512(p);
}

// Positions of a permute, computed once by the compiler.
typedef struct positions {
    uint8_t at[64];
} positions;

// Byte t of the output pairs: the sample of output t / 2, and for odd t the one a pixel further. 30
// outputs, ten pixels of every second source pixel.
static constexpr positions pair_positions(int first) {
    positions p = {};
    for (int t = 0; t < 60; t++) {
        const int output = t / 2;
        p.at[t] = (uint8_t)(first + 6 * (output / 3) + output % 3 + 3 * (t % 2));
    }
    return p;
}

// Byte t of an expanded row: from the even phases (0..63) or the odd ones (64..127), a pixel of
// each in turn.
static constexpr positions interleaved_positions(int begin) {
    positions p = {};
    for (int t = 0; t < 64; t++) {
        const int byte = begin + t, pixel = byte / 6, k = byte % 6;
        if (pixel < 20) p.at[t] = (uint8_t)(3 * pixel + (k < 3 ? k : 64 + k - 3));
    }
    return p;
}

static constexpr positions pairs = pair_positions(0), next_pairs = pair_positions(6);
static constexpr positions expanded_low = interleaved_positions(0);
static constexpr positions expanded_high = interleaved_positions(64);

static inline __m512i weigh(bytes64 gathered, int first, int second) {
    return _mm512_maddubs_epi16(gathered, _mm512_set1_epi16((short)(second * 256 + first)));
}

// Ten pixels a step. A step reads nine bytes behind its last centre, which leaves the last output
// to the edge.
static void reduce_row_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                          int32_t dst_width) {
    const int32_t inner = dst_width - 2;
    if (inner < 10) return avx2_reduce_row_c3(src, src_width, dst, dst_width);
    const bytes64 first = load64(pairs.at), next = load64(next_pairs.at);
    for_each_vector((size_t)inner, 10, [=](size_t i) {
        const uint8_t* s = src + 6 * (i + 1);
        const bytes64 here = load64(s);
        const __m512i outer =
            _mm512_add_epi16(weigh(_mm512_permutexvar_epi8(first, load64(s - 6)), 1, 4),
                             weigh(_mm512_permutexvar_epi8(next, here), 1, 0));
        const __m512i sum =
            _mm512_add_epi16(outer, weigh(_mm512_permutexvar_epi8(first, here), 6, 4));
        const __m512i rounded = _mm512_srli_epi16(_mm512_add_epi16(sum, _mm512_set1_epi16(8)), 4);
        _mm256_mask_storeu_epi8(dst + 3 * (i + 1), 0x3fffffff, _mm512_cvtepi16_epi8(rounded));
    });
    avx2_reduce_ends_c3(src, src_width, dst, dst_width);
}

// As in avx2_rows.cpp.
static inline bytes64 even_phase(bytes64 a, bytes64 b, bytes64 c) {
    const bytes64 ones = _mm512_set1_epi8(-1);
    const bytes64 ac = _mm512_avg_epu8(_mm512_xor_si512(a, ones), _mm512_xor_si512(c, ones));
    const bytes64 mean = _mm512_avg_epu8(_mm512_xor_si512(b, ones), ac);
    return _mm512_avg_epu8(b, _mm512_xor_si512(mean, ones));
}

// Twenty source pixels a step. A step reads nine bytes behind its last pixel, which leaves the last
// three to the edge.
static void expand_row_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                          int32_t dst_width) {
    const int32_t inner = src_width - 4;
    if (inner < 20) return avx2_expand_row_c3(src, src_width, dst, dst_width);
    const bytes64 low = load64(expanded_low.at), high = load64(expanded_high.at);
    for_each_vector((size_t)inner, 20, [=](size_t i) {
        const uint8_t* s = src + 3 * (i + 1);
        const bytes64 b = load64(s), c = load64(s + 3);
        const bytes64 even = even_phase(load64(s - 3), b, c);
        const bytes64 odd = _mm512_avg_epu8(b, c);
        uint8_t* out = dst + 6 * (i + 1);
        _mm512_storeu_si512(out, _mm512_permutex2var_epi8(even, low, odd));
        _mm512_mask_storeu_epi8(out + 64, 0x00ffffffffffffff,
                                _mm512_permutex2var_epi8(even, high, odd));
    });
    avx2_expand_ends_c3(src, src_width, dst, dst_width);
}

static constexpr row_ops wide_operations(void) {
    row_ops table = avx2_operations();
    table.name = "avx512";
    table.reduce_row_c3 = reduce_row_c3;
    table.expand_row_c3 = expand_row_c3;
    return table;
}

const row_ops* avx512_table(void) {
    static constexpr row_ops table = wide_operations();
    return &table;
}

#else

const row_ops* avx512_table(void) {
    return NULL;
}

#endif
