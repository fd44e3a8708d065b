#include "blend/blend_region.h"

#include <stdio.h>
#include <string.h>

#include "blend/depth.h"
#include "blend/pyramid_blend.h"
#include "blend/rectangle.h"
#include "blend/resize.h"
#include "blend/rotated_icon.h"
#include "kernels/row_ops.h"
#include "memory.h"

static const pixel_layout layout_frame = {0, 4};
static const pixel_layout layout_packed = {0, 3};

static int32_t corner_of(int32_t center, int32_t size) {
    return saturate_i32(max_i64((int64_t)center - size / 2, 0));
}

void place_blend_box(const blend_image* dst, int32_t center_x, int32_t center_y, int32_t crop_width,
                     int32_t crop_height, int32_t trace, float zoom, blend_box* box) {
    box->zoom_width = float_to_i32((float)crop_width * zoom);
    box->zoom_height = float_to_i32((float)crop_height * zoom);
    if (trace) {
        printf("crop_mask_width = %d, crop_mask_height = %d\n", box->zoom_width, box->zoom_height);
        printf("center_x = %d, center_y = %d\n", center_x, center_y);
        printf("diff_x = %d, diff_y = %d\n", box->zoom_width / 2, box->zoom_height / 2);
    }
    if (box->zoom_height > dst->height || box->zoom_width > dst->width) {
        puts("Zoom factor is too big, return to zoom = 1");
        box->zoom_width = crop_width;
        box->zoom_height = crop_height;
    }
    box->crop_left = corner_of(center_x, crop_width);
    box->crop_top = corner_of(center_y, crop_height);
    box->zoom_left = corner_of(center_x, box->zoom_width);
    box->zoom_top = corner_of(center_y, box->zoom_height);
}

// Where the blended rectangle starts along one axis of the destination: the margin before the
// object's corner, at least 1, and moved back so that the rectangle ends before the frame's edge.
static int32_t place_unzoomed(int32_t corner, int32_t margin_levels, int32_t crop_size,
                              int32_t frame_size) {
    const int64_t start = max_i64((int64_t)corner - margin_of_level(margin_levels), 1);
    if (start + crop_size < frame_size) return saturate_i32(start);
    return saturate_i32((int64_t)frame_size - 1 - crop_size);
}

static int32_t place_zoomed(int32_t corner, int32_t margin_levels, int32_t crop_size,
                            int32_t frame_size, float zoom) {
    const int32_t margin = float_to_i32((float)margin_of_level(margin_levels) * zoom);
    const int32_t start = saturate_i32(max_i64((int64_t)corner - margin, 1));
    const float zoomed_size = (float)crop_size * zoom;
    const float last = (float)((int64_t)frame_size - 1);
    return zoomed_size + (float)start > last ? float_to_i32(last - zoomed_size) : start;
}

// Resizes the three channels of a packed picture, each as a plane of its own.
static bool resize_channels(const uint8_t* packed, uint8_t* dst, int32_t src_width,
                            int32_t src_height, int32_t dst_width, int32_t dst_height) {
    const size_t src_pixels = (size_t)src_width * (size_t)src_height;
    const size_t dst_pixels = (size_t)dst_width * (size_t)dst_height;
    uint8_t* from = (uint8_t*)alloc_plane(src_width, src_height, 1);
    uint8_t* to = (uint8_t*)alloc_plane(dst_width, dst_height, 1);
    bool done = from != NULL && to != NULL;
    for (size_t c = 0; c < 3 && done; c++) {
        for (size_t p = 0; p < src_pixels; p++)
            from[p] = packed[3 * p + c];
        done = resize_plane(from, to, src_width, src_height, dst_width, dst_height, 1) == 0;
        for (size_t p = 0; p < dst_pixels && done; p++)
            dst[3 * p + c] = to[p];
    }
    free(from);
    free(to);
    return done;
}

// Cuts the source rectangle and brings it to the zoomed size.
static bool cut_source(const blend_image* src, const blend_box* box, int32_t crop_width,
                       int32_t crop_height, float zoom, uint8_t* src_patch) {
    if (zoom == 1.0f) {
        crop_to_rgb(src->data, src->width, src_patch, box->zoom_left, box->zoom_top,
                    box->zoom_width, box->zoom_height, &layout_frame, &layout_packed, src->height);
        return true;
    }
    uint8_t* crop = (uint8_t*)alloc_plane(crop_width, crop_height, 3);
    if (crop == NULL) return false;
    crop_to_rgb(src->data, src->width, crop, box->crop_left, box->crop_top, crop_width, crop_height,
                &layout_frame, &layout_packed, src->height);
    const bool done = resize_channels(crop, src_patch, crop_width, crop_height, box->zoom_width,
                                      box->zoom_height);
    free(crop);
    return done;
}

// Blends the packed rectangles; without a level below the first their mix under the mask.
static int32_t blend_patches(uint8_t* patches, size_t patch_bytes, const uint8_t* mask,
                             const blend_box* box, int32_t levels) {
    const uint8_t* dst_patch = patches;
    const uint8_t* src_patch = patches + patch_bytes;
    blend_workspace* ws =
        alloc_blend_workspace(box->zoom_width, box->zoom_height, levels > 0 ? (uint32_t)levels : 0);
    if (ws == NULL) return -1;
    if (levels < 1) {
        active_rows()->widen(src_patch, ws->lap_src[0], patch_bytes);
        active_rows()->widen(dst_patch, ws->lap_dst[0], patch_bytes);
    }
    const int32_t status = pyramid_blend(src_patch, dst_patch, mask, patches + 2 * patch_bytes,
                                         patches + 3 * patch_bytes, patch_bytes, ws);
    free_blend_workspace(ws);
    return status;
}

static void copy_frame(const blend_image* dst, const blend_image* out) {
    if (dst->width < 1 || dst->height < 1) return;
    memmove(out->data, dst->data, (size_t)dst->width * (size_t)dst->height * 4);
}

int32_t blend_region(const blend_image* src, const blend_image* dst, const uint8_t* mask,
                     const blend_image* out, int32_t x, int32_t y, int32_t crop_width,
                     int32_t crop_height, int32_t center_x, int32_t center_y, int32_t levels,
                     int32_t margin_levels, int32_t trace, float zoom) {
    blend_box box;
    place_blend_box(dst, center_x, center_y, crop_width, crop_height, trace, zoom, &box);
    const int32_t width = box.zoom_width, height = box.zoom_height;
    if (crop_width < 1 || crop_height < 1 || width < 1 || height < 1) {
        copy_frame(dst, out);
        free_rotated_icon();
        return 0;
    }
    // dst_patch, src_patch, result_patch and scratch_patch, one behind the other.
    uint8_t* patches = (uint8_t*)alloc_plane(width, height, 12);
    const size_t patch_bytes = 3 * (size_t)width * (size_t)height;
    int32_t status = -1;
    if (patches != NULL &&
        cut_source(src, &box, crop_width, crop_height, zoom, patches + patch_bytes)) {
        const bool zoomed = zoom != 1.0f;
        const int32_t left = zoomed ? place_zoomed(x, margin_levels, crop_width, src->width, zoom)
                                    : place_unzoomed(x, margin_levels, crop_width, src->width);
        const int32_t top = zoomed ? place_zoomed(y, margin_levels, crop_height, src->height, zoom)
                                   : place_unzoomed(y, margin_levels, crop_height, src->height);
        crop_to_rgb(dst->data, dst->width, patches, left, top, width, height, &layout_frame,
                    &layout_packed, dst->height);
        status = blend_patches(patches, patch_bytes, mask, &box, levels);
        if (status == 0) {
            copy_frame(dst, out);
            write_region_argb(out->data, src->width, patches + 2 * patch_bytes, left, top, width,
                              height, dst->height);
        }
    }
    free(patches);
    free_rotated_icon();
    return status;
}
