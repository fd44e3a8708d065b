// The row operations in 256-bit vectors of x86-64. Built with the compiler's AVX2 option;
// x86_rows.cpp asks the processor before anything here runs.
//
// Rows of a vector and more end with one vector that overlaps the one before it, so no element is
// handled alone; shorter rows take the plain operations.
#include "kernels/vector_rows.h"

#if defined(__AVX2__)

#include "kernels/avx2_vectors.h"

static inline bytes32 average_up(bytes32 a, bytes32 b) {
    return _mm256_avg_epu8(a, b);
}
static inline bytes32 invert(bytes32 v) {
    return _mm256_xor_si256(v, _mm256_set1_epi8(-1));
}

// (a + 6 b + c + 4) >> 3: halving three times, rounding up only in the last step. The mean of
// inverted values is an inverted mean that is rounded down.
static inline bytes32 even_phase(bytes32 a, bytes32 b, bytes32 c) {
    const bytes32 ac = average_up(invert(a), invert(c));
    return average_up(b, invert(average_up(invert(b), ac)));
}

static inline __m256i weigh(bytes32 pairs, int first, int second) {
    return _mm256_maddubs_epi16(pairs, pair_weights(first, second));
}

// (t0 + 4 t1) + (6 t2 + 4 t3) + t4, rounded, for pairs (t0, t1), (t2, t3) and (t4, anything).
static inline __m256i reduce_pairs(bytes32 p01, bytes32 p23, bytes32 p4) {
    const __m256i sum = _mm256_add_epi16(_mm256_add_epi16(weigh(p01, 1, 4), weigh(p23, 6, 4)),
                                         _mm256_add_epi16(weigh(p4, 1, 0), _mm256_set1_epi16(8)));
    return _mm256_srli_epi16(sum, 4);
}

void avx2_reduce_column(const uint8_t* const taps[5], uint8_t* __restrict dst, size_t bytes) {
    if (bytes < 32) return plain_rows.reduce_column(taps, dst, bytes);
    for_each_vector(bytes, 32, [=](size_t i) {
        const bytes32 t0 = load(taps[0] + i), t1 = load(taps[1] + i), t2 = load(taps[2] + i);
        const bytes32 t3 = load(taps[3] + i), t4 = load(taps[4] + i);
        const __m256i low = reduce_pairs(_mm256_unpacklo_epi8(t0, t1), _mm256_unpacklo_epi8(t2, t3),
                                         _mm256_unpacklo_epi8(t4, t4));
        const __m256i high =
            reduce_pairs(_mm256_unpackhi_epi8(t0, t1), _mm256_unpackhi_epi8(t2, t3),
                         _mm256_unpackhi_epi8(t4, t4));
        store(dst + i, _mm256_packus_epi16(low, high));
    });
}

void avx2_expand_even(const uint8_t* a, const uint8_t* b, const uint8_t* c, uint8_t* __restrict dst,
                      size_t bytes) {
    if (bytes < 32) return plain_rows.expand_even(a, b, c, dst, bytes);
    for_each_vector(bytes, 32, [=](size_t i) {
        store(dst + i, even_phase(load(a + i), load(b + i), load(c + i)));
    });
}

void avx2_expand_odd(const uint8_t* b, const uint8_t* c, uint8_t* __restrict dst, size_t bytes) {
    if (bytes < 32) return plain_rows.expand_odd(b, c, dst, bytes);
    for_each_vector(bytes, 32,
                    [=](size_t i) { store(dst + i, average_up(load(b + i), load(c + i))); });
}

// 32 outputs a step. Output i + 1 is centred on sample 2i + 2; the reads of a step end three
// samples behind its last centre, so the last output is left to the edge.
void avx2_reduce_row_c1(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                        int32_t dst_width) {
    const int32_t inner = dst_width - 2;
    if (inner < 32) return plain_rows.reduce_row_c1(src, src_width, dst, dst_width);
    for_each_vector((size_t)inner, 32, [=](size_t i) {
        const uint8_t* s = src + 2 * i;
        const __m256i low = reduce_pairs(load(s), load(s + 2), load(s + 4));
        const __m256i high = reduce_pairs(load(s + 32), load(s + 34), load(s + 36));
        store(dst + 1 + i, pack_in_order(low, high));
    });
    reduce_ends_c1(src, src_width, dst, dst_width, dst_width - 1);
}

// The outputs of two pixels in each half: lanes 0 to 5, the others hold nothing. `s` is the first
// centre; bytes s - 6 to s + 30 are read.
static inline __m256i reduce_pixels(const uint8_t* s) {
    // Byte by byte a sample and the one a pixel further.
    const __m256i pairs = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(0, 3, 1, 4, 2, 5, 6, 9, 7, 10, 8, 11, -1, -1, -1, -1));
    // The samples a pixel further than the start of the load, each with a zero.
    const __m256i singles = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(3, -1, 4, -1, 5, -1, 9, -1, 10, -1, 11, -1, -1, -1, -1, -1));
    return reduce_pairs(_mm256_shuffle_epi8(load_halves(s - 6, s + 6), pairs),
                        _mm256_shuffle_epi8(load_halves(s, s + 12), pairs),
                        _mm256_shuffle_epi8(load_halves(s + 3, s + 15), singles));
}

// The first two and the last two outputs of a row, where neighbours repeat, in a half each;
// dst_width >= 4. The last two come from 16 bytes from the first sample on that they reach, and
// from 16 that end with the row's last pair of samples, or with the sample behind it where there is
// one.
void avx2_reduce_ends_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                         int32_t dst_width) {
    const __m256i pairs01 = _mm256_setr_epi8(0, 0, 1, 1, 2, 2, 0, 3, 1, 4, 2, 5, -1, -1, -1, -1,  //
                                             0, 3, 1, 4, 2, 5, 6, 9, 7, 10, 8, 11, -1, -1, -1, -1);
    const __m256i pairs23 =
        _mm256_setr_epi8(0, 3, 1, 4, 2, 5, 6, 9, 7, 10, 8, 11, -1, -1, -1, -1,  //
                         4, 7, 5, 8, 6, 9, 10, 13, 11, 14, 12, 15, -1, -1, -1, -1);
    const __m256i singles4 =
        _mm256_setr_epi8(6, -1, 7, -1, 8, -1, 12, -1, 13, -1, 14, -1, -1, -1, -1, -1,  //
                         7, -1, 8, -1, 9, -1, 13, -1, 14, -1, 15, -1, -1, -1, -1, -1);
    const __m256i folded4 =
        _mm256_setr_epi8(6, -1, 7, -1, 8, -1, 12, -1, 13, -1, 14, -1, -1, -1, -1, -1,  //
                         10, -1, 11, -1, 12, -1, 13, -1, 14, -1, 15, -1, -1, -1, -1, -1);
    const uint8_t* end = src + 6 * (ptrdiff_t)dst_width;
    const bool folds = 2 * (int64_t)dst_width == src_width;
    const bytes32 p4 = folds ? _mm256_shuffle_epi8(load_halves(src, end - 16), folded4)
                             : _mm256_shuffle_epi8(load_halves(src, end - 13), singles4);
    const __m256i values =
        reduce_pairs(_mm256_shuffle_epi8(load_halves(src, end - 18), pairs01),
                     _mm256_shuffle_epi8(load_halves(src, end - 16), pairs23), p4);
    const __m256i outputs = _mm256_packus_epi16(values, values);
    store6(dst, _mm256_castsi256_si128(outputs));
    store6(dst + 3 * ((ptrdiff_t)dst_width - 2), _mm256_extracti128_si256(outputs, 1));
}

// Eight pixels a step. The reads of a step end 12 bytes behind its last centre, so the last two
// outputs are left to the edge.
void avx2_reduce_row_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                        int32_t dst_width) {
    const int32_t inner = dst_width - 3;
    if (inner < 8) return plain_rows.reduce_row_c3(src, src_width, dst, dst_width);
    const __m256i close_up = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(0, 1, 2, 3, 4, 5, 8, 9, 10, 11, 12, 13, -1, -1, -1, -1));
    for_each_vector((size_t)inner, 8, [=](size_t i) {
        const uint8_t* s = src + 6 * (i + 1);
        const bytes32 outputs = pack_in_order(reduce_pixels(s), reduce_pixels(s + 24));
        store_two_twelves(dst + 3 * (i + 1), _mm256_shuffle_epi8(outputs, close_up));
    });
    avx2_reduce_ends_c3(src, src_width, dst, dst_width);
}

// Five even and five odd pixels in turn, 30 bytes: where bytes 0..15 and bytes 14..29 of them come
// from, among the even ones and among the odd ones; NO takes nothing.
enum { NO = 0x80 };
static const uint8_t turn_even[2][16] = {
    {0, 1, 2, NO, NO, NO, 3, 4, 5, NO, NO, NO, 6, 7, 8, NO},
    {8, NO, NO, NO, 9, 10, 11, NO, NO, NO, 12, 13, 14, NO, NO, NO},
};
static const uint8_t turn_odd[2][16] = {
    {NO, NO, NO, 0, 1, 2, NO, NO, NO, 3, 4, 5, NO, NO, NO, 6},
    {NO, 6, 7, 8, NO, NO, NO, 9, 10, 11, NO, NO, NO, 12, 13, 14},
};

// The outputs of five source pixels, 30 bytes: b holds them, a the pixels before and c those
// behind.
static inline void expand_five(__m128i a, __m128i b, __m128i c, uint8_t* dst) {
    const __m128i odd = _mm_avg_epu8(b, c);
    const __m128i even = _mm256_castsi256_si128(even_phase(
        _mm256_castsi128_si256(a), _mm256_castsi128_si256(b), _mm256_castsi128_si256(c)));
    for (int k = 0; k < 2; k++) {
        store16(dst + 14 * k, _mm_or_si128(_mm_shuffle_epi8(even, load16(turn_even[k])),
                                           _mm_shuffle_epi8(odd, load16(turn_odd[k]))));
    }
}

// The first five and the last five pixels, where neighbours repeat; src_width >= 6.
void avx2_expand_ends_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                         int32_t dst_width) {
    const __m128i repeat_first = _mm_setr_epi8(0, 1, 2, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12);
    const __m128i repeat_last =
        _mm_setr_epi8(3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 12, 13, 14, 15);
    const __m128i first = load16(src);
    expand_five(_mm_shuffle_epi8(first, repeat_first), first, load16(src + 3), dst);
    // Sixteen bytes that end with the row; the first belongs to no pixel of the five.
    const uint8_t* s = src + 3 * (ptrdiff_t)src_width - 16;
    const __m128i last = _mm_srli_si128(load16(s), 1);
    expand_five(load16(s - 2), last, _mm_shuffle_epi8(last, repeat_last),
                dst + 6 * ((ptrdiff_t)src_width - 5));
    expand_surplus_c3(src, src_width, dst, dst_width);
}

static inline bytes32 both_halves(const uint8_t* p) {
    return _mm256_broadcastsi128_si256(load16(p));
}

// Ten source pixels a step, five in each half. A step reads 3 bytes before and 4 behind them.
void avx2_expand_row_c3(const uint8_t* __restrict src, int32_t src_width, uint8_t* __restrict dst,
                        int32_t dst_width) {
    const int32_t inner = src_width - 3;
    if (inner < 10) return plain_rows.expand_row_c3(src, src_width, dst, dst_width);
    const bytes32 even_first = both_halves(turn_even[0]), even_last = both_halves(turn_even[1]);
    const bytes32 odd_first = both_halves(turn_odd[0]), odd_last = both_halves(turn_odd[1]);
    for_each_vector((size_t)inner, 10, [=](size_t i) {
        const uint8_t* s = src + 3 * (i + 1);
        const bytes32 b = load_halves(s, s + 15), c = load_halves(s + 3, s + 18);
        const bytes32 even = even_phase(load_halves(s - 3, s + 12), b, c);
        const bytes32 odd = average_up(b, c);
        const bytes32 first = _mm256_or_si256(_mm256_shuffle_epi8(even, even_first),
                                              _mm256_shuffle_epi8(odd, odd_first));
        const bytes32 last = _mm256_or_si256(_mm256_shuffle_epi8(even, even_last),
                                             _mm256_shuffle_epi8(odd, odd_last));
        uint8_t* out = dst + 6 * (i + 1);
        store16(out, _mm256_castsi256_si128(first));
        store16(out + 14, _mm256_castsi256_si128(last));
        store16(out + 30, _mm256_extracti128_si256(first, 1));
        store16(out + 44, _mm256_extracti128_si256(last, 1));
    });
    avx2_expand_ends_c3(src, src_width, dst, dst_width);
}

void avx2_subtract(const uint8_t* a, const uint8_t* b, int16_t* __restrict dst, size_t count) {
    if (count < 16) return plain_rows.subtract(a, b, dst, count);
    for_each_vector(count, 16, [=](size_t i) {
        store_values(dst + i, _mm256_sub_epi16(widen16(a + i), widen16(b + i)));
    });
}

void avx2_widen(const uint8_t* __restrict src, int16_t* __restrict dst, size_t count) {
    if (count < 16) return plain_rows.widen(src, dst, count);
    for_each_vector(count, 16, [=](size_t i) { store_values(dst + i, widen16(src + i)); });
}

// With d = a - b the blend is b + ((m d - b + 128) >> 8). m d has up to 18 bits: its upper part
// comes from the high half of (64 d)(4 m), its low byte from the low half of m d.
static inline __m256i blend_values(__m256i m, __m256i a, __m256i b) {
    const __m256i d = _mm256_sub_epi16(a, b);
    const __m256i upper = _mm256_mulhi_epi16(_mm256_slli_epi16(d, 6), _mm256_slli_epi16(m, 2));
    const __m256i lower = _mm256_and_si256(_mm256_mullo_epi16(d, m), _mm256_set1_epi16(255));
    const __m256i rest = _mm256_add_epi16(_mm256_sub_epi16(lower, b), _mm256_set1_epi16(128));
    return _mm256_add_epi16(_mm256_add_epi16(b, upper), _mm256_srai_epi16(rest, 8));
}

// Mask bytes of a third of 16 pixels, each three times, as 16-bit weights.
static inline __m256i mask_triples(__m128i mask, size_t third) {
    const __m128i triples[3] = {
        _mm_setr_epi8(0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5),
        _mm_setr_epi8(5, 5, 6, 6, 6, 7, 7, 7, 8, 8, 8, 9, 9, 9, 10, 10),
        _mm_setr_epi8(10, 11, 11, 11, 12, 12, 12, 13, 13, 13, 14, 14, 14, 15, 15, 15)};
    return _mm256_cvtepu8_epi16(_mm_shuffle_epi8(mask, triples[third]));
}

// 16 pixels of three channels.
typedef struct blended_pixels {
    __m256i values[3];
} blended_pixels;

static inline blended_pixels blend_pixels(const uint8_t* mask, const int16_t* a, const int16_t* b) {
    const __m128i m = load16(mask);
    blended_pixels out;
    for (size_t k = 0; k < 3; k++) {
        out.values[k] =
            blend_values(mask_triples(m, k), load_values(a + 16 * k), load_values(b + 16 * k));
    }
    return out;
}

static inline void store_pixels(int16_t* dst, const blended_pixels* pixels) {
    for (size_t k = 0; k < 3; k++)
        store_values(dst + 16 * k, pixels->values[k]);
}

// The output may be an input: the last pixels are computed before any is stored.
void avx2_blend(const uint8_t* mask, const int16_t* a, const int16_t* b, int16_t* dst,
                size_t pixels) {
    if (pixels < 16) return plain_rows.blend(mask, a, b, dst, pixels);
    const size_t last = pixels - 16;
    const blended_pixels tail = blend_pixels(mask + last, a + 3 * last, b + 3 * last);
    for (size_t p = 0; p + 16 <= pixels; p += 16) {
        const blended_pixels run = blend_pixels(mask + p, a + 3 * p, b + 3 * p);
        store_pixels(dst + 3 * p, &run);
    }
    store_pixels(dst + 3 * last, &tail);
}

void avx2_collapse(const int16_t* lap, const uint8_t* base, uint8_t* __restrict dst, size_t count) {
    if (count < 32) return plain_rows.collapse(lap, base, dst, count);
    for_each_vector(count, 32, [=](size_t i) {
        const __m256i low = _mm256_add_epi16(load_values(lap + i), widen16(base + i));
        const __m256i high = _mm256_add_epi16(load_values(lap + i + 16), widen16(base + i + 16));
        store(dst + i, pack_in_order(low, high));
    });
}

// 32 values under a weight of 255, (255 v + 128) >> 8, which takes one from differences above 128
// and gives one to those below -127. One of the two parts is 0, so each saturates by itself.
static inline bytes32 merge_one(bytes32 row, bytes32 expanded, bytes32 result) {
    const bytes32 above = _mm256_subs_epu8(row, expanded), below = _mm256_subs_epu8(expanded, row);
    const bytes32 is_above =
        _mm256_cmpeq_epi8(_mm256_max_epu8(above, _mm256_set1_epi8(-127)), above);
    // The bit of 128 is the sign.
    const bytes32 is_below = _mm256_cmpgt_epi8(_mm256_setzero_si256(), below);
    const bytes32 gain = _mm256_add_epi8(above, is_above), loss = _mm256_add_epi8(below, is_below);
    return _mm256_subs_epu8(_mm256_adds_epu8(result, gain), loss);
}

// 32 pixels where the mask is all 0 or all 255: only one picture counts.
static inline void merge_one_run(const uint8_t* row, const uint8_t* expanded, const uint8_t* result,
                                 uint8_t* dst) {
    const bytes32 first = merge_one(load(row), load(expanded), load(result));
    const bytes32 second = merge_one(load(row + 32), load(expanded + 32), load(result + 32));
    const bytes32 third = merge_one(load(row + 64), load(expanded + 64), load(result + 64));
    store(dst, first);
    store(dst + 32, second);
    store(dst + 64, third);
}

// 16 pixels of any mask.
static inline void merge_both(__m128i mask, const merge_rows* rows, size_t i, uint8_t* dst) {
    __m256i values[3];
#pragma GCC unroll 3
    for (size_t k = 0; k < 3; k++, i += 16) {
        const __m256i a = _mm256_sub_epi16(widen16(rows->src + i), widen16(rows->expanded_src + i));
        const __m256i b =
            _mm256_sub_epi16(widen16(rows->under + i), widen16(rows->expanded_under + i));
        const __m256i blended = blend_values(mask_triples(mask, k), a, b);
        values[k] = _mm256_add_epi16(blended, widen16(rows->expanded_result + i));
    }
    store(dst, pack_in_order(values[0], values[1]));
    store16(dst + 32, _mm256_castsi256_si128(pack_in_order(values[2], values[2])));
}

void avx2_merge(const merge_rows* rows, uint8_t* __restrict dst, size_t pixels) {
    if (pixels < 32) return plain_rows.merge(rows, dst, pixels);
    const merge_rows r = *rows;
    // The step stands in the code once: it is long.
    const size_t last = pixels - 32;
    for (size_t p = 0;;) {
        const bytes32 mask = load(r.mask + p);
        const size_t i = 3 * p;
        if (_mm256_testz_si256(mask, mask)) {
            merge_one_run(r.under + i, r.expanded_under + i, r.expanded_result + i, dst + i);
        } else if (_mm256_testc_si256(mask, _mm256_set1_epi8(-1))) {
            merge_one_run(r.src + i, r.expanded_src + i, r.expanded_result + i, dst + i);
        } else {
            merge_both(_mm256_castsi256_si128(mask), &r, i, dst + i);
            merge_both(_mm256_extracti128_si256(mask, 1), &r, i + 48, dst + i + 48);
        }
        if (p == last) return;
        p = p + 32 < last ? p + 32 : last;
    }
}

void avx2_narrow(const int16_t* __restrict src, uint8_t* __restrict dst, size_t count) {
    if (count < 32) return plain_rows.narrow(src, dst, count);
    const __m256i low_byte = _mm256_set1_epi16(255);
    for_each_vector(count, 32, [=](size_t i) {
        store(dst + i, pack_in_order(_mm256_and_si256(load_values(src + i), low_byte),
                                     _mm256_and_si256(load_values(src + i + 16), low_byte)));
    });
}

const row_ops* avx2_table(void) {
    static const row_ops table = {
        "avx2",
        1000000,
        avx2_reduce_row_c3,
        avx2_reduce_row_c1,
        avx2_expand_row_c3,
        avx2_reduce_column,
        avx2_expand_even,
        avx2_expand_odd,
        avx2_subtract,
        avx2_widen,
        avx2_blend,
        avx2_collapse,
        avx2_merge,
        avx2_narrow,
        avx2_mix_rows,
        avx2_resample_row_c3,
        avx2_pack_rgb,
        avx2_unpack_rgb,
    };
    return &table;
}

#else

const row_ops* avx2_table(void) {
    return NULL;
}

#endif
