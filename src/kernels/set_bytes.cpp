// SPDX-License-Identifier: Apache-2.0
#include "kernels/set_bytes.h"

#include <string.h>

enum { BLOCK = 64 };

// How far ahead of a scan memory is fetched; the address may lie beyond the mask, which a fetch
// ignores.
enum { FETCH_AHEAD = 2048 };

static void fetch(const uint8_t* p, intptr_t distance) {
    __builtin_prefetch((const void*)((uintptr_t)p + (uintptr_t)distance));
}

static uint64_t word_at(const uint8_t* p) {
    uint64_t word;
    memcpy(&word, p, sizeof word);
    return word;
}

static bool block_is_zero(const uint8_t* p) {
    const uint64_t low = word_at(p) | word_at(p + 8) | word_at(p + 16) | word_at(p + 24);
    return (low | word_at(p + 32) | word_at(p + 40) | word_at(p + 48) | word_at(p + 56)) == 0;
}

int64_t first_set(const uint8_t* samples, int64_t count, int64_t step) {
    int64_t i = 0;
    if (step == 1) {
        while (i + BLOCK <= count && block_is_zero(samples + i)) {
            fetch(samples + i, FETCH_AHEAD);
            i += BLOCK;
        }
    }
    while (i < count && samples[i * step] == 0)
        i++;
    return i;
}

int64_t last_set(const uint8_t* samples, int64_t count, int64_t step) {
    int64_t end = count;
    if (step == 1) {
        while (end >= BLOCK && block_is_zero(samples + end - BLOCK)) {
            end -= BLOCK;
            fetch(samples + end, -FETCH_AHEAD);
        }
    }
    while (end > 0 && samples[(end - 1) * step] == 0)
        end--;
    return end - 1;
}
