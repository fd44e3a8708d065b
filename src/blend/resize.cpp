#include "blend/resize.h"

#include "fixed_step.h"
#include "memory.h"

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
