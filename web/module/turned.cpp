// SPDX-License-Identifier: Apache-2.0
#include <math.h>
#include <string.h>

#include "imageblend_web.h"
#include "memory.h"

// Four channels of one pixel, alpha first.
typedef float pixel_f32 __attribute__((vector_size(16)));
typedef uint16_t pixel_u16 __attribute__((vector_size(8)));

// Alpha times 255 and colours times alpha, 0 .. 255 * 255, with a border of zeros on all sides
// that the taps of the filter may lie in.
typedef struct weighed_plane {
    pixel_u16* pixels;  // of the border's top left corner
    int64_t width, height, pitch;
} weighed_plane;

enum { BORDER = 4, TAPS = 4, WIDEST_BLUR = 2, POSITIONS = 64 };
// Steps from a pixel to the next at which the filter's weights are known.
static const float positions = POSITIONS;

// The mean's rounding is half of n * n.
static uint16_t mean_of(uint64_t sum, uint64_t count) {
    return (uint16_t)((sum + count / 2) / count);
}

// The mean of the n x n pixels from (x, y) on, of which those beyond the picture are 0.
static pixel_u16 weighed_mean(const blend_image* picture, int64_t x, int64_t y, int64_t n) {
    const int64_t right = min_i64(x + n, picture->width), bottom = min_i64(y + n, picture->height);
    uint64_t sum[4] = {0, 0, 0, 0};
    for (int64_t row = y; row < bottom; row++) {
        const uint8_t* pixel = picture->data + 4 * (row * picture->width + x);
        for (int64_t i = x; i < right; i++, pixel += 4) {
            const uint32_t alpha = pixel[0];
            sum[0] += alpha * 255;
            for (int c = 1; c < 4; c++)
                sum[c] += alpha * pixel[c];
        }
    }
    const uint64_t count = (uint64_t)(n * n);
    return pixel_u16{mean_of(sum[0], count), mean_of(sum[1], count), mean_of(sum[2], count),
                     mean_of(sum[3], count)};
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
    plane->pixels = (pixel_u16*)alloc_zeroed_plane(plane->pitch, height + 2 * BORDER, 8);
    return plane->pixels != NULL;
}

static pixel_u16* row_of(const weighed_plane* plane, int64_t y) {
    return plane->pixels + (y + BORDER) * plane->pitch + BORDER;
}

// Means of n x n pixels, or the pixels themselves where n is 1.
static bool weigh(const blend_image* picture, int64_t n, weighed_plane* plane) {
    const int64_t width = (picture->width + n - 1) / n, height = (picture->height + n - 1) / n;
    if (!alloc_weighed(width, height, plane)) return false;
    for (int64_t y = 0; y < height; y++) {
        pixel_u16* row = row_of(plane, y);
        if (n == 1) {
            weigh_row(picture->data + 4 * y * width, width, (uint16_t*)row);
            continue;
        }
        for (int64_t x = 0; x < width; x++)
            row[x] = weighed_mean(picture, x * n, y * n, n);
    }
    return true;
}

// exp(x) for -100 <= x <= 0, to six digits: libc's own brings a table of 2 KB. The series needs a
// small argument, so it is that of x / 1024, squared ten times.
static double exponential(double x) {
    const double part = x / 1024.0;
    double value = 1.0 + part * (1.0 + part * (0.5 + part / 6.0));
    for (int i = 0; i < 10; i++)
        value *= value;
    return value;
}

// The weights of a Gaussian from its middle on, in twentieths; 0 beyond.
static void blur_weights(double scale, float weights[WIDEST_BLUR + 1]) {
    const double sigma = 0.45 * sqrt(1.0 / (scale * scale) - 1.0);
    double sum = 0.0, level[WIDEST_BLUR + 1] = {20.0};
    for (int i = 0; i <= WIDEST_BLUR; i++) {
        const double height = sigma < 0.1 ? 0.0 : exponential(-i * i / (2.0 * sigma * sigma));
        if (i > 0) level[i] = height < 0.01 ? 0.0 : floor(20.0 * height + 0.5);
        sum += i > 0 ? 2.0 * level[i] : level[i];
    }
    for (int i = 0; i <= WIDEST_BLUR; i++)
        weights[i] = (float)(level[i] / sum);
}

static pixel_f32 to_float(pixel_u16 pixel) {
    return __builtin_convertvector(pixel, pixel_f32);
}

// A row of pixels with those of two rows each to its sides, the nearest first.
static void blur_row(const pixel_u16* middle, const pixel_u16* const sides[WIDEST_BLUR][2],
                     const float* weights, int64_t count, pixel_u16* to) {
    for (int64_t x = 0; x < count; x++) {
        pixel_f32 sum = to_float(middle[x]) * weights[0] + 0.5f;
        for (int k = 0; k < WIDEST_BLUR; k++)
            sum += (to_float(sides[k][0][x]) + to_float(sides[k][1][x])) * weights[k + 1];
        to[x] = __builtin_convertvector(sum, pixel_u16);
    }
}

// Along the rows, beyond which the last pixel is repeated.
static void blur_across(const weighed_plane* plane, const float* weights, weighed_plane* to) {
    for (int64_t y = 0; y < plane->height; y++) {
        pixel_u16* row = row_of(plane, y);
        pixel_u16* const end = row + plane->width;
        for (int k = 0; k < WIDEST_BLUR; k++) {
            row[-1 - k] = row[0];
            end[k] = end[-1];
        }
        const pixel_u16* const sides[WIDEST_BLUR][2] = {{row - 1, row + 1}, {row - 2, row + 2}};
        blur_row(row, sides, weights, plane->width, row_of(to, y));
        memset(row - WIDEST_BLUR, 0, WIDEST_BLUR * sizeof *row);
        memset(end, 0, WIDEST_BLUR * sizeof *end);
    }
}

static void blur_along(const weighed_plane* plane, const float* weights, weighed_plane* to) {
    const int64_t last = plane->height - 1;
    for (int64_t y = 0; y <= last; y++) {
        const pixel_u16* sides[WIDEST_BLUR][2];
        for (int k = 0; k < WIDEST_BLUR; k++) {
            sides[k][0] = row_of(plane, max_i64(y - 1 - k, 0));
            sides[k][1] = row_of(plane, min_i64(y + 1 + k, last));
        }
        blur_row(row_of(plane, y), sides, weights, plane->width, row_of(to, y));
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

static pixel_f32 filter_at(const pixel_u16* corner, int64_t pitch, const float* across,
                           const float* along) {
    pixel_f32 sum = {0.0f, 0.0f, 0.0f, 0.0f};
    for (int64_t y = 0; y < TAPS; y++, corner += pitch) {
        pixel_f32 row = to_float(corner[0]) * across[0];
        for (int64_t x = 1; x < TAPS; x++)
            row += to_float(corner[x]) * across[x];
        sum += row * along[y];
    }
    return sum;
}

// Colours are divided by alpha again.
static void store_pixel(pixel_f32 sum, uint8_t* out) {
    out[0] = float_to_byte(sum[0] / 255.0f);
    const float factor = sum[0] > 0.0f ? 255.0f / sum[0] : 0.0f;
    for (int c = 1; c < 4; c++)
        out[c] = float_to_byte(sum[c] * factor);
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
                     const float (*weights)[TAPS], int64_t y, int64_t width, uint8_t* out) {
    const double row_x = inverse->x - inverse->sine * (double)y;
    const double row_y = inverse->y + inverse->cosine * (double)y;
    for (int64_t x = 0; x < width; x++, out += 4) {
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
        store_pixel(filter_at(row_of(plane, (int64_t)top - 1) + (int64_t)left - 1, plane->pitch,
                              weights[across], weights[along]),
                    out);
    }
}

int32_t imageblend_web_turned(const blend_image* picture, const imageblend_web_turn* turn,
                              const imageblend_box* window, blend_image* out) {
    if (!(turn->zoom > 0.0)) return -1;
    const double longest = (double)max_i64(picture->width, picture->height);
    const int64_t n = turn->zoom <= 0.5 ? (int64_t)fmin(floor(1.0 / turn->zoom), longest) : 1;
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
    for (int64_t y = 0; y < window->height; y++)
        turn_row(&plane, &inverse, weights, y, window->width, out->data + 4 * y * window->width);
    free(plane.pixels);
    return 0;
}
