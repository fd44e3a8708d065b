// SPDX-License-Identifier: Apache-2.0
#include "blend/blend_box.h"

#include <stdio.h>

#include "blend/depth.h"

static int32_t corner_of(int32_t center, int32_t size) {
    return saturate_i32(max_i64((int64_t)center - size / 2, 0));
}

// Along one axis of the destination the box starts the margin before the object's corner, at least
// at 1, and is moved back so that it ends before the frame's edge.
typedef struct axis_place {
    int64_t wanted;
    int32_t start;
} axis_place;

static axis_place place_unzoomed(int32_t corner, int32_t margin, int32_t crop_size,
                                 int32_t frame_size) {
    axis_place place;
    place.wanted = (int64_t)corner - margin;
    const int64_t start = max_i64(place.wanted, 1);
    const bool ends_inside = start + crop_size < frame_size;
    place.start = saturate_i32(ends_inside ? start : (int64_t)frame_size - 1 - crop_size);
    return place;
}

static axis_place place_zoomed(int32_t corner, int32_t margin, int32_t crop_size,
                               int32_t frame_size, float zoom) {
    axis_place place;
    place.wanted = (int64_t)corner - zoomed_side(margin, zoom);
    place.start = saturate_i32(max_i64(place.wanted, 1));
    const float zoomed_size = (float)crop_size * zoom;
    const float last = (float)((int64_t)frame_size - 1);
    if (zoomed_size + (float)place.start > last) place.start = float_to_i32(last - zoomed_size);
    return place;
}

static axis_place place_axis(const blend_box* box, int32_t corner, int32_t crop_size,
                             int32_t frame_size) {
    const int32_t margin = margin_of_level(box->margin_levels);
    return box->zoom == 1.0f ? place_unzoomed(corner, margin, crop_size, frame_size)
                             : place_zoomed(corner, margin, crop_size, frame_size, box->zoom);
}

static void print_trace(const blend_box* box) {
    printf("crop_mask_width = %d, crop_mask_height = %d\n", box->zoom_width, box->zoom_height);
    printf("center_x = %d, center_y = %d\n", box->center_x, box->center_y);
    printf("diff_x = %d, diff_y = %d\n", box->zoom_width / 2, box->zoom_height / 2);
}

void place_blend_box(const blend_image* dst, bool trace, blend_box* box) {
    box->zoom_width = zoomed_side(box->crop_width, box->zoom);
    box->zoom_height = zoomed_side(box->crop_height, box->zoom);
    if (trace) print_trace(box);
    if (box->zoom_height > dst->height || box->zoom_width > dst->width) {
        puts("Zoom factor is too big, return to zoom = 1");
        box->zoom_width = box->crop_width;
        box->zoom_height = box->crop_height;
    }
    box->crop_left = corner_of(box->center_x, box->crop_width);
    box->crop_top = corner_of(box->center_y, box->crop_height);
    box->zoom_left = corner_of(box->center_x, box->zoom_width);
    box->zoom_top = corner_of(box->center_y, box->zoom_height);
    const axis_place x = place_axis(box, box->x, box->crop_width, dst->width);
    const axis_place y = place_axis(box, box->y, box->crop_height, dst->height);
    box->wanted_left = x.wanted;
    box->wanted_top = y.wanted;
    box->left = x.start;
    box->top = y.start;
}
