// SPDX-License-Identifier: Apache-2.0
// The reduction of two rows and down the columns in 512-bit vectors of x86-64.
#include "kernels/x86/avx512_vectors.h"

// A step makes a vector of words, but for what the reads of a sample behind the last centre cost:
// ten pixels of three channels or 31 of one. Where its bytes come from: of 64 bytes from the first
// centre on, or, `before` it, from two pixels to the left of that.
typedef struct reduce_tables {
    int32_t channels, pixels;
    positions pairs;        // the sample of an output, and the one a pixel further
    positions first_pairs;  // of the first step, which cannot read further to the left
    positions singles;      // the sample two pixels further; odd places hold 1
    positions folded;       // of the last step, where the row ends with the sample before that
} reduce_tables;

static constexpr reduce_tables tables_of(int channels, int pixels) {
    reduce_tables t = {channels, pixels, {}, {}, {}, {}};
    for (int p = 0; p < pixels; p++) {
        for (int c = 0; c < channels; c++) {
            const int word = channels * p + c, sample = 2 * channels * p + c;
            const int left = p > 0 ? sample - 2 * channels : sample;
            const bool is_last = p == pixels - 1;
            t.pairs.at[2 * word] = (uint8_t)sample;
            t.pairs.at[2 * word + 1] = (uint8_t)(sample + channels);
            t.first_pairs.at[2 * word] = (uint8_t)left;
            t.first_pairs.at[2 * word + 1] = (uint8_t)(p > 0 ? left + channels : left);
            t.singles.at[2 * word] = (uint8_t)(sample + 2 * channels);
            t.folded.at[2 * word] = (uint8_t)(sample + (is_last ? 1 : 2) * channels);
        }
    }
    return t;
}

static constexpr reduce_tables tables_c3 = tables_of(3, 10), tables_c1 = tables_of(1, 31);

static inline __m512i weigh(bytes64 pairs, int first, int second) {
    return _mm512_maddubs_epi16(pairs, _mm512_set1_epi16((short)(second * 256 + first)));
}

// What a step takes its bytes with.
typedef struct reduce_step {
    size_t back;  // bytes from the first centre to the left
    __mmask64 readable;
    bytes64 pairs_before, pairs, singles;
} reduce_step;

// Sums of a row, with 8 for rounding, in words.
static inline __m512i sum_row(const uint8_t* s, const reduce_step* step) {
    const bytes64 here = _mm512_maskz_loadu_epi8(step->readable, s);
    const bytes64 before = _mm512_permutexvar_epi8(step->pairs_before, load(s - step->back));
    const bytes64 singles =
        _mm512_mask_permutexvar_epi8(_mm512_set1_epi8(1), 0x5555555555555555, step->singles, here);
    return add_words(add_words(weigh(before, 1, 4), weigh(singles, 1, 8)),
                     weigh(_mm512_permutexvar_epi8(step->pairs, here), 6, 4));
}

// The low bytes of 32 words that are shifted down by 4.
static inline __m256i narrow(__m512i words) {
    const bytes64 fields = _mm512_set1_epi64(0x34241404);
    const __m512i low_halves = _mm512_setr_epi32(0, 2, 4, 6, 8, 10, 12, 14, 0, 0, 0, 0, 0, 0, 0, 0);
    return _mm512_castsi512_si256(
        _mm512_permutexvar_epi32(low_halves, _mm512_multishift_epi64_epi8(fields, words)));
}

// `sums` holds for each step what the row behind the last finished one has from its five rows: the
// vector of the first two, for the row after that, and the sum of the first four with 8 for
// rounding.
static void reduce_two(const reduce_tables* tables, const uint8_t* even, const uint8_t* odd,
                       int32_t src_width, uint8_t* sums, uint8_t* dst, int32_t dst_width) {
    const size_t channels = (size_t)tables->channels, taken = (size_t)tables->pixels * channels;
    const size_t last = 2 * (channels * (size_t)dst_width - taken);
    const size_t ahead = 2 * channels * (size_t)src_width;  // the next two rows of the level
    const __mmask32 written = ((__mmask32)1 << taken) - 1;
    reduce_step step = {0, ~(__mmask64)0, load(tables->first_pairs.at), load(tables->pairs.at),
                        load(tables->singles.at)};
    for (size_t at = 0;; sums += 128) {
        const __m512i even_sum = sum_row(even + at, &step), odd_sum = sum_row(odd + at, &step);
        __builtin_prefetch(even + at + ahead);
        __builtin_prefetch(odd + at + ahead);
        const __m512i row = shift_words_down<4>(even_sum);
        const bytes64 pairs = choose(words_of(0xff), row, _mm512_slli_epi16(odd_sum, 4));
        const __m512i sum = load(sums + 64);
        if (dst != NULL)
            _mm256_mask_storeu_epi8(dst + at / 2, written, narrow(add_words(sum, row)));
        store(sums + 64, add_words(add_words(load(sums), words_of(8)), weigh(pairs, 6, 4)));
        store(sums, weigh(pairs, 1, 4));
        if (at == last) return;
        step.back = 2 * channels;
        step.pairs_before = step.pairs;
        at += 2 * taken;
        if (at >= last) {
            at = last;
            const size_t readable = channels * (size_t)src_width - at;
            if (readable < 64) step.readable = ((__mmask64)1 << readable) - 1;
            if (2 * (int64_t)dst_width == src_width) step.singles = load(tables->folded.at);
        }
    }
}

void avx512_reduce_two_c3(const uint8_t* even, const uint8_t* odd, int32_t src_width, uint8_t* sums,
                          uint8_t* dst, int32_t dst_width) {
    reduce_two(&tables_c3, even, odd, src_width, sums, dst, dst_width);
}

void avx512_reduce_two_c1(const uint8_t* even, const uint8_t* odd, int32_t src_width, uint8_t* sums,
                          uint8_t* dst, int32_t dst_width) {
    reduce_two(&tables_c1, even, odd, src_width, sums, dst, dst_width);
}
