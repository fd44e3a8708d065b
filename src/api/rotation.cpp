#include "api/rotation.h"

#include <math.h>
#include <string.h>

#include "memory.h"

rotation make_rotation(float angle, int32_t center_x, int32_t center_y, int32_t width,
                       int32_t height) {
    const float radians = (float)((double)angle * -3.1415926 / 180.0);
    rotation turn;
    turn.cosine = (float)cos((double)radians);
    turn.sine = (float)sin((double)radians);
    turn.center_x = center_x;
    turn.center_y = center_y;
    turn.width = width;
    turn.height = height;
    return turn;
}

static void grow(double value, double* low, double* high) {
    if (value < *low) *low = value;
    if (value > *high) *high = value;
}

static int32_t clamp_floor(double value, int32_t limit) {
    if (!(value > 0)) return 0;
    return value < limit ? (int32_t)value : limit;
}

// The output pixels that an object within `extent` can reach, with a few to spare.
static pixel_window rotated_reach(const rotation* turn, const mask_extent* extent) {
    pixel_window reach = {0, 0, turn->width, turn->height};
    const double c = (double)turn->cosine, s = (double)turn->sine;
    if (!(fabs(c) <= 1 && fabs(s) <= 1)) return reach;  // no angle at all: every pixel may be hit
    const int64_t longer = turn->width > turn->height ? turn->width : turn->height;
    // The mapping's single precision errs by a few units in the last place of a coordinate.
    const double slack = 4 + (double)longer / (1 << 18);
    double low_x = INFINITY, high_x = -INFINITY, low_y = INFINITY, high_y = -INFINITY;
    for (int corner = 0; corner < 4; corner++) {
        const double u =
            (double)(corner % 2 != 0 ? extent->xmax + 1 : extent->xmin - 1) - turn->center_x;
        const double v =
            (double)(corner / 2 != 0 ? extent->ymax + 1 : extent->ymin - 1) - turn->center_y;
        grow(turn->center_x + c * u - s * v, &low_x, &high_x);
        grow(turn->center_y + s * u + c * v, &low_y, &high_y);
    }
    reach.x_begin = clamp_floor(low_x - slack, turn->width);
    reach.y_begin = clamp_floor(low_y - slack, turn->height);
    reach.x_end = clamp_floor(high_x + slack + 1, turn->width);
    reach.y_end = clamp_floor(high_y + slack + 1, turn->height);
    return reach;
}

enum { CHUNK = 256 };

// Source coordinates of output pixels x .. x + count - 1 of one row.
typedef struct source_run {
    int32_t x[CHUNK], y[CHUNK];
} source_run;

static bool converts_exactly(float value) {
    return value > -1e9f && value < 1e9f;
}

static void map_run(const rotation* turn, int32_t x, int32_t y, int32_t count, source_run* run) {
    const float fx = (float)turn->center_x, fy = (float)turn->center_y;
    const float c = turn->cosine, s = turn->sine;
    const float dy = (float)y - fy;
    const float row_x = fx + s * dy, row_y = fy + c * dy;
    const float first = (float)x - fx, last = (float)(x + count - 1) - fx;
    // The coordinates run evenly from one end to the other, so the ends tell the range of all.
    if (converts_exactly(row_x + c * first) && converts_exactly(row_x + c * last) &&
        converts_exactly(row_y - s * first) && converts_exactly(row_y - s * last)) {
        for (int32_t i = 0; i < count; i++) {
            const float dx = (float)(x + i) - fx;
            run->x[i] = (int32_t)(row_x + c * dx);
            run->y[i] = (int32_t)(row_y - s * dx);
        }
        return;
    }
    for (int32_t i = 0; i < count; i++) {
        const float dx = (float)(x + i) - fx;
        run->x[i] = float_to_i32(row_x + c * dx);
        run->y[i] = float_to_i32(row_y - s * dx);
    }
}

// Calls pixel(x, y, inside, source index) for every pixel of the window, row by row.
template <class Pixel>
static inline void map_window(const rotation* turn, const pixel_window* window, Pixel pixel) {
    const uint32_t width = (uint32_t)turn->width, height = (uint32_t)turn->height;
    source_run run;
    for (int32_t y = window->y_begin; y < window->y_end; y++) {
        for (int32_t x = window->x_begin; x < window->x_end; x += CHUNK) {
            const int32_t count = (int32_t)min_i64(CHUNK, window->x_end - x);
            map_run(turn, x, y, count, &run);
            for (int32_t i = 0; i < count; i++) {
                const bool inside = (uint32_t)run.x[i] < width && (uint32_t)run.y[i] < height;
                pixel(x + i, y, inside, (size_t)run.y[i] * width + (size_t)run.x[i]);
            }
        }
    }
}

bool make_rotated_mask(const rotation* turn, const uint8_t* mask, const mask_extent* extent,
                       rotated_mask* rotated) {
    const pixel_window reach = rotated_reach(turn, extent);
    const int64_t columns = max_i64((int64_t)reach.x_end - reach.x_begin, 0);
    const int64_t rows = max_i64((int64_t)reach.y_end - reach.y_begin, 0);
    uint8_t* samples = (uint8_t*)alloc_plane(columns, rows, 1);
    if (samples == NULL) return false;
    rotated->samples = samples;
    rotated->view = {samples, reach, columns, 1};
    uint8_t* to = samples;
    map_window(turn, &reach, [&](int32_t, int32_t, bool inside, size_t from) {
        *to++ = inside ? mask[from] : 0;
    });
    return true;
}

void free_rotated_mask(rotated_mask* rotated) {
    free(rotated->samples);
}

void rotate_colours(const rotation* turn, const uint8_t* frame, const pixel_window* window,
                    uint8_t* rotated) {
    const size_t width = (size_t)turn->width;
    map_window(turn, window, [&](int32_t x, int32_t y, bool inside, size_t from) {
        uint8_t* to = rotated + 4 * ((size_t)y * width + (size_t)x);
        uint32_t pixel = 0;
        if (inside) memcpy(&pixel, frame + 4 * from, 4);
        memcpy(to, &pixel, 4);
    });
}
