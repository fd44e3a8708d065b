// SPDX-License-Identifier: Apache-2.0
#include <string.h>

#include "numeric.h"
#include "prepare/alpha.h"
#include "prepare/layer.h"
#include "prepare/picture.h"
#include "prepare/surroundings.h"

// A row of the destination from `left` on, its first and last pixels repeated beyond it.
static void copy_row(const uint8_t* from, int64_t from_width, int64_t left, uint8_t* row,
                     int64_t width) {
    const int64_t begin = clamp_i64(-left, 0, width);
    const int64_t end = clamp_i64(from_width - left, begin, width);
    for (int64_t x = 0; x < begin; x++)
        memcpy(row + 4 * x, from, 4);
    if (end > begin) memcpy(row + 4 * begin, from + 4 * (left + begin), 4 * (size_t)(end - begin));
    for (int64_t x = end; x < width; x++)
        memcpy(row + 4 * x, from + 4 * (from_width - 1), 4);
}

// A row of an icon of which nothing is new: the destination's colours and 0.
static void start_row(const uint8_t* __restrict from, int64_t width, uint8_t* __restrict icon) {
    const uint8_t colour[4] = {0, 255, 255, 255};
    uint32_t kept;
    memcpy(&kept, colour, 4);
    for (int64_t i = 0; i < 4 * width; i += 4) {
        uint32_t pixel;
        memcpy(&pixel, from + i, 4);
        pixel &= kept;
        memcpy(icon + i, &pixel, 4);
    }
}

static void copy_destination(const blend_image* destination, const imageblend_frames* frames) {
    const size_t row_bytes = 4 * (size_t)frames->box.width;
    for (int64_t y = 0; y < frames->box.height; y++) {
        const int64_t row = clamp_i64(frames->box.top + y, 0, destination->height - 1);
        uint8_t* copy = frames->destination.data + (size_t)y * row_bytes;
        copy_row(destination->data + 4 * (size_t)row * (size_t)destination->width,
                 destination->width, frames->box.left, copy, frames->box.width);
        start_row(copy, frames->box.width, frames->icon.data + (size_t)y * row_bytes);
    }
}

// 255 halfway from the part that can change to the frames' border.
static void fill_mask(const imageblend_frames* frames, const span_box* inner) {
    const int64_t edge = (inner->left - frames->box.left + 2) / 2;
    const int64_t width = frames->box.width, height = frames->box.height;
    memset(frames->mask.data, 0, (size_t)width * (size_t)height);
    for (int64_t y = edge; y < height - edge; y++)
        memset(frames->mask.data + y * width + edge, 255, (size_t)(width - 2 * edge));
}

// One colour over a pixel, by `alpha`, 1 .. 255; byte 0 of the pixel becomes the alpha of both.
static void lay_over(const uint8_t* colour, int alpha, uint8_t* pixel) {
    const int under = pixel[0] * (255 - alpha);
    // Parts of 255 * 255.
    const int both = alpha * 255 + under;
    for (int c = 1; c <= 3; c++) {
        pixel[c] = (uint8_t)((colour[c] * alpha * 255 + pixel[c] * under + both / 2) / both);
    }
    pixel[0] = (uint8_t)((both + 127) / 255);
}

// A row of the object alone. Byte 0 of an icon's pixel becomes how much of it is new.
static void lay_object(const uint8_t* object, const uint8_t* under, int64_t count, uint8_t* icon) {
    for (int64_t i = 0; i < 4 * count; i += 4) {
        const uint8_t alpha = object[i];
        if (alpha == 0) continue;
        memcpy(icon + i, alpha == 255 ? object + i : under + i, 4);
        if (alpha == 255) continue;
        lay_over(object + i, alpha, icon + i);
        icon[i] = alpha;
    }
}

// A pixel of the surroundings by `weight`, as far as it is not the object's. The picture that they
// come from holds what is soft of the object already, its shadow too: laid under it, that would
// count twice. So only what is not the object's is lit.
static void lay_surroundings(const uint8_t* from, int alpha, int weight, const float* gain,
                             uint8_t* pixel) {
    const float own = (float)alpha / 255.0f;
    uint8_t colour[4] = {0};
    for (int c = 1; c <= 3; c++)
        colour[c] = float_to_byte((float)from[c] * (gain[c - 1] + (1.0f - gain[c - 1]) * own));
    lay_over(colour, weight, pixel);
}

// The same with surroundings `from`, whose weights begin at `index`.
static void lay_with_surroundings(const uint8_t* object, const uint8_t* under, const uint8_t* from,
                                  const surroundings* around, int64_t index, int64_t count,
                                  uint8_t* icon) {
    for (int64_t i = 0; i < 4 * count; i += 4, index++) {
        const int alpha = object[i];
        if (alpha == 255) {
            memcpy(icon + i, object + i, 4);
            continue;
        }
        const int rest = ((255 - alpha) * surroundings_weight(around, index) + 127) / 255;
        if (alpha + rest == 0) continue;
        memcpy(icon + i, under + i, 4);
        if (alpha > 0) lay_over(object + i, alpha, icon + i);
        if (rest > 0) lay_surroundings(from + i, alpha, rest, around->gain, icon + i);
        icon[i] = (uint8_t)(alpha + rest);
    }
}

// The object over its surroundings over the destination, in the part that can change.
static void lay_layer(const imageblend_layer* layer, const imageblend_frames* frames,
                      const surroundings* around, const span_box* inner) {
    const int64_t count = inner->right - inner->left, width = layer->object->width;
    for (int64_t y = inner->top; y < inner->bottom; y++) {
        const int64_t from = (y - layer->top) * width + inner->left - layer->left;
        const int64_t to =
            (y - frames->box.top) * frames->box.width + inner->left - frames->box.left;
        const uint8_t* object = layer->object->data + 4 * from;
        const uint8_t* under = frames->destination.data + 4 * to;
        uint8_t* icon = frames->icon.data + 4 * to;
        if (around->reach == 0) {
            lay_object(object, under, count, icon);
        } else {
            lay_with_surroundings(object, under, layer->surroundings->data + 4 * from, around,
                                  area_index(around, inner->left, y), count, icon);
        }
    }
}

int32_t lay_frames(const imageblend_layer* layer, const blend_image* destination,
                   const imageblend_frames* frames, const span_box* inner, int32_t* reach) {
    surroundings around;
    if (!alloc_surroundings(layer, frames, inner, &around)) return -1;
    copy_destination(destination, frames);
    fill_mask(frames, inner);
    find_surroundings(layer, frames, &around);
    lay_layer(layer, frames, &around, inner);
    if (reach != NULL) *reach = around.reach;
    free_surroundings(&around);
    return 0;
}

int32_t imageblend_lay(const imageblend_layer* layer, const blend_image* destination,
                       const imageblend_frames* frames, int32_t* reach) {
    if (!picture_is_valid(destination) || frames == NULL) return -1;
    imageblend_frames placed;
    span_box inner;
    if (place_layer(layer, destination->width, destination->height, &placed, &inner) != 0)
        return -1;
    const imageblend_box* box = &placed.box;
    if (memcmp(box, &frames->box, sizeof *box) != 0) return -1;
    const blend_image* records[] = {&frames->icon, &frames->mask, &frames->destination};
    for (const blend_image* record : records) {
        if (!has_size(record, box->width, box->height)) return -1;
    }
    return lay_frames(layer, destination, frames, &inner, reach);
}

int32_t imageblend_finish(const imageblend_frames* frames, const blend_image* blended,
                          blend_image* output) {
    if (frames == NULL || !picture_is_valid(output)) return -1;
    const imageblend_box* box = &frames->box;
    if (!has_size(&frames->icon, box->width, box->height)) return -1;
    if (!has_size(blended, box->width, box->height)) return -1;
    const span_box whole = {0, 0, output->width, output->height};
    const span_box place = span_of(box), seen = cut_span(&whole, &place);
    if (is_empty(&seen)) return 0;
    for (int64_t y = seen.top; y < seen.bottom; y++) {
        const int64_t from = (y - place.top) * box->width + seen.left - place.left;
        const uint8_t* icon = frames->icon.data + 4 * from;
        const uint8_t* source = blended->data + 4 * from;
        uint8_t* target = output->data + 4 * (y * output->width + seen.left);
        int64_t begin, end;
        find_seen(icon, seen.right - seen.left, 4, &begin, &end);
        for (int64_t i = 4 * begin; i < 4 * end; i += 4) {
            const int alpha = icon[i];
            if (alpha == 0) continue;
            const int kept = alpha == 255 ? 0 : ((255 - alpha) * target[i] + 127) / 255;
            memcpy(target + i, source + i, 4);
            target[i] = (uint8_t)(alpha + kept);
        }
    }
    return 0;
}
