// SPDX-License-Identifier: Apache-2.0
#include "api/plan.h"

#include "blend/depth.h"

void measure_object(const uint8_t* samples, int32_t width, int32_t height, object_plan* object) {
    static const pixel_layout layout_mask = {0, 1};
    *object = object_plan();
    object->mask = view_of_mask(samples, width, height, &layout_mask);
    const mask_extent extent = scan_mask(&object->mask);
    object->upright = object->box = box_around(&extent, &object->mask, true, true);
    const mask_box* box = &object->upright;
    object->center_x = saturate_i32((int64_t)box->x0 + box->crop_mask_width / 2);
    object->center_y = saturate_i32((int64_t)box->y0 + box->crop_mask_height / 2);
}

static turned_mask turned_mask_of(const object_plan* object) {
    return {object->turn, object->mask.samples, object->upright.extent};
}

void turn_object(float angle, object_plan* object) {
    if (angle == 0.0f) return;
    object->turned = true;
    object->turn = make_rotation(angle, object->center_x, object->center_y,
                                 object->mask.frame_width, object->mask.frame_height);
    const turned_mask turned = turned_mask_of(object);
    const mask_extent extent = scan_turned_mask(&turned);
    object->box = box_around_turned(&extent, &object->mask, &object->upright, object->center_x,
                                    object->center_y);
}

void copy_object_mask(const object_plan* object, const pixel_box* box, uint8_t* crop,
                      size_t crop_bytes) {
    if (!object->turned) return copy_mask_box(&object->mask, box, crop, crop_bytes);
    const turned_mask turned = turned_mask_of(object);
    copy_turned_box(&turned, box, crop, crop_bytes);
}

// Where along one axis the bare box, scaled by `zoom`, starts when it is centred on `center`.
// Single precision, size times zoom first.
static int32_t zoomed_corner(int32_t center, int32_t bare_size, float zoom) {
    return float_to_i32((float)center - (float)bare_size * zoom * 0.5f);
}

// The near corner along one axis after the overflow repair, and the far edge before it.
typedef struct axis_span {
    int64_t near, far;
} axis_span;

// Sets the bits of the sides that the zoomed box leaves and moves the corner inside.
static axis_span repair_axis(int32_t corner, int32_t zoomed_size, int32_t frame_size,
                             int32_t near_side, int32_t far_side, int32_t* overflows) {
    axis_span span = {corner, (int64_t)zoomed_size + corner - 1};
    if (span.near < 0) {
        *overflows |= near_side;
        span.near = 0;
    }
    if (span.far >= frame_size) {
        *overflows |= far_side;
        span.near = (int64_t)frame_size - zoomed_size;
    }
    return span;
}

placement_check check_placement(const object_plan* object, const placement* place) {
    const mask_view* mask = &object->mask;
    const int32_t width = mask->frame_width, height = mask->frame_height;
    placement_check check = placement_check();
    check.box = object->upright;
    if (object->turned) check.box = box_around(&object->box.extent, mask, false, true);
    const mask_box& box = check.box;
    check.zoom_width = zoomed_side(box.crop_mask_width, place->zoom);
    check.zoom_height = zoomed_side(box.crop_mask_height, place->zoom);
    check.fits = check.zoom_width <= width && check.zoom_height <= height;
    if (!check.fits) return check;
    const axis_span x =
        repair_axis(zoomed_corner(place->center_x, box.bare_width, place->zoom), check.zoom_width,
                    width, SIDE_LEFT, SIDE_RIGHT, &check.overflows);
    const axis_span y =
        repair_axis(zoomed_corner(place->center_y, box.bare_height, place->zoom), check.zoom_height,
                    height, SIDE_TOP, SIDE_BOTTOM, &check.overflows);
    const int64_t margin = object->upright.margin;
    check.xl = x.near - margin;
    check.yu = y.near - margin;
    check.xr = width - margin - x.far;
    check.yd = height - margin - y.far;
    check.seams = (check.xl < 0 ? SIDE_LEFT : 0) | (check.xr < 1 ? SIDE_RIGHT : 0) |
                  (check.yu < 0 ? SIDE_TOP : 0) | (check.yd < 1 ? SIDE_BOTTOM : 0);
    return check;
}

blend_plan plan_blend(const object_plan* object, const placement* place,
                      const blend_image* destination) {
    const mask_box* from = &object->box;
    blend_plan plan = blend_plan();
    blend_box* box = &plan.box;
    box->zoom_width = zoomed_side(from->crop_mask_width, place->zoom);
    box->zoom_height = zoomed_side(from->crop_mask_height, place->zoom);
    plan.fits = box->zoom_width <= destination->width && box->zoom_height <= destination->height;
    if (!plan.fits) return plan;
    box->x = zoomed_corner(place->center_x, from->bare_width, place->zoom);
    box->y = zoomed_corner(place->center_y, from->bare_height, place->zoom);
    box->crop_width = from->crop_mask_width;
    box->crop_height = from->crop_mask_height;
    box->center_x = object->center_x;
    box->center_y = object->center_y;
    box->levels =
        (int32_t)margin_level(box->crop_width, box->crop_height, BASE_LEVEL, true, place->zoom);
    box->margin_levels = from->level;
    box->zoom = place->zoom;
    place_blend_box(destination, false, box);
    return plan;
}
