// SPDX-License-Identifier: Apache-2.0
#include "blend/resize.h"

#include <string.h>

#include "fixed_step.h"
#include "kernels/row_ops.h"
#include "memory.h"
#include "numeric.h"

// The two source samples of one output sample and their weights.
typedef struct resize_tap {
    size_t a, b;
    int32_t weight_a, weight_b;
} resize_tap;

static resize_tap tap_at(int64_t position, int32_t source_size) {
    const int64_t nearest = fixed_nearest(position);
    const int64_t a = nearest * 128 < position ? nearest : nearest - 1;
    const int32_t weight_b = (int32_t)(position - a * 128);
    resize_tap tap;
    tap.a = (size_t)clamp_i64(a, 0, source_size - 1);
    tap.b = (size_t)clamp_i64(a + 1, 0, source_size - 1);
    tap.weight_a = 128 - weight_b;
    tap.weight_b = weight_b;
    return tap;
}

static inline uint8_t interpolate(const resize_tap* tap, uint8_t a, uint8_t b) {
    return (uint8_t)((a * tap->weight_a + b * tap->weight_b + 64) >> 7);
}

void resize_rows(const uint8_t* src, int32_t src_width, uint8_t* dst, int32_t dst_width,
                 int32_t rows, int32_t channels) {
    if (src_width < 1 || dst_width < 1) return;
    const int64_t step = fixed_step(src_width, dst_width);
    const size_t pixel_bytes = (size_t)channels;
    for (int32_t j = 0; j < dst_width; j++) {
        const resize_tap tap = tap_at(j * step, src_width);
        const uint8_t* a = src + tap.a * pixel_bytes;
        const uint8_t* b = src + tap.b * pixel_bytes;
        uint8_t* out = dst + (size_t)j * pixel_bytes;
        for (int32_t row = 0; row < rows; row++) {
            for (size_t c = 0; c < pixel_bytes; c++)
                out[c] = interpolate(&tap, a[c], b[c]);
            a += (size_t)src_width * pixel_bytes;
            b += (size_t)src_width * pixel_bytes;
            out += (size_t)dst_width * pixel_bytes;
        }
    }
}

void resize_cols(const uint8_t* src, int32_t src_height, uint8_t* dst, int32_t width,
                 int32_t dst_height, int32_t channels) {
    if (src_height < 1 || width < 1) return;
    const int64_t step = fixed_step(src_height, dst_height);
    const size_t row_bytes = (size_t)width * (size_t)channels;
    for (int32_t i = 0; i < dst_height; i++) {
        const resize_tap tap = tap_at(i * step, src_height);
        const uint8_t* a = src + tap.a * row_bytes;
        const uint8_t* b = src + tap.b * row_bytes;
        uint8_t* out = dst + (size_t)i * row_bytes;
        for (size_t k = 0; k < row_bytes; k++)
            out[k] = interpolate(&tap, a[k], b[k]);
    }
}

int32_t resize_plane(const uint8_t* src, uint8_t* dst, int32_t src_width, int32_t src_height,
                     int32_t dst_width, int32_t dst_height, int32_t channels) {
    size_t pixels;
    if (!buffer_size(dst_width, src_height, 1, &pixels)) return -1;
    uint8_t* narrowed = (uint8_t*)alloc_zeroed_plane((int64_t)pixels, channels, 1);
    if (narrowed == NULL) return -1;
    resize_rows(src, src_width, narrowed, dst_width, src_height, channels);
    resize_cols(narrowed, src_height, dst, dst_width, dst_height, channels);
    free(narrowed);
    return 0;
}

// What the walk over the rows of a rectangle keeps. Two horizontally resized rows are enough: an
// output row lies between a source row and the next, which differ in their lowest bit.
typedef struct row_window {
    const rectangle_resize* resize;
    uint8_t* cut;  // a source row, its last pixel repeated, and what a vector may read behind it
    uint8_t* resized[2];  // rows of dst_width pixels
    int64_t row[2];       // which source rows they are
} row_window;

static size_t cut_bytes(const rectangle_resize* r) {
    return 3 * ((size_t)r->src_width + 4);
}

static size_t window_bytes(const rectangle_resize* r) {
    return cut_bytes(r) + 6 * (size_t)r->dst_width;
}

bool open_resize(rectangle_resize* r) {
    r->taps = (row_tap*)alloc_plane(r->dst_width, 1, sizeof(row_tap));
    r->rows = (uint8_t*)alloc_plane((int64_t)window_bytes(r), 4, 1);
    if (r->taps == NULL || r->rows == NULL) return false;
    const int64_t step = fixed_step(r->src_width, r->dst_width);
    for (int32_t j = 0; j < r->dst_width; j++) {
        const resize_tap tap = tap_at(j * step, r->src_width);
        // A neighbour before the first pixel has no weight: the first pixel's is 128 there.
        r->taps[j].sample = (int32_t)tap.a;
        r->taps[j].weight = tap.a == tap.b ? 0 : tap.weight_b;
    }
    return true;
}

void close_resize(rectangle_resize* r) {
    free(r->taps);
    free(r->rows);
}

static const uint8_t* window_row(row_window* w, size_t row) {
    const rectangle_resize* r = w->resize;
    const size_t slot = row % 2;
    if (w->row[slot] != (int64_t)row) {
        const size_t row_bytes = 3 * (size_t)r->src_width;
        const uint8_t* packed = read_rows(&r->from, (int32_t)row, 1, r->src_width, w->cut);
        if (packed != w->cut) memcpy(w->cut, packed, row_bytes);
        memcpy(w->cut + row_bytes, w->cut + row_bytes - 3, 3);
        active_row_ops()->resample_row_c3(w->cut, r->taps, w->resized[slot], (size_t)r->dst_width);
        w->row[slot] = (int64_t)row;
    }
    return w->resized[slot];
}

void resize_part(void* arg, int32_t worker, int32_t begin, int32_t end) {
    const rectangle_resize* r = (const rectangle_resize*)arg;
    const size_t row_bytes = 3 * (size_t)r->dst_width;
    row_window w;
    w.resize = r;
    w.cut = r->rows + (size_t)worker * window_bytes(r);
    w.resized[0] = w.cut + cut_bytes(r);
    w.resized[1] = w.resized[0] + row_bytes;
    w.row[0] = w.row[1] = -1;
    const int64_t step = fixed_step(r->src_height, r->dst_height);
    for (int32_t i = begin; i < end; i++) {
        const resize_tap tap = tap_at(i * step, r->src_height);
        const uint8_t* a = window_row(&w, tap.a);
        const uint8_t* b = window_row(&w, tap.b);
        active_row_ops()->mix_rows(a, b, tap.weight_b, r->dst + (size_t)i * row_bytes, row_bytes);
    }
}
