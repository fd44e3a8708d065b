// SPDX-License-Identifier: Apache-2.0
#include "api/mask_box.h"

#include "blend/depth.h"
#include "log.h"

// The margins around an extent, at most `margin` pixels each.
static void widen_box(mask_box* box, const mask_view* mask) {
    const mask_extent* e = &box->extent;
    const int64_t m = box->margin, width = mask->frame_width, height = mask->frame_height;
    const int64_t left = min_i64(e->xmin, m), top = min_i64(e->ymin, m);
    const int64_t right = width - m > e->xmax ? m : width - 1 - e->xmax;
    const int64_t bottom = height - m > e->ymax ? m : height - 1 - e->ymax;
    box->x0 = saturate_i32(e->xmin - left);
    box->y0 = saturate_i32(e->ymin - top);
    box->crop_mask_width = saturate_i32(box->bare_width + left + right);
    box->crop_mask_height = saturate_i32(box->bare_height + top + bottom);
    box->seams = (e->xmin < m ? SIDE_LEFT : 0) | (e->xmax >= width - m ? SIDE_RIGHT : 0) |
                 (e->ymin < m ? SIDE_TOP : 0) | (e->ymax >= height - m ? SIDE_BOTTOM : 0);
}

mask_box box_around(const mask_extent* extent, const mask_view* mask, bool clamp, bool margins) {
    mask_box box = mask_box();
    box.extent = *extent;
    const int64_t width = box.extent.xmax - box.extent.xmin + 1;
    const int64_t height = box.extent.ymax - box.extent.ymin + 1;
    box.bare_width = box.crop_mask_width = saturate_i32(width);
    box.bare_height = box.crop_mask_height = saturate_i32(height);
    box.x0 = saturate_i32(box.extent.xmin);
    box.y0 = saturate_i32(box.extent.ymin);
    const int32_t shorter = box.bare_width < box.bare_height ? box.bare_width : box.bare_height;
    box.level = depth_of_side(float_to_i32((float)shorter), BASE_LEVEL, clamp);
    box.margin = margin_of_level(box.level);
    box.fits = !margins || (width <= mask->frame_width && height <= mask->frame_height);
    if (margins && box.fits) widen_box(&box, mask);
    return box;
}

int32_t log_mask_box(const mask_box* box) {
    if (!box->fits) {
        LOG_LINE(LOG_ERROR, "fital error!\n");
        return -1;
    }
    if (box->seams & SIDE_LEFT) LOG_LINE(LOG_INFO, "orign pic xl seam\n");
    if (box->seams & SIDE_RIGHT) LOG_LINE(LOG_INFO, "orign pic xr seam\n");
    if (box->seams & SIDE_TOP) LOG_LINE(LOG_INFO, "orign pic yu seam\n");
    if (box->seams & SIDE_BOTTOM) LOG_LINE(LOG_INFO, "orign pic yd seam\n");
    return box->seams != 0 ? 2 : 0;
}

int32_t find_mask_box(const mask_view* mask, bool clamp, bool margins, mask_box* box) {
    const mask_extent extent = scan_mask(mask);
    *box = box_around(&extent, mask, clamp, margins);
    return log_mask_box(box);
}

void log_crop_size(const mask_box* box) {
    LOG_LINE(LOG_ERROR, "LLL crop_mask_width:%d,crop_mask_height:%d\n", box->crop_mask_width,
             box->crop_mask_height);
}

void crop_mask(const mask_view* mask, bool margins, uint8_t* crop, size_t crop_bytes,
               mask_box* box) {
    find_mask_box(mask, true, margins, box);
    log_crop_size(box);
    const pixel_box part = {box->x0, box->y0, box->crop_mask_width, box->crop_mask_height};
    copy_mask_box(mask, &part, crop, crop_bytes);
}

mask_box box_around_turned(const mask_extent* extent, const mask_view* mask,
                           const mask_box* upright, int32_t center_x, int32_t center_y) {
    mask_box box = box_around(extent, mask, true, true);
    if (box.x0 == upright->x0 && box.y0 == upright->y0) return box;
    box.x0 = saturate_i32((int64_t)center_x - box.crop_mask_width / 2);
    box.y0 = saturate_i32((int64_t)center_y - box.crop_mask_height / 2);
    return box;
}
