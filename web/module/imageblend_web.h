/* SPDX-License-Identifier: Apache-2.0 */
/* What the module offers beside the functions of the library: what every caller in JavaScript would
 * have to write again, and slower. Pictures are as in imageblend_prepare.h: alpha in byte 0. */
#ifndef IMAGEBLEND_WEB_H
#define IMAGEBLEND_WEB_H

#include <imageblend_prepare.h>

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Finds the rectangle that vorn_imageBlending writes with these arguments, of frames of the mask's
 * size.
 *
 * Returns 0; -1 when that call would refuse the placement. Needs no memory.
 */
int32_t imageblend_web_box(const blend_image* mask, int32_t center_x, int32_t center_y, float zoom,
                           float angle, imageblend_box* box);

/* From pixels of a picture to pixels of another, both measured from the top left corner. */
typedef struct imageblend_web_turn {
    double from_x, from_y; /* this point of the picture, about which it is turned, */
    double to_x, to_y;     /* comes to stand here */
    double zoom;           /* scale factor, above 0 */
    double angle;          /* degrees, counter-clockwise */
} imageblend_web_turn;

/*
 * Scales and turns a picture with alpha, its colours weighed by alpha.
 *
 *   window  the part of the other picture that is wanted
 *   out     colour; its sides must be the window's. Receives 0 where the picture does not reach
 *
 * Below a scale of 1/n, n from 2 on, means of n x n pixels are scaled instead; what is then finer
 * than the new pixels is taken away by a Gaussian. The rest is bicubic.
 *
 * Returns 0, or -1 when a number is out of its range or memory runs out.
 * Memory while it runs: 16 bytes for every pixel of the picture, or of its means.
 */
int32_t imageblend_web_turned(const blend_image* picture, const imageblend_web_turn* turn,
                              const imageblend_box* window, blend_image* out);

#ifdef __cplusplus
}
#endif

#endif
