// SPDX-License-Identifier: Apache-2.0
// vorn_verify_icon_pos: would the object fit at this centre, zoom and angle?
#include "api/plan.h"
#include "imageblend.h"
#include "log.h"
#include "numeric.h"

static void log_overflows(int32_t sides) {
    if (sides & SIDE_LEFT) LOG_LINE(LOG_WARN, "dst xl overflow\n");
    if (sides & SIDE_TOP) LOG_LINE(LOG_WARN, "dst yu overflow\n");
    if (sides & SIDE_RIGHT) LOG_LINE(LOG_WARN, "dst xr overflow\n");
    if (sides & SIDE_BOTTOM) LOG_LINE(LOG_WARN, "dst yd overflow\n");
}

static void log_seams(int32_t sides) {
    if (sides & SIDE_LEFT) LOG_LINE(LOG_WARN, "dst pic xl seam\n");
    if (sides & SIDE_RIGHT) LOG_LINE(LOG_WARN, "dst pic xr seam\n");
    if (sides & SIDE_TOP) LOG_LINE(LOG_WARN, "dst pic yu seam\n");
    if (sides & SIDE_BOTTOM) LOG_LINE(LOG_WARN, "dst pic yd seam\n");
}

static int32_t report_placement(const placement_check* check) {
    if (!check->fits) {
        LOG_LINE(LOG_ERROR, "fital error,Zoom factor is too big\n");
        return -1;
    }
    log_overflows(check->overflows);
    LOG_LINE(LOG_WARN, "xl=%d,xr=%d,yu=%d,yd=%d\n", saturate_i32(check->xl),
             saturate_i32(check->xr - 1), saturate_i32(check->yu), saturate_i32(check->yd - 1));
    log_seams(check->seams);
    return check->seams != 0 ? 1 : 0;
}

int32_t vorn_verify_icon_pos(const uint8_t* mask_data, int32_t width, int32_t height,
                             int32_t reserved1, int32_t reserved2, int32_t center_x,
                             int32_t center_y, float zoom, float angle) {
    (void)reserved1;
    (void)reserved2;
    if (mask_data == NULL) return -1;
    object_plan object;
    measure_object(mask_data, width, height, &object);
    if (!object.upright.fits) {
        LOG_LINE(LOG_ERROR, "fital error!size too big\n");
        return -1;
    }
    turn_object(angle, &object);
    const placement place = {center_x, center_y, zoom};
    const placement_check check = check_placement(&object, &place);
    if (object.turned) log_mask_box(&check.box);
    return report_placement(&check);
}
