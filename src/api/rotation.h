// Rotation of a frame and its mask about the object's centre.
#ifndef IMAGEBLEND_API_ROTATION_H
#define IMAGEBLEND_API_ROTATION_H

#include <stdint.h>

typedef struct rotation {
    float cosine, sine;
    int32_t center_x, center_y;
} rotation;

// The angle in degrees is converted with the constant -3.1415926 / 180 in double precision, rounded
// to single; cosine and sine are the double functions of that, rounded again.
rotation make_rotation(float angle, int32_t center_x, int32_t center_y);

// Inverse mapping without interpolation: the output pixel (x, y), with dx and dy its distance from
// the centre, takes the source pixel
//   (trunc((center_x + sine dy) + cosine dx), trunc((center_y + cosine dy) - sine dx))
// in single precision, or 0 where that lies outside the frame. Since truncation is toward zero,
// positions between -1 and 0 read row or column 0.
//
// `mask` and `rotated_mask` are width x height bytes. `icon` and `rotated_icon` are frames of
// 4-byte pixels of that size, of which bytes 1, 2, 3 are read and written; both may be null.
void rotate_frame(const rotation* turn, int32_t width, int32_t height, const uint8_t* mask,
                  uint8_t* rotated_mask, const uint8_t* icon, uint8_t* rotated_icon);

#endif
