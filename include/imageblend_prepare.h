/* SPDX-License-Identifier: Apache-2.0 */
/*
 * imageblend_prepare.h - from the picture and the mask that people have to frames that blend well.
 *
 * vorn_imageBlending mixes the two pictures over many pixels on both sides of the mask's edge.
 * Handed a photo and a mask that follows the object, it draws the object's old surroundings into
 * the new picture: a rim. The functions here make frames in which there is nothing foreign to draw
 * in:
 *
 *   imageblend_clean   the object alone: soft alpha, the outline where the picture has it, and
 *                      colours without what stood behind it
 *   (the caller may scale and turn that picture, with its colours weighed by alpha)
 *   imageblend_place   which part of the destination the blend works on
 *   imageblend_lay     icon, mask and destination frames of that part
 *   imageblend_finish  puts the blended part back into the picture
 *
 * Between the last two stands one call of vorn_imageBlending on the frames, at zoom 1 and angle 0.
 * imageblend_paste is all of it in one call, for an object that is neither scaled nor turned.
 *
 * PICTURES. The record blend_image and its pixels are those of imageblend.h. Here byte 0 of a
 * colour pixel is read where the text says so: alpha, 0 transparent to 255 opaque. Colours are not
 * multiplied by alpha, except where imageblend_clean finds that its input's are. Channels are
 * treated alike, so their order is the caller's.
 *
 * STATUS. 0 is success. -1 is failure: a null pointer, a side below 1, sizes that do not belong
 * together or overflow, a number out of its range, or missing memory. Nothing is written then.
 *
 * OWNERSHIP. The caller owns every record and buffer; nothing is kept after a call. Inputs are only
 * read. Outputs must not overlap inputs unless the text allows it.
 *
 * THREADS. No state: any function may run at any time on any thread, also beside a blend.
 *
 * Results are the same bytes on every platform.
 */
#ifndef IMAGEBLEND_PREPARE_H
#define IMAGEBLEND_PREPARE_H

#include <imageblend.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Pixels left .. left + width - 1 and top .. top + height - 1 of a picture. */
typedef struct imageblend_box {
    int32_t left, top, width, height;
} imageblend_box;

/* An object in a picture. */
typedef struct imageblend_source {
    const blend_image* picture; /* colour */
    const blend_image* mask; /* 0 outside the object, 255 inside, between where it is both; of the
                                picture's size. Null: byte 0 of the picture's pixels is that */
} imageblend_source;

#define IMAGEBLEND_LARGEST_GROWTH 16

typedef struct imageblend_clean_options {
    int32_t fit; /* other than 0: the outline may be moved to where the picture's colours change */
    float grow;  /* then the outline moves outwards by so many pixels, inwards when negative;
                    -16 .. 16 */
} imageblend_clean_options;

/* What the edge of an object is like. */
enum {
    IMAGEBLEND_ALPHA_HARD = 0,    /* inside or outside, nothing between */
    IMAGEBLEND_ALPHA_OUTLINE = 1, /* soft for a pixel or two along an outline */
    IMAGEBLEND_ALPHA_SOFT = 2     /* soft over some width: hair, smoke, a shadow */
};

/* What became of the outline. */
enum {
    IMAGEBLEND_FIT_NONE = 0, /* not tried: switched off, nothing but the object to see, or soft */
    IMAGEBLEND_FIT_UNCLEAR = 1, /* no edge in the picture stands out; taken as drawn */
    IMAGEBLEND_FIT_BEYOND = 2,  /* drawn loosely, the edge lies beyond reach; taken as drawn */
    IMAGEBLEND_FIT_KEPT = 3,    /* it lies where it was drawn */
    IMAGEBLEND_FIT_MOVED = 4
};

typedef struct imageblend_findings {
    int32_t alpha;         /* IMAGEBLEND_ALPHA_... */
    int32_t premultiplied; /* 1: colours were multiplied by alpha, and have been divided */
    int32_t surroundings;  /* 1: the picture shows what is around the object; 0: a cut-out */
    int32_t fit;           /* IMAGEBLEND_FIT_... */
    float moved;           /* pixels that the fit moved the outline outwards; negative inwards */
} imageblend_findings;

/*
 * Finds the part of the picture that imageblend_clean works on: the object's box with room for a
 * moving outline and for the colours around it, inside the picture.
 *
 * Beside a mask no pixel of the picture is read.
 *
 * Returns 0; `box` has a width of 0 when no alpha is above 0, which is no failure.
 * Memory: none.
 */
IMAGEBLEND_API int32_t imageblend_clean_box(const imageblend_source* source, imageblend_box* box);

/*
 * Makes the object as a picture of its own.
 *
 *   source    the object
 *   options   null: fit, grow 0
 *   box       from imageblend_clean_box of the same source
 *   object    `width` and `height` must be the box's, `data` must hold width * height * 4 bytes.
 *             Receives alpha in byte 0 and the object's colours; 0 in all bytes where alpha is 0
 *   findings  may be null
 *
 * Alpha. A hard outline is softened by a pixel; softness that is there stays as it is, but for
 * `grow` and for an outline that moves. Where the picture shows what is around the object, a hard
 * outline or one that is soft for a pixel or two moves as a whole, by the one distance at which the
 * colours on its two sides differ most, if that stands out; less than 11 pixels. Colours. What
 * shines through from behind is taken out of the pixels along the edge, and of soft areas; colours
 * that were multiplied by alpha are divided.
 *
 * Memory while it runs: 11 bytes for each pixel of the box, or 17 where softness stays in a picture
 * that shows what is around the object; and 16 KB and 16 bytes for each of its columns and rows.
 */
IMAGEBLEND_API int32_t imageblend_clean(const imageblend_source* source,
                                        const imageblend_clean_options* options,
                                        const imageblend_box* box, blend_image* object,
                                        imageblend_findings* findings);

/* Surroundings as wide as they match, IMAGEBLEND_SURROUNDINGS_WIDEST at most. */
#define IMAGEBLEND_SURROUNDINGS_AUTO (-1)
#define IMAGEBLEND_SURROUNDINGS_WIDEST 32
#define IMAGEBLEND_LARGEST_REACH 256

/* An object that is to stand in a destination. */
typedef struct imageblend_layer {
    const blend_image* object;       /* colour, alpha in byte 0 */
    const blend_image* surroundings; /* null, or the picture around the object, as large as `object`
                                        and lying on it; byte 0 is 0 where it does not reach */
    int32_t reach;     /* pixels of the surroundings that come along around the object,
                          0 .. 256, or IMAGEBLEND_SURROUNDINGS_AUTO */
    int32_t left, top; /* where the object's top left pixel stands in the destination;
                          the object may lie across the border and be larger */
} imageblend_layer;

/* The frames of one blend. */
typedef struct imageblend_frames {
    imageblend_box box;         /* their place in the destination, which it may exceed */
    int32_t center_x, center_y; /* for vorn_imageBlending, in the frames */
    blend_image icon;           /* colour; byte 0 says how much of a pixel is new, 0 .. 255 */
    blend_image mask;
    blend_image destination; /* colour; beyond the destination its edge is repeated */
} imageblend_frames;

/*
 * Finds the part of a destination that a blend has to work on, with the blend's margins.
 *
 *   layer          the object and its place
 *   width, height  the destination's size
 *   frames         all fields are set; those named `data` to null
 *
 * Returns 0; all sizes in `frames` are 0 when no pixel of the object with alpha above 0 lies in the
 * destination. There is nothing to lay then.
 * Memory: none.
 */
IMAGEBLEND_API int32_t imageblend_place(const imageblend_layer* layer, int32_t width,
                                        int32_t height, imageblend_frames* frames);

/*
 * Fills the frames. The icon frame is the object over its surroundings over the destination, as
 * far as they lie in the destination; the mask covers them with the blend's margin: where it ends,
 * both pictures are the same, and no seam can show. Surroundings fade into the destination and are
 * lit like it, by one gain for each channel: the median over what is seen of the ring.
 *
 *   layer, destination  as for imageblend_place; byte 0 of the destination is its alpha
 *   frames              from imageblend_place; the three `data` must hold box.width * box.height
 *                       pixels
 *   reach               may be null; receives the pixels of surroundings that came along
 *
 * Memory while it runs: 4 bytes for each pixel of the frames, or less, and 24 KB if `surroundings`
 * is set and `reach` is not 0, else none.
 */
IMAGEBLEND_API int32_t imageblend_lay(const imageblend_layer* layer, const blend_image* destination,
                                      const imageblend_frames* frames, int32_t* reach);

/*
 * Puts the blended frame back. Pixels of `output` that have nothing of the object or its
 * surroundings keep all their bytes; byte 0 of the others becomes the alpha of both pictures.
 *
 *   frames   from imageblend_lay
 *   blended  colour, of the frames' size, as vorn_imageBlending wrote it, which may be into
 *            frames->destination but not into frames->icon: byte 0 of that is read here
 *   output   colour, of the destination's size, holding a copy of it; may be the destination itself
 *
 * Memory: none.
 */
IMAGEBLEND_API int32_t imageblend_finish(const imageblend_frames* frames,
                                         const blend_image* blended, blend_image* output);

/*
 * imageblend_place, imageblend_lay, vorn_imageBlending and imageblend_finish in one call.
 *
 *   picture  the destination, which the object is put into; unchanged when nothing of the object
 *            lies in it, which is a success
 *   reach    may be null; receives the pixels of surroundings that came along
 *
 * Memory while it runs: 9 bytes for each pixel of the frames, and that of imageblend_lay or of the
 * blend, whichever is more.
 */
IMAGEBLEND_API int32_t imageblend_paste(const imageblend_layer* layer, blend_image* picture,
                                        int32_t* reach);

#ifdef __cplusplus
}
#endif

#endif /* IMAGEBLEND_PREPARE_H */
