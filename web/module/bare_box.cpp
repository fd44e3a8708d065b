// SPDX-License-Identifier: Apache-2.0
#include "api/plan.h"
#include "imageblend_web.h"

int32_t imageblend_web_box(const blend_image* mask, int32_t center_x, int32_t center_y, float zoom,
                           float angle, imageblend_box* box) {
    object_plan object;
    measure_object(mask->data, mask->width, mask->height, &object);
    turn_object(angle, &object);
    const placement place = {center_x, center_y, zoom};
    const blend_plan plan = plan_blend(&object, &place, mask);
    if (!plan.fits) return -1;
    *box = imageblend_box{plan.box.left, plan.box.top, plan.box.zoom_width, plan.box.zoom_height};
    return 0;
}
