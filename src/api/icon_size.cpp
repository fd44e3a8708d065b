// vorn_get_icon_size: the size of the object's bounding box.
#include "api/mask_box.h"
#include "imageblend.h"
#include "numeric.h"

int32_t vorn_get_icon_size(const blend_image* mask, int32_t* icon_width, int32_t* icon_height) {
    if (mask == NULL || mask->data == NULL || icon_width == NULL || icon_height == NULL) return -1;
    const pixel_layout layout = {0, 1};
    const mask_view view = view_of_mask(mask->data, mask->width, mask->height, &layout);
    const mask_extent extent = scan_mask(&view, mask->width, mask->height);
    *icon_height = saturate_i32(extent_height(&extent));
    *icon_width = saturate_i32(extent_width(&extent));
    return 0;
}
