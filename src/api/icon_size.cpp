// SPDX-License-Identifier: Apache-2.0
// vorn_get_icon_size: the size of the object's bounding box.
#include "api/mask_box.h"
#include "imageblend.h"

int32_t vorn_get_icon_size(const blend_image* mask, int32_t* icon_width, int32_t* icon_height) {
    if (mask == NULL || mask->data == NULL || icon_width == NULL || icon_height == NULL) return -1;
    const pixel_layout layout = {0, 1};
    const mask_view view = view_of_mask(mask->data, mask->width, mask->height, &layout);
    const mask_extent extent = scan_mask(&view);
    const mask_box box = box_around(&extent, &view, true, false);
    *icon_height = box.bare_height;
    *icon_width = box.bare_width;
    return 0;
}
