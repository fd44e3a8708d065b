// SPDX-License-Identifier: Apache-2.0
#include "imageblend_prepare.h"
#include "memory.h"
#include "prepare/layer.h"
#include "prepare/picture.h"

// The frames' pixels: 4 + 4 + 1 bytes each, from one allocation, which is returned.
static uint8_t* alloc_frames(imageblend_frames* frames) {
    const int64_t pixels = (int64_t)frames->box.width * frames->box.height;
    uint8_t* block = (uint8_t*)alloc_plane(pixels, 9, 1);
    if (block == NULL) return NULL;
    frames->icon.data = block;
    frames->destination.data = block + 4 * pixels;
    frames->mask.data = block + 8 * pixels;
    return block;
}

static int32_t blend_frames(imageblend_frames* frames) {
    blend_image* destination = &frames->destination;
    return vorn_imageBlending(&frames->icon, destination, &frames->mask, destination, 0, 0,
                              frames->center_x, frames->center_y, 1.0f, 0.0f);
}

int32_t imageblend_paste(const imageblend_layer* layer, blend_image* picture, int32_t* reach) {
    if (!picture_is_valid(picture)) return -1;
    imageblend_frames frames;
    span_box inner;
    if (place_layer(layer, picture->width, picture->height, &frames, &inner) != 0) return -1;
    if (frames.box.width == 0) {
        if (reach != NULL) *reach = 0;
        return 0;
    }
    uint8_t* block = alloc_frames(&frames);
    if (block == NULL) return -1;
    int32_t used = 0;
    int32_t status = lay_frames(layer, picture, &frames, &inner, &used);
    if (status == 0) status = blend_frames(&frames);
    if (status == 0) status = imageblend_finish(&frames, &frames.destination, picture);
    free(block);
    if (status == 0 && reach != NULL) *reach = used;
    return status;
}
