// SPDX-License-Identifier: Apache-2.0
#include "api/mask_view.h"

#include <string.h>

#include "numeric.h"

mask_view view_of_mask(const uint8_t* samples, int32_t width, int32_t height,
                       const pixel_layout* layout) {
    const mask_view view = {
        samples + layout->offset, {0, 0, width, height}, width, layout->step, width, height};
    return view;
}

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

// The first and the last non-zero sample of `count`; `count` and -1 where there is none.
static int64_t first_set(const uint8_t* samples, int64_t count, int64_t step) {
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

static int64_t last_set(const uint8_t* samples, int64_t count, int64_t step) {
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

static const uint8_t* window_row(const mask_view* mask, int64_t row) {
    return mask->samples + row * mask->row_samples * mask->step;
}

// Rows without a sample are passed over whole, from both ends; of the rows between, only what lies
// outside the columns found so far is looked at.
mask_extent scan_mask(const mask_view* mask) {
    mask_extent extent = {(int64_t)mask->frame_width - 1, (int64_t)mask->frame_height - 1, 0, 0};
    const pixel_window* w = &mask->window;
    const int64_t columns = (int64_t)w->x_end - w->x_begin, rows = (int64_t)w->y_end - w->y_begin;
    if (columns < 1 || rows < 1) return extent;
    int64_t top = 0, bottom = rows - 1, left = columns;
    while (top < rows && left == columns) {
        left = first_set(window_row(mask, top), columns, mask->step);
        if (left == columns) top++;
    }
    if (top == rows) return extent;
    int64_t right = last_set(window_row(mask, top), columns, mask->step);
    while (bottom > top && last_set(window_row(mask, bottom), columns, mask->step) < 0)
        bottom--;
    for (int64_t y = top + 1; y <= bottom; y++) {
        const uint8_t* row = window_row(mask, y);
        left = first_set(row, left, mask->step);
        const int64_t beyond =
            last_set(row + (right + 1) * mask->step, columns - 1 - right, mask->step);
        right += beyond + 1;
    }
    extent.xmin = w->x_begin + left;
    extent.xmax = w->x_begin + right;
    extent.ymin = w->y_begin + top;
    extent.ymax = w->y_begin + bottom;
    return extent;
}

void copy_mask_box(const mask_view* mask, const pixel_box* box, uint8_t* crop, size_t crop_bytes) {
    if (box->width < 1 || box->height < 1) return;
    const pixel_window* w = &mask->window;
    const int64_t begin = clamp_i64((int64_t)w->x_begin - box->x, 0, box->width);
    const int64_t end = clamp_i64((int64_t)w->x_end - box->x, begin, box->width);
    const size_t row_bytes = (size_t)box->width;
    for (size_t r = 0; r < (size_t)box->height && (r + 1) * row_bytes <= crop_bytes; r++) {
        uint8_t* out = crop + r * row_bytes;
        const int64_t y = (int64_t)box->y + (int64_t)r;
        if (y < w->y_begin || y >= w->y_end || begin == end) {
            memset(out, 0, row_bytes);
            continue;
        }
        const uint8_t* in =
            window_row(mask, y - w->y_begin) + (box->x + begin - w->x_begin) * mask->step;
        memset(out, 0, (size_t)begin);
        if (mask->step == 1) {
            memcpy(out + begin, in, (size_t)(end - begin));
        } else {
            for (int64_t c = begin; c < end; c++)
                out[c] = in[(c - begin) * mask->step];
        }
        memset(out + end, 0, row_bytes - (size_t)end);
    }
}
