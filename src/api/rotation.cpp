#include "api/rotation.h"

#include <math.h>
#include <stddef.h>

#include "numeric.h"

rotation make_rotation(float angle, int32_t center_x, int32_t center_y) {
    const float radians = (float)((double)angle * -3.1415926 / 180.0);
    rotation turn;
    turn.cosine = (float)cos((double)radians);
    turn.sine = (float)sin((double)radians);
    turn.center_x = center_x;
    turn.center_y = center_y;
    return turn;
}

static void copy_pixel(uint8_t* dst, const uint8_t* src) {
    dst[1] = src[1];
    dst[2] = src[2];
    dst[3] = src[3];
}

void rotate_frame(const rotation* turn, int32_t width, int32_t height, const uint8_t* mask,
                  uint8_t* rotated_mask, const uint8_t* icon, uint8_t* rotated_icon) {
    static const uint8_t outside[4] = {0, 0, 0, 0};
    const float fx = (float)turn->center_x, fy = (float)turn->center_y;
    const float c = turn->cosine, s = turn->sine;
    for (int32_t y = 0; y < height; y++) {
        const float dy = (float)y - fy;
        const float row_x = fx + s * dy;
        const float row_y = fy + c * dy;
        for (int32_t x = 0; x < width; x++) {
            const float dx = (float)x - fx;
            const int32_t sy = float_to_i32(row_y - s * dx);
            const int32_t sx = float_to_i32(row_x + c * dx);
            const bool inside = sy >= 0 && sy < height && sx >= 0 && sx < width;
            const size_t to = (size_t)y * (size_t)width + (size_t)x;
            const size_t from = inside ? (size_t)sy * (size_t)width + (size_t)sx : 0;
            rotated_mask[to] = inside ? mask[from] : 0;
            if (rotated_icon != NULL) {
                copy_pixel(rotated_icon + 4 * to, inside ? icon + 4 * from : outside);
            }
        }
    }
}
