// SPDX-License-Identifier: Apache-2.0
#include "prepare/cut_out.h"

#include <stdlib.h>
#include <string.h>

// A pixel of the box.
static const uint8_t* pixel_at(const blend_image* picture, const imageblend_box* box, int64_t x,
                               int64_t y) {
    return picture->data + 4 * ((box->top + y) * picture->width + box->left + x);
}

bool shows_surroundings(const blend_image* picture, const imageblend_box* box) {
    // The colour that more than half of the transparent pixels have, if there is one.
    uint8_t common[3] = {0, 0, 0};
    int64_t votes = 0, transparent = 0, alike = 0;
    for (int64_t y = 0; y < box->height; y++) {
        for (int64_t x = 0; x < box->width; x++) {
            const uint8_t* pixel = pixel_at(picture, box, x, y);
            if (pixel[0] != 0) continue;
            transparent++;
            if (votes == 0) memcpy(common, pixel + 1, 3);
            votes += memcmp(common, pixel + 1, 3) == 0 ? 1 : -1;
        }
    }
    for (int64_t y = 0; y < box->height; y++) {
        for (int64_t x = 0; x < box->width; x++) {
            const uint8_t* pixel = pixel_at(picture, box, x, y);
            alike += pixel[0] == 0 && memcmp(common, pixel + 1, 3) == 0;
        }
    }
    return alike * 20 < transparent * 19;
}

// The nearest opaque pixel along rows, columns and diagonals, up to 4 pixels away; null if none.
static const uint8_t* opaque_near(const blend_image* picture, const imageblend_box* box, int64_t x,
                                  int64_t y) {
    for (int64_t reach = 1; reach <= 4; reach++) {
        for (int64_t dy = -reach; dy <= reach; dy += reach) {
            for (int64_t dx = -reach; dx <= reach; dx += reach) {
                const int64_t u = x + dx, v = y + dy;
                if (u < 0 || v < 0 || u >= box->width || v >= box->height) continue;
                const uint8_t* pixel = pixel_at(picture, box, u, v);
                if (pixel[0] >= 250) return pixel;
            }
        }
    }
    return NULL;
}

typedef struct division_test {
    int64_t soft, above;           // soft pixels; those with a channel above alpha
    int64_t as_they_are, divided;  // differences to the opaque pixels near them
} division_test;

static void test_pixel(const blend_image* picture, const imageblend_box* box, int64_t x, int64_t y,
                       division_test* test) {
    const uint8_t* pixel = pixel_at(picture, box, x, y);
    const int alpha = pixel[0];
    if (alpha == 0 || alpha == 255) return;
    test->soft++;
    test->above += pixel[1] > alpha + 1 || pixel[2] > alpha + 1 || pixel[3] > alpha + 1;
    if (alpha < 32 || alpha > 224) return;
    const uint8_t* opaque = opaque_near(picture, box, x, y);
    if (opaque == NULL) return;
    for (int c = 1; c <= 3; c++) {
        test->as_they_are += abs(pixel[c] - opaque[c]);
        test->divided += abs(divide_by_alpha(pixel[c], alpha) - opaque[c]);
    }
}

bool is_premultiplied(const blend_image* picture, const imageblend_box* box) {
    division_test test = {0, 0, 0, 0};
    for (int64_t y = 0; y < box->height; y++) {
        for (int64_t x = 0; x < box->width; x++)
            test_pixel(picture, box, x, y, &test);
    }
    // Without opaque pixels to compare with, both differences are 0.
    return test.soft >= 16 && test.above * 100 <= test.soft && test.divided <= test.as_they_are;
}
