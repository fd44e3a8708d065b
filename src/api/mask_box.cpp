#include "api/mask_box.h"

#include "blend/depth.h"
#include "log.h"

box_margins margins_in_frame(const mask_extent* extent, int32_t width, int32_t height,
                             int32_t margin) {
    box_margins m;
    m.left = min_i64(extent->xmin, margin);
    m.top = min_i64(extent->ymin, margin);
    m.right = (int64_t)width - margin > extent->xmax ? margin : width - 1 - extent->xmax;
    m.bottom = (int64_t)height - margin > extent->ymax ? margin : height - 1 - extent->ymax;
    return m;
}

// One line for each side on which the frame cut the margin short; returns whether there is one.
static bool log_seams(const mask_extent* extent, int32_t width, int32_t height, int32_t margin) {
    const bool left = extent->xmin < margin;
    const bool right = extent->xmax >= (int64_t)width - margin;
    const bool top = extent->ymin < margin;
    const bool bottom = extent->ymax >= (int64_t)height - margin;
    if (left) LOG_LINE(LOG_INFO, "orign pic xl seam\n");
    if (right) LOG_LINE(LOG_INFO, "orign pic xr seam\n");
    if (top) LOG_LINE(LOG_INFO, "orign pic yu seam\n");
    if (bottom) LOG_LINE(LOG_INFO, "orign pic yd seam\n");
    return left || right || top || bottom;
}

int32_t find_view_box(const mask_view* mask, int32_t width, int32_t height, int32_t* x0,
                      int32_t* y0, int32_t* crop_mask_width, int32_t* crop_mask_height,
                      int32_t* bare_width, int32_t* bare_height, int32_t base, bool clamp,
                      bool margins, int32_t* level) {
    const mask_extent extent = scan_mask(mask, width, height);
    const int64_t box_width = extent_width(&extent), box_height = extent_height(&extent);
    *x0 = saturate_i32(extent.xmin);
    *y0 = saturate_i32(extent.ymin);
    *crop_mask_width = saturate_i32(box_width);
    *crop_mask_height = saturate_i32(box_height);
    if (bare_width != NULL) *bare_width = *crop_mask_width;
    if (bare_height != NULL) *bare_height = *crop_mask_height;
    const int32_t shorter =
        *crop_mask_width < *crop_mask_height ? *crop_mask_width : *crop_mask_height;
    *level = depth_of_side(float_to_i32((float)shorter), base, clamp);
    if (!margins) return 0;
    if (box_width > width || box_height > height) {
        LOG_LINE(LOG_ERROR, "fital error!\n");
        return -1;
    }
    const int32_t margin = margin_of_level(*level);
    const box_margins m = margins_in_frame(&extent, width, height, margin);
    *x0 = saturate_i32(extent.xmin - m.left);
    *y0 = saturate_i32(extent.ymin - m.top);
    *crop_mask_width = saturate_i32(box_width + m.left + m.right);
    *crop_mask_height = saturate_i32(box_height + m.top + m.bottom);
    return log_seams(&extent, width, height, margin) ? 2 : 0;
}

int32_t find_mask_box(const uint8_t* samples, int32_t width, int32_t height, int32_t* x0,
                      int32_t* y0, int32_t* crop_mask_width, int32_t* crop_mask_height,
                      int32_t* bare_width, int32_t* bare_height, int32_t base, bool clamp,
                      const pixel_layout* layout, bool margins, int32_t* level) {
    const mask_view view = view_of_mask(samples, width, height, layout);
    return find_view_box(&view, width, height, x0, y0, crop_mask_width, crop_mask_height,
                         bare_width, bare_height, base, clamp, margins, level);
}

void crop_mask(const uint8_t* samples, int32_t width, int32_t height, uint8_t* crop,
               int32_t* crop_mask_width, int32_t* crop_mask_height, int32_t* bare_width,
               int32_t* bare_height, int32_t* x0, int32_t* y0, int32_t* level_zoom, int32_t base,
               bool clamp, const pixel_layout* layout, bool margins, int32_t* level_box, float zoom,
               size_t crop_bytes) {
    const mask_view view = view_of_mask(samples, width, height, layout);
    find_mask_box(samples, width, height, x0, y0, crop_mask_width, crop_mask_height, bare_width,
                  bare_height, base, clamp, layout, margins, level_box);
    LOG_LINE(LOG_ERROR, "LLL crop_mask_width:%d,crop_mask_height:%d\n", *crop_mask_width,
             *crop_mask_height);
    *level_zoom =
        (int32_t)margin_level(*crop_mask_width, *crop_mask_height, (uint32_t)base, clamp, zoom);
    copy_mask_box(&view, *x0, *y0, *crop_mask_width, *crop_mask_height, crop, crop_bytes);
}

void crop_rotated_mask(const mask_view* mask, int32_t width, int32_t height,
                       int32_t* crop_mask_width, int32_t* crop_mask_height, int32_t* bare_width,
                       int32_t* bare_height, int32_t* x0, int32_t* y0, int32_t center_x,
                       int32_t center_y, int32_t* level_zoom, int32_t base, bool clamp,
                       bool margins, int32_t* level_box, float zoom) {
    const int32_t unrotated_x0 = *x0, unrotated_y0 = *y0;
    find_view_box(mask, width, height, x0, y0, crop_mask_width, crop_mask_height, bare_width,
                  bare_height, base, clamp, margins, level_box);
    *level_zoom =
        (int32_t)margin_level(*crop_mask_width, *crop_mask_height, (uint32_t)base, clamp, zoom);
    if (*x0 != unrotated_x0 || *y0 != unrotated_y0) {
        *x0 = saturate_i32((int64_t)center_x - *crop_mask_width / 2);
        *y0 = saturate_i32((int64_t)center_y - *crop_mask_height / 2);
    }
}
