#include "api/mask_box.h"

#include <string.h>

#include "blend/depth.h"
#include "log.h"

mask_extent scan_mask(const uint8_t* samples, int32_t width, int32_t height,
                      const pixel_layout* layout) {
    mask_extent extent = {(int64_t)width - 1, (int64_t)height - 1, 0, 0};
    if (width < 1 || height < 1) return extent;
    const uint8_t* sample = samples + layout->offset;
    for (int64_t y = 0; y < height; y++) {
        for (int64_t x = 0; x < width; x++, sample += layout->step) {
            if (*sample == 0) continue;
            extent.xmin = min_i64(extent.xmin, x);
            extent.ymin = min_i64(extent.ymin, y);
            extent.xmax = max_i64(extent.xmax, x);
            extent.ymax = max_i64(extent.ymax, y);
        }
    }
    return extent;
}

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

int32_t find_mask_box(const uint8_t* samples, int32_t width, int32_t height, int32_t* x0,
                      int32_t* y0, int32_t* crop_mask_width, int32_t* crop_mask_height,
                      int32_t* bare_width, int32_t* bare_height, int32_t base, bool clamp,
                      const pixel_layout* layout, bool margins, int32_t* level) {
    const mask_extent extent = scan_mask(samples, width, height, layout);
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

// Copies the box at (x0, y0) out of the mask; the frame does not reach everywhere a box may lie.
static void copy_box(const uint8_t* samples, int32_t width, int32_t height,
                     const pixel_layout* layout, int32_t x0, int32_t y0, int32_t box_width,
                     int32_t box_height, uint8_t* crop, size_t crop_bytes) {
    if (box_width < 1 || box_height < 1) return;
    const int64_t begin = clamp_i64(-(int64_t)x0, 0, box_width);
    const int64_t end = clamp_i64((int64_t)width - x0, begin, box_width);
    const size_t row_bytes = (size_t)box_width;
    for (size_t r = 0; r < (size_t)box_height && (r + 1) * row_bytes <= crop_bytes; r++) {
        uint8_t* out = crop + r * row_bytes;
        memset(out, 0, row_bytes);
        const int64_t y = (int64_t)y0 + (int64_t)r;
        if (y < 0 || y >= height) continue;
        const uint8_t* row = samples + layout->offset + y * width * layout->step;
        for (int64_t c = begin; c < end; c++)
            out[c] = row[(x0 + c) * layout->step];
    }
}

void crop_mask(const uint8_t* samples, int32_t width, int32_t height, uint8_t* crop,
               int32_t* crop_mask_width, int32_t* crop_mask_height, int32_t* bare_width,
               int32_t* bare_height, int32_t* x0, int32_t* y0, int32_t* level_zoom, int32_t base,
               bool clamp, const pixel_layout* layout, bool margins, int32_t* level_box, float zoom,
               size_t crop_bytes) {
    find_mask_box(samples, width, height, x0, y0, crop_mask_width, crop_mask_height, bare_width,
                  bare_height, base, clamp, layout, margins, level_box);
    LOG_LINE(LOG_ERROR, "LLL crop_mask_width:%d,crop_mask_height:%d\n", *crop_mask_width,
             *crop_mask_height);
    *level_zoom =
        (int32_t)margin_level(*crop_mask_width, *crop_mask_height, (uint32_t)base, clamp, zoom);
    copy_box(samples, width, height, layout, *x0, *y0, *crop_mask_width, *crop_mask_height, crop,
             crop_bytes);
}

void crop_rotated_mask(const uint8_t* samples, int32_t width, int32_t height, uint8_t* crop,
                       int32_t* crop_mask_width, int32_t* crop_mask_height, int32_t* bare_width,
                       int32_t* bare_height, int32_t* x0, int32_t* y0, int32_t center_x,
                       int32_t center_y, int32_t* level_zoom, int32_t base, bool clamp,
                       const pixel_layout* layout, bool margins, int32_t* level_box, float zoom,
                       size_t crop_bytes) {
    const int32_t unrotated_x0 = *x0, unrotated_y0 = *y0;
    find_mask_box(samples, width, height, x0, y0, crop_mask_width, crop_mask_height, bare_width,
                  bare_height, base, clamp, layout, margins, level_box);
    *level_zoom =
        (int32_t)margin_level(*crop_mask_width, *crop_mask_height, (uint32_t)base, clamp, zoom);
    if (*x0 != unrotated_x0 || *y0 != unrotated_y0) {
        *x0 = saturate_i32((int64_t)center_x - *crop_mask_width / 2);
        *y0 = saturate_i32((int64_t)center_y - *crop_mask_height / 2);
    }
    copy_box(samples, width, height, layout, *x0, *y0, *crop_mask_width, *crop_mask_height, crop,
             crop_bytes);
}
