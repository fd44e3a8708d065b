// vorn_verify_icon_pos: would the object fit at this centre, zoom and angle?
#include "api/mask_box.h"
#include "api/rotation.h"
#include "blend/depth.h"
#include "imageblend.h"
#include "log.h"

static const pixel_layout layout_mask = {0, 1};

// The object's box as the check sees it.
typedef struct checked_box {
    mask_extent extent;               // of the unrotated object
    int32_t margin;                   // from the unrotated object
    int32_t x0, y0;                   // corner of the box with margins
    int32_t bare_width, bare_height;  // of the rotated object when there is an angle
    int32_t box_width, box_height;    // with margins
} checked_box;

// Finds the unrotated box; false when it is larger than the frame.
static bool find_box(const uint8_t* mask, int32_t width, int32_t height, checked_box* box) {
    const mask_view view = view_of_mask(mask, width, height, &layout_mask);
    const mask_extent extent = scan_mask(&view, width, height);
    box->extent = extent;
    box->bare_width = saturate_i32(extent_width(&extent));
    box->bare_height = saturate_i32(extent_height(&extent));
    const int32_t shorter = box->bare_width < box->bare_height ? box->bare_width : box->bare_height;
    box->margin = margin_of_level(depth_of_side(float_to_i32((float)shorter), BASE_LEVEL, true));
    if (extent.xmax - extent.xmin >= width || extent.ymax - extent.ymin >= height) {
        LOG_LINE(LOG_ERROR, "fital error!size too big\n");
        return false;
    }
    const box_margins m = margins_in_frame(&extent, width, height, box->margin);
    box->x0 = saturate_i32(extent.xmin - m.left);
    box->y0 = saturate_i32(extent.ymin - m.top);
    box->box_width = saturate_i32(extent_width(&extent) + m.left + m.right);
    box->box_height = saturate_i32(extent_height(&extent) + m.top + m.bottom);
    return true;
}

// Replaces the sizes by those of the rotated object, whose level is not capped here. False when
// there is no memory for the rotated mask.
static bool rotate_box(const uint8_t* mask, int32_t width, int32_t height, float angle,
                       checked_box* box) {
    const rotation turn = make_rotation(angle, box->x0 + box->box_width / 2,
                                        box->y0 + box->box_height / 2, width, height);
    rotated_mask rotated;
    if (!make_rotated_mask(&turn, mask, &box->extent, &rotated)) return false;
    int32_t level;
    find_view_box(&rotated.view, width, height, &box->x0, &box->y0, &box->box_width,
                  &box->box_height, &box->bare_width, &box->bare_height, BASE_LEVEL, false, true,
                  &level);
    free_rotated_mask(&rotated);
    return true;
}

// The near corner along one axis after the overflow repair, and the far edge before it.
typedef struct axis_span {
    int64_t near, far;
} axis_span;

static axis_span place_axis(int32_t center, int32_t bare_size, int32_t zoomed_size, float zoom) {
    axis_span span;
    span.near = zoomed_corner(center, bare_size, zoom);
    span.far = zoomed_size + span.near - 1;
    return span;
}

static void repair_overflow(axis_span* x, axis_span* y, int32_t width, int32_t height,
                            int32_t zoomed_width, int32_t zoomed_height) {
    const bool left = x->near < 0, top = y->near < 0;
    if (left) {
        LOG_LINE(LOG_WARN, "dst xl overflow\n");
        x->near = 0;
    }
    if (top) {
        LOG_LINE(LOG_WARN, "dst yu overflow\n");
        y->near = 0;
    }
    if (x->far >= width) {
        LOG_LINE(LOG_WARN, "dst xr overflow\n");
        x->near = (int64_t)width - zoomed_width;
    }
    if (y->far >= height) {
        LOG_LINE(LOG_WARN, "dst yd overflow\n");
        y->near = (int64_t)height - zoomed_height;
    }
}

// Compares the corner with the lines on which the full margins would end.
static int32_t judge_margins(const axis_span* x, const axis_span* y, int32_t width, int32_t height,
                             int32_t margin) {
    const int64_t xl = x->near - margin, yu = y->near - margin;
    const int64_t xr = (int64_t)width - margin - x->far, yd = (int64_t)height - margin - y->far;
    LOG_LINE(LOG_WARN, "xl=%d,xr=%d,yu=%d,yd=%d\n", saturate_i32(xl), saturate_i32(xr - 1),
             saturate_i32(yu), saturate_i32(yd - 1));
    if (xr >= 1 && xl >= 0 && yu >= 0 && yd >= 1) return 0;
    if (xl < 0) LOG_LINE(LOG_WARN, "dst pic xl seam\n");
    if (xr <= 0) LOG_LINE(LOG_WARN, "dst pic xr seam\n");
    if (yu < 0) LOG_LINE(LOG_WARN, "dst pic yu seam\n");
    if (yd <= 0) LOG_LINE(LOG_WARN, "dst pic yd seam\n");
    return 1;
}

int32_t vorn_verify_icon_pos(const uint8_t* mask_data, int32_t width, int32_t height,
                             int32_t reserved1, int32_t reserved2, int32_t center_x,
                             int32_t center_y, float zoom, float angle) {
    (void)reserved1;
    (void)reserved2;
    if (mask_data == NULL) return -1;
    checked_box box;
    if (!find_box(mask_data, width, height, &box)) return -1;
    if (angle != 0.0f && !rotate_box(mask_data, width, height, angle, &box)) return -1;
    const int32_t zoomed_width = float_to_i32((float)box.box_width * zoom);
    const int32_t zoomed_height = float_to_i32((float)box.box_height * zoom);
    if (zoomed_width > width || zoomed_height > height) {
        LOG_LINE(LOG_ERROR, "fital error,Zoom factor is too big\n");
        return -1;
    }
    axis_span x = place_axis(center_x, box.bare_width, zoomed_width, zoom);
    axis_span y = place_axis(center_y, box.bare_height, zoomed_height, zoom);
    repair_overflow(&x, &y, width, height, zoomed_width, zoomed_height);
    return judge_margins(&x, &y, width, height, box.margin);
}
