#include <string.h>

#include "numeric.h"
#include "prepare/surroundings.h"

// A destination around which the frames lie.
static bool destination_is_valid(const blend_image* destination) {
    return destination != NULL && destination->data != NULL && destination->width >= 1 &&
           destination->height >= 1;
}

static bool has_frame_size(const blend_image* image, const imageblend_frames* frames) {
    return image->data != NULL && image->width == frames->box.width &&
           image->height == frames->box.height;
}

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

static void copy_destination(const blend_image* destination, const imageblend_frames* frames) {
    const size_t row_bytes = 4 * (size_t)frames->box.width;
    for (int64_t y = 0; y < frames->box.height; y++) {
        const int64_t row = clamp_i64(frames->box.top + y, 0, destination->height - 1);
        copy_row(destination->data + 4 * (size_t)row * (size_t)destination->width,
                 destination->width, frames->box.left,
                 frames->destination.data + (size_t)y * row_bytes, frames->box.width);
    }
}

static void fill_mask(const imageblend_frames* frames, const span_box* inner) {
    const int64_t growth = frame_growth(frames, inner), edge = growth + FRAME_SPARE;
    const int64_t width = frames->box.width, height = frames->box.height;
    memset(frames->mask.data, 0, (size_t)width * (size_t)height);
    for (int64_t y = edge; y < height - edge; y++)
        memset(frames->mask.data + y * width + edge, 255, (size_t)(width - 2 * edge));
}

// One colour over a pixel, by `alpha`; byte 0 of the pixel becomes the alpha of both.
static void lay_over(const uint8_t* colour, int alpha, uint8_t* pixel) {
    if (alpha == 0) return;
    const int under = pixel[0] * (255 - alpha);
    // Parts of 255 * 255.
    const int both = alpha * 255 + under;
    for (int c = 1; c <= 3; c++) {
        pixel[c] = (uint8_t)((colour[c] * alpha * 255 + pixel[c] * under + both / 2) / both);
    }
    pixel[0] = (uint8_t)((both + 127) / 255);
}

static uint8_t lit(int channel, float gain) {
    const int32_t level = float_to_i32((float)channel * gain + 0.5f);
    return (uint8_t)(level < 255 ? level : 255);
}

// The object over its surroundings over the destination. Byte 0 becomes how much of that is new.
static void lay_pixel(const imageblend_layer* layer, const imageblend_frames* frames,
                      const surroundings* around, int64_t x, int64_t y) {
    const int64_t i = y * frames->box.width + x;
    uint8_t* pixel = frames->icon.data + 4 * i;
    const uint8_t* object = layer_pixel(layer, layer->object, frames, x, y);
    const int alpha = object != NULL ? object[0] : 0;
    const int weight = around->reach > 0 ? around->weight[i] : 0;
    if (weight > 0) {
        const uint8_t* from = layer_pixel(layer, layer->surroundings, frames, x, y);
        const uint8_t colour[4] = {0, lit(from[1], around->gain[0]), lit(from[2], around->gain[1]),
                                   lit(from[3], around->gain[2])};
        lay_over(colour, weight, pixel);
    }
    if (alpha > 0) lay_over(object, alpha, pixel);
    pixel[0] = (uint8_t)(alpha + ((255 - alpha) * weight + 127) / 255);
}

int32_t imageblend_lay(const imageblend_layer* layer, const blend_image* destination,
                       const imageblend_frames* frames, int32_t* reach) {
    if (!layer_is_valid(layer) || !destination_is_valid(destination) || frames == NULL) return -1;
    imageblend_frames placed;
    if (imageblend_place(layer, destination->width, destination->height, &placed) != 0) return -1;
    if (memcmp(&placed.box, &frames->box, sizeof placed.box) != 0) return -1;
    if (!has_frame_size(&frames->icon, frames) || !has_frame_size(&frames->mask, frames) ||
        !has_frame_size(&frames->destination, frames))
        return -1;

    surroundings around;
    if (!alloc_surroundings(layer, frames, &around)) return -1;
    copy_destination(destination, frames);
    find_surroundings(layer, frames, &around);
    const span_box inner = new_box(layer, destination->width, destination->height);
    fill_mask(frames, &inner);
    memcpy(frames->icon.data, frames->destination.data,
           4 * (size_t)frames->box.width * (size_t)frames->box.height);
    for (int64_t y = 0; y < frames->box.height; y++) {
        for (int64_t x = 0; x < frames->box.width; x++)
            lay_pixel(layer, frames, &around, x, y);
    }
    if (reach != NULL) *reach = around.reach;
    free_surroundings(&around);
    return 0;
}

int32_t imageblend_finish(const imageblend_frames* frames, const blend_image* blended,
                          blend_image* output) {
    if (frames == NULL || blended == NULL || !destination_is_valid(output)) return -1;
    if (frames->icon.data == NULL || !has_frame_size(blended, frames)) return -1;
    const span_box whole = {0, 0, output->width, output->height};
    const span_box box = span_of(&frames->box), seen = cut_span(&whole, &box);
    for (int64_t y = seen.top; y < seen.bottom; y++) {
        const size_t from = (size_t)(y - box.top) * (size_t)frames->box.width;
        const uint8_t* icon = frames->icon.data + 4 * from;
        const uint8_t* source = blended->data + 4 * from;
        uint8_t* target = output->data + 4 * (size_t)y * (size_t)output->width;
        for (int64_t x = seen.left; x < seen.right; x++) {
            const int64_t i = 4 * (x - box.left);
            const int alpha = icon[i];
            if (alpha == 0) continue;
            memcpy(target + 4 * x + 1, source + i + 1, 3);
            target[4 * x] = (uint8_t)(alpha + ((255 - alpha) * target[4 * x] + 127) / 255);
        }
    }
    return 0;
}
