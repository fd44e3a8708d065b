// SPDX-License-Identifier: Apache-2.0
// vorn_create_rgb_icon: the object cut out as a small picture.
#include <string.h>

#include "api/mask_box.h"
#include "blend/rectangle.h"
#include "imageblend.h"
#include "log.h"
#include "memory.h"

// Colours and alpha of the icon's pixels. A frame without pixels has a crop of zeros, which may be
// shorter than the icon.
static void fill_icon(uint8_t* icon, size_t pixels, const uint8_t* crop, size_t crop_bytes,
                      const uint8_t* colours) {
    for (size_t i = 0; i < pixels; i++, icon += 4) {
        if (i < crop_bytes && crop[i] != 0) {
            icon[0] = 255;
            memcpy(icon + 1, colours + 3 * i, 3);
        } else {
            memset(icon, 0, 4);
        }
    }
}

static int32_t cut_icon(const blend_image* source, const blend_image* mask, blend_image* icon,
                        uint8_t* crop, size_t crop_bytes) {
    static const pixel_layout layout_mask = {0, 1};
    const mask_view view = view_of_mask(mask->data, mask->width, mask->height, &layout_mask);
    mask_box box;
    crop_mask(&view, false, crop, crop_bytes, &box);
    const int32_t cw = box.crop_mask_width, ch = box.crop_mask_height;
    LOG_LINE(LOG_INFO, "create_rgb_icon crop mask width:%d , height:%d\n", cw, ch);
    uint8_t* src_patchimage = (uint8_t*)alloc_plane(cw, ch, 3);
    if (src_patchimage == NULL) {
        LOG_LINE(LOG_DEBUG, "src_patchimage memory alloc failed return\n");
        return -1;
    }
    LOG_LINE(LOG_DEBUG, "src_imageptr:%p , src_patchimage:%p\n", (void*)source->data,
             (void*)src_patchimage);
    if (cw >= 1 && ch >= 1) {
        const blend_image frame = {source->width, mask->height, source->data};
        const pixel_box part = {box.x0, box.y0, cw, ch};
        crop_to_rgb(&frame, &part, src_patchimage);
        fill_icon(icon->data, (size_t)cw * (size_t)ch, crop, crop_bytes, src_patchimage);
    }
    icon->width = cw;
    icon->height = ch;
    free(src_patchimage);
    return 0;
}

int32_t vorn_create_rgb_icon(const blend_image* source, const blend_image* mask, blend_image* icon,
                             float zoom) {
    (void)zoom;
    if (source == NULL || source->data == NULL || mask == NULL || mask->data == NULL ||
        icon == NULL || icon->data == NULL) {
        return -1;
    }
    size_t crop_bytes = 0;
    uint8_t* crop_mask_image = NULL;
    if (buffer_size(mask->width, mask->height, 1, &crop_bytes)) {
        crop_mask_image = (uint8_t*)alloc_zeroed_plane(mask->width, mask->height, 1);
    }
    if (crop_mask_image == NULL) {
        LOG_LINE(LOG_DEBUG, "crop_mask_image memory alloc failed return\n");
        return -1;
    }
    const int32_t status = cut_icon(source, mask, icon, crop_mask_image, crop_bytes);
    free(crop_mask_image);
    return status;
}
