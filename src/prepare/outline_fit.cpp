// SPDX-License-Identifier: Apache-2.0
#include "prepare/outline_fit.h"

#include <math.h>

#include "memory.h"
#include "numeric.h"
#include "prepare/distance.h"

// Bins are a pixel of distance wide: bin b holds distances from b - BIN_ZERO on. SIDE of them on
// each side of a tried distance are compared.
enum { CELL = 32, SIDE = 2, BIN_ZERO = FIT_REACH + SIDE, BINS = 2 * BIN_ZERO };
enum { TRIED = 2 * FIT_REACH + 1 };
// A side with fewer pixels says nothing.
enum { FEWEST = 8 };
// Mean levels of difference.
static const float faintest_edge = 4.0f;
// How far the largest mean must stand out of the middle one. The means of a picture that is mere
// texture scatter by 0.4 / sqrt(squares), and the largest of 23 may lie three times that above.
static float clear_ratio(float squares) {
    return 1.15f + 1.2f / sqrtf(squares);
}

typedef struct bin {
    int32_t pixels, sum[3];
} bin;

static void add_row(const uint8_t* pixels, const int16_t* distance, int32_t width, bin* cells) {
    for (int32_t x = 0; x < width; x++) {
        const int32_t b = (distance[x] >> 4) + BIN_ZERO;
        if (b < 0 || b >= BINS) continue;
        bin* to = cells + (x / CELL) * BINS + b;
        to->pixels++;
        for (int c = 0; c < 3; c++)
            to->sum[c] += pixels[4 * x + 1 + c];
    }
}

// The difference of the mean colours before and behind the distance of bin `at`; its weight is 0
// where a side has too few pixels.
static float difference_at(const bin* bins, int at, float* weight) {
    bin sides[2] = {};
    for (int i = 0; i < SIDE; i++) {
        const bin* pair[2] = {bins + at - 1 - i, bins + at + i};
        for (int s = 0; s < 2; s++) {
            sides[s].pixels += pair[s]->pixels;
            for (int c = 0; c < 3; c++)
                sides[s].sum[c] += pair[s]->sum[c];
        }
    }
    const int32_t fewer = sides[0].pixels < sides[1].pixels ? sides[0].pixels : sides[1].pixels;
    *weight = fewer < FEWEST ? 0.0f : (float)fewer;
    if (fewer < FEWEST) return 0.0f;
    float square = 0.0f;
    for (int c = 0; c < 3; c++) {
        const float difference = (float)sides[1].sum[c] / (float)sides[1].pixels -
                                 (float)sides[0].sum[c] / (float)sides[0].pixels;
        square += difference * difference;
    }
    return sqrtf(square);
}

// Mean differences of all tried distances.
typedef struct profile {
    float sum[TRIED], weight[TRIED];
    int32_t squares[TRIED];  // that had enough pixels
} profile;

static void add_cells(const bin* cells, int64_t count, profile* to) {
    for (int64_t i = 0; i < count; i++, cells += BINS) {
        for (int t = 0; t < TRIED; t++) {
            float weight;
            const float difference = difference_at(cells, t + SIDE, &weight);
            to->sum[t] += weight * difference;
            to->weight[t] += weight;
            to->squares[t] += weight > 0.0f;
        }
    }
}

static float middle_of(const float* values, int count) {
    float sorted[TRIED];
    for (int i = 0; i < count; i++) {
        int at = i;
        for (; at > 0 && sorted[at - 1] > values[i]; at--)
            sorted[at] = sorted[at - 1];
        sorted[at] = values[i];
    }
    return sorted[count / 2];
}

// Whether the edge at a distance stands out. Only means for the same number of pixels compare here:
// outwards there are more of them.
static bool stands_out(const profile* from, int at) {
    float mean[TRIED];
    for (int t = 0; t < TRIED; t++)
        mean[t] = from->weight[t] > 0.0f ? from->sum[t] / from->weight[t] : 0.0f;
    const float clear = clear_ratio((float)from->squares[at]);
    return mean[at] >= faintest_edge && mean[at] >= clear * middle_of(mean, TRIED);
}

static outline_fit read_profile(const profile* from) {
    float mean[TRIED], heaviest = 0.0f;
    for (int t = 0; t < TRIED; t++)
        heaviest = from->weight[t] > heaviest ? from->weight[t] : heaviest;
    int best = 0;
    for (int t = 0; t < TRIED; t++) {
        // Parts that the object is not thick enough for at a distance count there as without an
        // edge; left out, they would make the others look better.
        mean[t] = heaviest > 0.0f ? from->sum[t] / heaviest : 0.0f;
        if (mean[t] > mean[best]) best = t;
    }
    outline_fit fit = {IMAGEBLEND_FIT_UNCLEAR, 0.0f};
    if (!stands_out(from, best)) return fit;
    // An object that grows by more than it is deep is another one that lies around it.
    const int outwards = FIT_REACH - best;
    if (outwards > 0 && from->weight[FIT_REACH + outwards - 1] == 0.0f) return fit;
    fit.status = IMAGEBLEND_FIT_BEYOND;
    if (best == 0 || best == TRIED - 1) return fit;
    const float before = mean[best - 1], behind = mean[best + 1];
    const float bend = before - 2.0f * mean[best] + behind;
    const float fraction = bend < 0.0f ? 0.5f * (before - behind) / bend : 0.0f;
    fit.status = IMAGEBLEND_FIT_KEPT;
    fit.inwards = (float)(best - FIT_REACH) + fraction;
    return fit;
}

bool fit_outline(const blend_image* picture, const imageblend_box* box, const int16_t* distance,
                 outline_fit* fit) {
    const int64_t cells = ((int64_t)box->width + CELL - 1) / CELL;
    bin* bins = (bin*)alloc_plane(cells, BINS, sizeof(bin));
    if (bins == NULL) return false;
    profile means = {};
    for (int64_t top = 0; top < box->height; top += CELL) {
        for (int64_t i = 0; i < cells * BINS; i++)
            bins[i] = bin{};
        for (int64_t y = top; y < min_i64(box->height, top + CELL); y++) {
            const size_t first =
                (size_t)(box->top + y) * (size_t)picture->width + (size_t)box->left;
            add_row(picture->data + 4 * first, distance + y * box->width, box->width, bins);
        }
        add_cells(bins, cells, &means);
    }
    free(bins);
    *fit = read_profile(&means);
    return true;
}
