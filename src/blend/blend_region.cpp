// SPDX-License-Identifier: Apache-2.0
#include "blend/blend_region.h"

#include <string.h>

#include "blend/pyramid_blend.h"
#include "blend/resize.h"
#include "blend/rotated_icon.h"
#include "costs.h"
#include "frame.h"
#include "memory.h"
#include "numeric.h"

// The copy of the destination into the output, in pieces of some rows. The rectangle [left, right)
// x [top, bottom), which the blend will write itself, is left out.
typedef struct frame_copy {
    const blend_image* from;
    const blend_image* to;
    int32_t left, top, right, bottom;
} frame_copy;

static int32_t copy_pieces(const frame_copy* copy) {
    // The two may be one buffer, which holds everything already.
    if (copy->from->data == copy->to->data || frame_bytes(copy->from) == 0) return 0;
    return (copy->from->height - 1) / COPY_ROWS + 1;
}

static void copy_span(const frame_copy* copy, size_t begin_pixel, size_t end_pixel) {
    memmove(copy->to->data + 4 * begin_pixel, copy->from->data + 4 * begin_pixel,
            4 * (end_pixel - begin_pixel));
}

static void copy_piece(void* arg, int32_t index) {
    const frame_copy* copy = (const frame_copy*)arg;
    const size_t width = (size_t)copy->from->width;
    const int64_t begin = (int64_t)index * COPY_ROWS;
    const int64_t end = min_i64(begin + COPY_ROWS, copy->from->height);
    // Pixels up to `done` are copied; each row of the rectangle is a gap.
    size_t done = (size_t)begin * width;
    for (int64_t y = max_i64(begin, copy->top); y < min_i64(end, copy->bottom); y++) {
        copy_span(copy, done, (size_t)y * width + (size_t)copy->left);
        done = (size_t)y * width + (size_t)copy->right;
    }
    copy_span(copy, done, (size_t)end * width);
}

// The whole frame at once; `from` and `to` may overlap in any way.
static void copy_frame(const frame_copy* copy) {
    copy_span(copy, 0, frame_bytes(copy->from) / 4);
}

// Whether the output can be written while the inputs are still being read: it shares no byte with
// the source, and with the destination none or, pixel for pixel, all.
static bool can_stream(const blend_image* src, const blend_image* dst, const blend_image* out) {
    const size_t bytes = frame_bytes(dst);
    return !frame_overlaps(src, out->data, bytes) &&
           (dst->data == out->data || !frame_overlaps(dst, out->data, bytes));
}

// The source of a blend and what must be done before it can be read.
typedef struct blend_source {
    patch rectangle;
    const row_work* prepare;  // null where there is nothing
    int64_t turned_pixels;
    rectangle_resize resize;  // where there is a zoom
    row_work resize_work;
} blend_source;

static bool open_source(const blend_image* src, const rotation* turn, const blend_box* box,
                        blend_source* source) {
    *source = blend_source();
    source->rectangle = frame_patch(src, turn, box->zoom_left, box->zoom_top);
    if (turn != NULL) source->turned_pixels = (int64_t)box->crop_width * box->crop_height;
    if (box->zoom == 1.0f) return true;
    rectangle_resize* resize = &source->resize;
    resize->from = frame_patch(src, turn, box->crop_left, box->crop_top);
    resize->src_width = box->crop_width;
    resize->src_height = box->crop_height;
    resize->dst_width = box->zoom_width;
    resize->dst_height = box->zoom_height;
    resize->dst = (uint8_t*)alloc_plane(box->zoom_width, box->zoom_height, 3);
    if (!open_resize(resize) || resize->dst == NULL) return false;
    source->resize_work = {resize_part, resize, box->zoom_height,
                           (int64_t)box->zoom_width * box->zoom_height};
    source->prepare = &source->resize_work;
    source->rectangle = packed_patch(resize->dst, box->zoom_width, box->zoom_height);
    return true;
}

static void close_source(blend_source* source) {
    close_resize(&source->resize);
    free(source->resize.dst);
}

// Blends the rectangles straight from frame to frame, and copies the rest of the frame beside it.
static int32_t blend_streamed(const blend_source* src, const patch* dst, const uint8_t* mask,
                              frame_copy* copy, blend_workspace* ws) {
    const int64_t right = dst->x + (int64_t)ws->width, bottom = dst->y + (int64_t)ws->height;
    if (dst->x >= 0 && dst->y >= 0 && right <= dst->frame.width && bottom <= dst->frame.height) {
        copy->left = dst->x;
        copy->top = dst->y;
        copy->right = (int32_t)right;
        copy->bottom = (int32_t)bottom;
    }
    patch result = *dst;
    result.frame.data = copy->to->data;
    const int32_t pieces = copy_pieces(copy);
    const int64_t cost = (int64_t)pieces * COPY_ROWS * copy->from->width / COPIED_PIXELS_A_COST;
    const side_work beside = {copy_piece, copy, pieces, cost};
    const blend_extras extras = {src->prepare, &beside, src->turned_pixels};
    return pyramid_blend(&src->rectangle, dst, mask, &result, ws, &extras);
}

// A rectangle in memory of its own; null without memory.
static uint8_t* cut_patch(const patch* from, int32_t width, int32_t height) {
    uint8_t* pixels = (uint8_t*)alloc_plane(width, height, 3);
    if (pixels != NULL) read_rows(from, 0, height, width, pixels);
    return pixels;
}

// The same where writing the output would change what is still to be read: copies of the rectangles
// are blended, into an output that holds the destination by then.
static int32_t blend_copies(const blend_source* src, const patch* dst, const uint8_t* mask,
                            const frame_copy* copy, blend_workspace* ws) {
    const int32_t width = (int32_t)ws->width, height = (int32_t)ws->height;
    do_rows(src->prepare);
    uint8_t* src_patch = src->rectangle.packed ? NULL : cut_patch(&src->rectangle, width, height);
    uint8_t* dst_patch = cut_patch(dst, width, height);
    int32_t status = -1;
    if ((src->rectangle.packed || src_patch != NULL) && dst_patch != NULL) {
        const patch src_copy =
            src->rectangle.packed ? src->rectangle : packed_patch(src_patch, width, height);
        const patch dst_copy = packed_patch(dst_patch, width, height);
        patch result = *dst;
        result.frame.data = copy->to->data;
        copy_frame(copy);
        status = pyramid_blend(&src_copy, &dst_copy, mask, &result, ws, NULL);
    }
    free(src_patch);
    free(dst_patch);
    return status;
}

int32_t blend_region(const blend_image* src, const blend_image* dst, const uint8_t* mask,
                     const blend_image* out, const blend_box* box, const rotation* turn) {
    frame_copy copy = {dst, out, 0, 0, 0, 0};
    if (box->crop_width < 1 || box->crop_height < 1 || box->zoom_width < 1 ||
        box->zoom_height < 1) {
        copy_frame(&copy);
        free_rotated_icon();
        return 0;
    }
    const patch rectangle = frame_patch(dst, NULL, box->left, box->top);
    blend_source source;
    blend_workspace* ws = NULL;
    int32_t status = -1;
    if (open_source(src, turn, box, &source)) {
        ws = alloc_blend_workspace(box->zoom_width, box->zoom_height,
                                   box->levels > 0 ? (uint32_t)box->levels : 0);
    }
    if (ws != NULL) {
        status = can_stream(src, dst, out) ? blend_streamed(&source, &rectangle, mask, &copy, ws)
                                           : blend_copies(&source, &rectangle, mask, &copy, ws);
    }
    free_blend_workspace(ws);
    close_source(&source);
    free_rotated_icon();
    return status;
}
