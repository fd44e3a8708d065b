/* SPDX-License-Identifier: Apache-2.0 */
/*
 * imageblend.h - the public boundary of libimageblend.
 *
 * libimageblend pastes an object that was cut out of one picture into another picture and hides the
 * join by multi-band (Laplacian pyramid) blending. The boundary is one record and four functions:
 *
 *   vorn_get_icon_size     how large is the object?
 *   vorn_create_rgb_icon   cut the object out as a small picture
 *   vorn_verify_icon_pos   would the object fit at this centre, zoom and angle?
 *   vorn_imageBlending     blend it in
 *
 * Each call stands alone; the order above is the order in which a caller usually needs them. The
 * header is self-contained and valid C99 and C++.
 *
 * FRAMES. One blend works on four full frames of one size, width x height:
 *
 *   icon         colour   the picture that the object is taken from
 *   mask         1 byte   marks the object in the icon
 *   destination  colour   the picture that the object is put into
 *   output       colour   receives the result
 *
 * A colour pixel has 4 bytes: byte 0 is alpha, bytes 1, 2 and 3 are three colour channels of 0..255
 * that are blended alike and never converted, so their order is the caller's. Alpha is never read.
 * Pixel (x, y) starts at byte (y * width + x) * 4; there is no padding between rows. A mask pixel
 * is the byte at y * width + x: 0 is outside the object, anything else is inside. Where the mask
 * weighs two pictures its value counts too: 255 shows the icon alone and smaller values mix.
 *
 * COORDINATES. x runs to the right and y downwards from the top left pixel (0, 0). Angles are in
 * degrees; a positive angle turns the object counter-clockwise as one sees the picture.
 *
 * STATUS. Every function returns a 32-bit status: 0 is success and -1 is failure. A null pointer to
 * a record, to a record's pixels or to a result returns -1 at once with nothing logged or written.
 *
 * OWNERSHIP. The caller owns every record and every buffer. The library frees none of them and
 * keeps no pointer into them after a call has returned.
 *
 * THREADS. Every function may run at any time, on any thread, beside any other call: each call owns
 * what it works on. Only buffers that a call writes must not be in use elsewhere meanwhile.
 * vorn_imageBlending may use up to three threads beside the caller's, which are joined before it
 * returns.
 *
 * DIAGNOSTICS. Messages go to the Android log under the tag "IMAGE_BLENDING". On other platforms
 * they go to the program's own function __android_log_print(int priority, const char* tag, const
 * char* format, ...) if it has one; else a small stand-in inside the library prints them to standard
 * error from the priority that the environment variable IMAGEBLEND_LOG names (debug, info, warn or
 * error), and nothing when it is not set.
 * Threads that cannot be started or joined are reported on standard output.
 */
#ifndef IMAGEBLEND_H
#define IMAGEBLEND_H

#include <stdint.h>

#define IMAGEBLEND_VERSION_MAJOR 2
#define IMAGEBLEND_VERSION_MINOR 0
#define IMAGEBLEND_VERSION_PATCH 0

#if defined(__GNUC__)
#define IMAGEBLEND_API __attribute__((visibility("default")))
#else
#define IMAGEBLEND_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* A frame: packed rows of `width` pixels. Whether a pixel has 4 bytes (colour) or 1 (mask) follows
 * from the role in which the record is passed. */
typedef struct blend_image {
    int32_t width;  /* pixels in a row */
    int32_t height; /* rows */
    uint8_t* data;  /* first byte of the top left pixel */
} blend_image;

/*
 * Measures the object: the bounding box of the non-zero bytes of `mask`.
 *
 *   mask         the mask; read only
 *   icon_width   receives the width of the box, xmax - xmin + 1
 *   icon_height  receives its height, ymax - ymin + 1
 *
 * No margin and no zoom is applied. A mask without any non-zero byte yields 2 - width and
 * 2 - height, so a result below 1 says that there is no object (of masks with a side above 1).
 *
 * Returns 0.
 * Memory: none.
 */
IMAGEBLEND_API int32_t vorn_get_icon_size(const blend_image* mask, int32_t* icon_width,
                                          int32_t* icon_height);

/*
 * Cuts the object out of `source` as a picture of the size that vorn_get_icon_size reports.
 *
 *   source  colour frame of the mask's size; its `height` is not read, the mask's is used
 *   mask    the mask; read only
 *   icon    `data` must hold icon_width * icon_height * 4 bytes; the function fills them and sets
 *           `width` and `height`
 *   zoom    accepted for symmetry; it has no effect on the picture
 *
 * A pixel inside the mask gets alpha 255 and the source's colour; all four bytes of a pixel outside
 * are 0. A mask without an object sets a size below 1 and writes no pixel, if both its sides are
 * above 1; a mask with one side of 1 and no object fails. `icon->data` must not overlap the inputs.
 *
 * Returns 0, or -1 when a work buffer cannot be allocated (nothing of `icon` is written then).
 * Memory: one byte for every frame pixel and three for every pixel of the box, while it runs.
 */
IMAGEBLEND_API int32_t vorn_create_rgb_icon(const blend_image* source, const blend_image* mask,
                                            blend_image* icon, float zoom);

/*
 * Tells whether the object would fit at a placement, without blending.
 *
 *   mask_data           the mask's bytes, width x height; read only
 *   width, height       size of the mask, taken as the size of the destination too
 *   reserved1, 2        ignored
 *   center_x, center_y  where the object's centre is to stand in the destination
 *   zoom                scale factor, 1 keeps the object's size
 *   angle               rotation in degrees; exactly 0 skips the rotation
 *
 * The blend needs a margin of 8 to 64 pixels around the object, more for larger objects and none
 * for one whose shorter side is below 16; the log names each side of the destination at which it is
 * missing ("dst pic xl seam", "xr", "yu", "yd" for left, right, top and bottom).
 *
 * Returns 0 when the object fits with full margins, 1 when a margin touches the border of the
 * frame (a seam may show there), -1 when the object cannot be placed. Needs no memory.
 */
IMAGEBLEND_API int32_t vorn_verify_icon_pos(const uint8_t* mask_data, int32_t width, int32_t height,
                                            int32_t reserved1, int32_t reserved2, int32_t center_x,
                                            int32_t center_y, float zoom, float angle);

/*
 * Blends the object of `icon` into `destination` and writes the result to `output`.
 *
 *   icon                colour frame, read only
 *   destination         colour frame, read only
 *   mask                the object in `icon`, read only
 *   output              `data` must hold width * height * 4 bytes; its `width` and `height` are
 *                       neither read nor written
 *   reserved1, 2        ignored
 *   center_x, center_y  where the object's centre is to stand in the destination
 *   zoom                scale factor, 1 keeps the object's size
 *   angle               rotation in degrees about the object's centre; exactly 0 skips it
 *
 * The icon, the destination and the mask must have one size. The output receives a copy of the
 * destination, in which the rectangle around the object is replaced by the blend; those pixels have
 * alpha 255, all others keep the destination's four bytes. The rectangle starts at column 1 and row
 * 1 at the earliest and ends one pixel before the frame, so an object that is placed too near to a
 * border is moved inwards (ask vorn_verify_icon_pos); one as wide or as high as the frame is moved
 * by one pixel to the left or upwards. An object of no size, after zooming, leaves a plain copy of
 * the destination and is a success.
 *
 * ALIASING. `output->data` may be `destination->data` or `icon->data`, or overlap the inputs in any
 * other way: the result is as if everything had been read before the output was written.
 *
 * Returns 0 on success. Returns -1 with `output` untouched or a plain copy of the destination when
 * the zoomed object is larger than the destination, when the sizes differ, or when memory runs out.
 * Memory: about 4.5 bytes for every pixel of the zoomed rectangle, 3 more when zoom is not 1, and
 * one for every pixel of the object's box; working rows, 36 of the rectangle's width for each thread
 * and, when zoom is not 1, 32 of that width and 12 of the box's. An angle takes no more.
 * Where the output shares memory with the icon or, other than pixel for pixel, with the
 * destination, 6 bytes for every pixel of the rectangle come on top. A call that fails because the
 * zoomed object is too large does not give back the object's mask, nor, with an angle, 4 bytes for
 * every pixel of the frame before the next blend without an angle.
 */
IMAGEBLEND_API int32_t vorn_imageBlending(const blend_image* icon, const blend_image* destination,
                                          const blend_image* mask, blend_image* output,
                                          int32_t reserved1, int32_t reserved2, int32_t center_x,
                                          int32_t center_y, float zoom, float angle);

#ifdef __cplusplus
}
#endif

#endif /* IMAGEBLEND_H */
