// SPDX-License-Identifier: Apache-2.0
#include <math.h>
#include <string.h>
#include <wasm_simd128.h>

#include "imageblend_web.h"
#include "memory.h"
#include "numeric.h"

// Alpha times 255 and colours times alpha, 0 .. 255 * 255, four values of 16 bits a pixel, with a
// border of zeros on all sides that the taps of the filter may lie in.
typedef struct weighed_plane {
    uint16_t* pixels;  // of the border's top left corner
    int64_t width, height, pitch;
} weighed_plane;

enum { BORDER = 4, TAPS = 4, LARGEST_MEAN = 256, WIDEST_BLUR = 2, POSITIONS = 64 };
// Steps from a pixel to the next at which the filter's weights are known.
static const float positions = POSITIONS;

// The mean of the n x n pixels from (x, y) on, of which those beyond the picture are 0, with the
// rounding half of n * n.
static void weigh_mean(const blend_image* picture, int64_t x, int64_t y, int64_t n, uint16_t* to) {
    const int64_t right = min_i64(x + n, picture->width), bottom = min_i64(y + n, picture->height);
    uint32_t sum[4] = {0, 0, 0, 0};
    for (int64_t row = y; row < bottom; row++) {
        const uint8_t* pixel = picture->data + 4 * (row * picture->width + x);
        for (int64_t i = x; i < right; i++, pixel += 4) {
            const uint32_t alpha = pixel[0];
            sum[0] += alpha * 255;
            for (int c = 1; c < 4; c++)
                sum[c] += alpha * pixel[c];
        }
    }
    const uint32_t count = (uint32_t)(n * n);
    for (int c = 0; c < 4; c++)
        to[c] = (uint16_t)((sum[c] + count / 2) / count);
}

// A row of pixels, each weighed by itself.
static void weigh_row(const uint8_t* __restrict from, int64_t count, uint16_t* __restrict to) {
    for (int64_t i = 0; i < 4 * count; i += 4) {
        const int alpha = from[i];
        to[i] = (uint16_t)(alpha * 255);
        to[i + 1] = (uint16_t)(alpha * from[i + 1]);
        to[i + 2] = (uint16_t)(alpha * from[i + 2]);
        to[i + 3] = (uint16_t)(alpha * from[i + 3]);
    }
}

static bool alloc_weighed(int64_t width, int64_t height, weighed_plane* plane) {
    *plane = {NULL, width, height, width + 2 * BORDER};
    plane->pixels = (uint16_t*)alloc_zeroed_plane(plane->pitch, height + 2 * BORDER, 8);
    return plane->pixels != NULL;
}

static uint16_t* pixel_of(const weighed_plane* plane, int64_t x, int64_t y) {
    return plane->pixels + 4 * ((y + BORDER) * plane->pitch + x + BORDER);
}

// Means of n x n pixels, or the pixels themselves where n is 1.
static bool weigh(const blend_image* picture, int64_t n, weighed_plane* plane) {
    const int64_t width = (picture->width + n - 1) / n, height = (picture->height + n - 1) / n;
    if (!alloc_weighed(width, height, plane)) return false;
    for (int64_t y = 0; y < height; y++) {
        if (n == 1) {
            weigh_row(picture->data + 4 * y * width, width, pixel_of(plane, 0, y));
            continue;
        }
        for (int64_t x = 0; x < width; x++)
            weigh_mean(picture, x * n, y * n, n, pixel_of(plane, x, y));
    }
    return true;
}

// exp(-x) for x from 0 to 5, by its series at x / 64. The library's own is a kilobyte.
static double falling_exp(double x) {
    const double y = x / 64.0;
    double value = 1.0 - y * (1.0 - y / 2.0 * (1.0 - y / 3.0 * (1.0 - y / 4.0)));
    for (int i = 0; i < 6; i++)
        value *= value;
    return value;
}

// The height of a Gaussian in twentieths; 0 from a hundredth down.
static float in_twentieths(double height) {
    return height < 0.01 ? 0.0f : (float)(int)(20.0 * height + 0.5);
}

// The weights of a Gaussian from its middle on, whose sigma is 0.45 sqrt(1 / scale^2 - 1).
static void blur_weights(double scale, float weights[WIDEST_BLUR + 1]) {
    const double variance = 0.2025 * (1.0 / (scale * scale) - 1.0);
    // Below, less than a hundredth is left beside the middle.
    const double next = variance < 0.1 ? 0.0 : falling_exp(0.5 / variance);
    const float first = in_twentieths(next), second = in_twentieths(next * next * next * next);
    const float sum = 20.0f + 2.0f * (first + second);
    weights[0] = 20.0f / sum;
    weights[1] = first / sum;
    weights[2] = second / sum;
}

// Written as a shuffle because clang 14 takes what widens and converts apart, lane by lane.
static v128_t load_pixel(const uint16_t* pixel) {
    const v128_t levels = wasm_v128_load64_zero(pixel), zero = wasm_i32x4_const_splat(0);
    return wasm_f32x4_convert_i32x4(wasm_i16x8_shuffle(levels, zero, 0, 8, 1, 9, 2, 10, 3, 11));
}

static v128_t scaled(v128_t pixel, float weight) {
    return wasm_f32x4_mul(pixel, wasm_f32x4_splat(weight));
}

// The nearest integers of four values, half rounded up; 0 for those below.
static v128_t nearest(v128_t values) {
    return wasm_i32x4_trunc_sat_f32x4(wasm_f32x4_add(values, wasm_f32x4_const_splat(0.5f)));
}

// A row of pixels with those of two rows each to its sides, the nearest first.
static void blur_row(const uint16_t* middle, const uint16_t* const sides[WIDEST_BLUR][2],
                     const float* weights, int64_t count, uint16_t* to) {
    for (int64_t i = 0; i < 4 * count; i += 4) {
        v128_t sum = scaled(load_pixel(middle + i), weights[0]);
        for (int k = 0; k < WIDEST_BLUR; k++) {
            const v128_t both =
                wasm_f32x4_add(load_pixel(sides[k][0] + i), load_pixel(sides[k][1] + i));
            sum = wasm_f32x4_add(sum, scaled(both, weights[k + 1]));
        }
        const v128_t levels = nearest(sum);
        wasm_v128_store64_lane(to + i, wasm_u16x8_narrow_i32x4(levels, levels), 0);
    }
}

// Along the rows, beyond which the last pixel is repeated.
static void blur_across(const weighed_plane* plane, const float* weights, weighed_plane* to) {
    for (int64_t y = 0; y < plane->height; y++) {
        uint16_t* row = pixel_of(plane, 0, y);
        uint16_t* const end = pixel_of(plane, plane->width, y);
        for (int k = 0; k < WIDEST_BLUR; k++) {
            memcpy(row - 4 * (k + 1), row, 8);
            memcpy(end + 4 * k, end - 4, 8);
        }
        const uint16_t* const sides[WIDEST_BLUR][2] = {{row - 4, row + 4}, {row - 8, row + 8}};
        blur_row(row, sides, weights, plane->width, pixel_of(to, 0, y));
        memset(row - 4 * WIDEST_BLUR, 0, 8 * WIDEST_BLUR);
        memset(end, 0, 8 * WIDEST_BLUR);
    }
}

static void blur_along(const weighed_plane* plane, const float* weights, weighed_plane* to) {
    const int64_t last = plane->height - 1;
    for (int64_t y = 0; y <= last; y++) {
        const uint16_t* sides[WIDEST_BLUR][2];
        for (int k = 0; k < WIDEST_BLUR; k++) {
            sides[k][0] = pixel_of(plane, 0, max_i64(y - 1 - k, 0));
            sides[k][1] = pixel_of(plane, 0, min_i64(y + 1 + k, last));
        }
        blur_row(pixel_of(plane, 0, y), sides, weights, plane->width, pixel_of(to, 0, y));
    }
}

// Takes away what is finer than the pixels of a scale between a half and 1.
static bool soften(double scale, weighed_plane* plane) {
    float weights[WIDEST_BLUR + 1];
    blur_weights(scale, weights);
    if (weights[0] == 1.0f) return true;
    weighed_plane across;
    if (!alloc_weighed(plane->width, plane->height, &across)) return false;
    blur_across(plane, weights, &across);
    blur_along(&across, weights, plane);
    free(across.pixels);
    return true;
}

// Weights of the pixels -1 .. 2 around a position `part` of the way from pixel 0 to pixel 1.
static void cubic_weights(float part, float* weights) {
    const float square = part * part, cube = square * part;
    weights[0] = -0.5f * cube + square - 0.5f * part;
    weights[1] = 1.5f * cube - 2.5f * square + 1.0f;
    weights[2] = -1.5f * cube + 2.0f * square + 0.5f * part;
    weights[3] = 0.5f * cube - 0.5f * square;
}

static v128_t filter_at(const uint16_t* corner, int64_t pitch, const float* across,
                        const float* along) {
    v128_t sum = wasm_f32x4_const_splat(0.0f);
    for (int y = 0; y < TAPS; y++, corner += 4 * pitch) {
        v128_t row = scaled(load_pixel(corner), across[0]);
        for (int x = 1; x < TAPS; x++)
            row = wasm_f32x4_add(row, scaled(load_pixel(corner + 4 * x), across[x]));
        sum = wasm_f32x4_add(sum, scaled(row, along[y]));
    }
    return sum;
}

// Colours are divided by alpha again.
static void store_pixel(v128_t sum, uint8_t* out) {
    const float alpha = wasm_f32x4_extract_lane(sum, 0);
    const v128_t factors = wasm_f32x4_splat(alpha > 0.0f ? 255.0f / alpha : 0.0f);
    const v128_t levels =
        nearest(wasm_f32x4_mul(sum, wasm_f32x4_replace_lane(factors, 0, 1.0f / 255.0f)));
    const v128_t halves = wasm_i16x8_narrow_i32x4(levels, levels);
    wasm_v128_store32_lane(out, wasm_u8x16_narrow_i16x8(halves, halves), 0);
}

// From a window's pixels to positions in a plane, where the middle of pixel 0 is 0.
typedef struct inverse_turn {
    double cosine, sine;  // divided by the zoom
    double x, y;          // of the window's top left pixel
} inverse_turn;

static inverse_turn invert(const imageblend_web_turn* turn, int64_t n,
                           const imageblend_box* window) {
    const double radians = turn->angle * 3.14159265358979323846 / 180.0;
    const double scale = turn->zoom * (double)n;
    const inverse_turn inverse = {cos(radians) / scale, sin(radians) / scale, 0.0, 0.0};
    const double x = window->left + 0.5 - turn->to_x, y = window->top + 0.5 - turn->to_y;
    return {inverse.cosine, inverse.sine,
            inverse.cosine * x - inverse.sine * y + turn->from_x / (double)n - 0.5,
            inverse.sine * x + inverse.cosine * y + turn->from_y / (double)n - 0.5};
}

static void turn_row(const weighed_plane* plane, const inverse_turn* inverse,
                     const float (*weights)[TAPS], int32_t y, int32_t width, uint8_t* out) {
    const double row_x = inverse->x - inverse->sine * (double)y;
    const double row_y = inverse->y + inverse->cosine * (double)y;
    for (int32_t x = 0; x < width; x++, out += 4) {
        const double from_x = row_x + inverse->cosine * (double)x;
        const double from_y = row_y + inverse->sine * (double)x;
        const double left = floor(from_x), top = floor(from_y);
        if (!(left >= -2.0 && top >= -2.0 && left <= (double)plane->width &&
              top <= (double)plane->height)) {
            memset(out, 0, 4);
            continue;
        }
        const int across = (int)((from_x - left) * (double)positions + 0.5);
        const int along = (int)((from_y - top) * (double)positions + 0.5);
        const uint16_t* corner = pixel_of(plane, (int32_t)left - 1, (int32_t)top - 1);
        store_pixel(filter_at(corner, plane->pitch, weights[across], weights[along]), out);
    }
}

int32_t imageblend_web_turned(const blend_image* picture, const imageblend_web_turn* turn,
                              const imageblend_box* window, blend_image* out) {
    if (!(turn->zoom > 0.0)) return -1;
    // The sums of larger means would not fit into 32 bits; what is left of an object then is not
    // worth more.
    const double means = 1.0 / turn->zoom;
    const int64_t n = means < 1.0 ? 1 : means < 256.0 ? (int64_t)means : LARGEST_MEAN;
    weighed_plane plane;
    if (!weigh(picture, n, &plane)) return -1;
    if (turn->zoom < 1.0 && !soften(turn->zoom * (double)n, &plane)) {
        free(plane.pixels);
        return -1;
    }
    float weights[POSITIONS + 1][TAPS];
    for (int i = 0; i <= POSITIONS; i++)
        cubic_weights((float)i / positions, weights[i]);
    const inverse_turn inverse = invert(turn, n, window);
    uint8_t* row = out->data;
    for (int32_t y = 0; y < window->height; y++, row += 4 * window->width)
        turn_row(&plane, &inverse, weights, y, window->width, row);
    free(plane.pixels);
    return 0;
}
