// SPDX-License-Identifier: Apache-2.0
#include <string.h>

#include "blend/depth.h"
#include "memory.h"
#include "numeric.h"
#include "prepare/alpha.h"
#include "prepare/layer.h"
#include "prepare/picture.h"

// The blend keeps a pixel away from the frame's border.
enum { FRAME_SPARE = 2 };

// The margin that the blend wants around a box.
static int64_t blend_margin(int64_t shorter) {
    return margin_of_level(depth_of_side(saturate_i32(shorter), BASE_LEVEL, true));
}

// How far the mask reaches beyond what is new, so that the blend changes over where both pictures
// are the same. Its pyramid is as deep as the mask's box with margins allows.
static int64_t mask_growth(int64_t shorter) {
    int64_t growth = 8;
    for (;; growth *= 2) {
        const int64_t mask = shorter + 2 * growth;
        if (growth >= blend_margin(mask + 2 * blend_margin(mask))) return growth;
    }
}

bool layer_is_valid(const imageblend_layer* layer) {
    if (layer == NULL || !picture_is_valid(layer->object)) return false;
    if (layer->reach < IMAGEBLEND_SURROUNDINGS_AUTO || layer->reach > IMAGEBLEND_LARGEST_REACH)
        return false;
    return layer->surroundings == NULL ||
           has_size(layer->surroundings, layer->object->width, layer->object->height);
}

int32_t layer_reach(const imageblend_layer* layer) {
    if (layer->surroundings == NULL) return 0;
    return layer->reach < 0 ? IMAGEBLEND_SURROUNDINGS_WIDEST : layer->reach;
}

span_box span_of(const imageblend_box* box) {
    const int64_t left = box->left, top = box->top;
    return {left, top, left + box->width, top + box->height};
}

span_box cut_span(const span_box* a, const span_box* b) {
    return {max_i64(a->left, b->left), max_i64(a->top, b->top), min_i64(a->right, b->right),
            min_i64(a->bottom, b->bottom)};
}

span_box grow_span(const span_box* box, int64_t by) {
    return {box->left - by, box->top - by, box->right + by, box->bottom + by};
}

bool is_empty(const span_box* box) {
    return box->right <= box->left || box->bottom <= box->top;
}

// The box of the object's pixels that are not transparent, of those in `within`; both in the
// object's own pixels.
static span_box opaque_box(const blend_image* object, const span_box* within) {
    span_box found = {within->right, within->bottom, within->left, within->top};
    for (int64_t y = within->top; y < within->bottom; y++) {
        const uint8_t* row = object->data + 4 * (size_t)y * (size_t)object->width;
        int64_t begin, end;
        find_seen(row + 4 * within->left, within->right - within->left, 4, &begin, &end);
        if (begin == end) continue;
        found.left = min_i64(found.left, within->left + begin);
        found.right = max_i64(found.right, within->left + end);
        found.top = min_i64(found.top, y);
        found.bottom = y + 1;
    }
    return found;
}

// The part of the destination that can change; empty if no pixel of the object lies in it.
static span_box inner_box(const imageblend_layer* layer, int64_t width, int64_t height) {
    const int64_t left = layer->left, top = layer->top, reach = layer_reach(layer);
    const span_box object = {0, 0, layer->object->width, layer->object->height};
    const span_box destination = {-left, -top, width - left, height - top};
    const span_box none = {0, 0, 0, 0};
    const span_box shown = cut_span(&object, &destination);
    if (is_empty(&shown)) return none;
    span_box opaque = opaque_box(layer->object, &shown);
    if (is_empty(&opaque)) return none;
    if (reach > 0) {
        // Surroundings of what lies beyond the border can be seen too.
        span_box near = grow_span(&destination, reach);
        near = cut_span(&object, &near);
        opaque = opaque_box(layer->object, &near);
        opaque = grow_span(&opaque, reach);
        opaque = cut_span(&opaque, &shown);
    }
    return {opaque.left + left, opaque.top + top, opaque.right + left, opaque.bottom + top};
}

int32_t place_layer(const imageblend_layer* layer, int32_t width, int32_t height,
                    imageblend_frames* frames, span_box* inner) {
    if (!layer_is_valid(layer) || frames == NULL || width < 1 || height < 1) return -1;
    *inner = inner_box(layer, width, height);
    if (is_empty(inner)) {
        memset(frames, 0, sizeof *frames);
        return 0;
    }
    const int64_t shorter = min_i64(inner->right - inner->left, inner->bottom - inner->top);
    const int64_t growth = mask_growth(shorter);
    const span_box outer = grow_span(inner, 2 * growth + FRAME_SPARE);
    const int64_t frame_width = outer.right - outer.left, frame_height = outer.bottom - outer.top;
    size_t bytes;
    if (!buffer_size(frame_width, frame_height, 4, &bytes)) return -1;
    if (frame_width > INT32_MAX || frame_height > INT32_MAX || outer.left < INT32_MIN ||
        outer.top < INT32_MIN)
        return -1;
    memset(frames, 0, sizeof *frames);
    frames->box = imageblend_box{(int32_t)outer.left, (int32_t)outer.top, (int32_t)frame_width,
                                 (int32_t)frame_height};
    blend_image* records[] = {&frames->icon, &frames->mask, &frames->destination};
    for (blend_image* record : records) {
        record->width = frames->box.width;
        record->height = frames->box.height;
    }
    // The blend centres the mask's box on this point, and rounds half pixels down.
    frames->center_x = (int32_t)((frame_width + 1) / 2);
    frames->center_y = (int32_t)((frame_height + 1) / 2);
    return 0;
}

int32_t imageblend_place(const imageblend_layer* layer, int32_t width, int32_t height,
                         imageblend_frames* frames) {
    span_box inner;
    return place_layer(layer, width, height, frames, &inner);
}
