// SPDX-License-Identifier: Apache-2.0
// vorn_imageBlending: prepares the object's mask and hands the blend to the engine.
#include "api/plan.h"
#include "api/zoom_plane.h"
#include "blend/blend_region.h"
#include "blend/rotated_icon.h"
#include "imageblend.h"
#include "log.h"
#include "memory.h"
#include "numeric.h"

// The frames of one call and what it makes of them.
typedef struct blend_call {
    const blend_image *icon, *destination, *mask, *output;
    object_plan object;
    blend_plan plan;
    uint8_t* crop;         // the object's box of the mask
    uint8_t* zoomed_mask;  // the same zoomed; null at zoom 1
} blend_call;

static void log_frame_sizes(const blend_call* call) {
    const blend_image *icon = call->icon, *destination = call->destination, *mask = call->mask;
    LOG_LINE(LOG_ERROR, "LLF frame sizes differ icon[%d,%d],destination[%d,%d],mask[%d,%d]\n",
             icon->width, icon->height, destination->width, destination->height, mask->width,
             mask->height);
}

static bool same_size(const blend_image* a, const blend_image* b) {
    return a->width == b->width && a->height == b->height;
}

static void log_start(const placement* place, float angle) {
    LOG_LINE(LOG_DEBUG, "LLF time_cost_start");
    LOG_LINE(LOG_INFO, "ImageBlending version 2.0, build time:%s,time:%s\n", __DATE__, __TIME__);
    LOG_LINE(LOG_DEBUG, "LLF input param center[%d,%d],zoom=%f,angle=%f\n", place->center_x,
             place->center_y, (double)place->zoom, (double)angle);
}

// Copies the object's box out of its mask. A frame without pixels has no box to copy.
static bool crop_object(blend_call* call) {
    const mask_view* mask = &call->object.mask;
    const mask_box* from = &call->object.box;
    const pixel_box box = {from->x0, from->y0, from->crop_mask_width, from->crop_mask_height};
    const bool has_pixels =
        mask->frame_width >= 1 && mask->frame_height >= 1 && box.width >= 1 && box.height >= 1;
    const int64_t bytes = has_pixels ? (int64_t)box.width * box.height : 0;
    call->crop = (uint8_t*)alloc_plane(bytes, 1, 1);
    if (call->crop != NULL) copy_object_mask(&call->object, &box, call->crop, (size_t)bytes);
    return call->crop != NULL;
}

// Finds the object, turns its mask and crops it; false without memory.
static bool prepare_object(blend_call* call, float angle) {
    object_plan* object = &call->object;
    measure_object(call->mask->data, call->mask->width, call->mask->height, object);
    log_mask_box(&object->upright);
    log_crop_size(&object->upright);
    turn_object(angle, object);
    if (object->turned) log_mask_box(&object->box);
    return crop_object(call);
}

// The mask of the zoomed box: the crop itself at zoom 1, else resized; null without memory.
static const uint8_t* zoom_mask(blend_call* call) {
    const blend_box* box = &call->plan.box;
    const bool has_pixels = box->crop_width >= 1 && box->crop_height >= 1 && box->zoom_width >= 1 &&
                            box->zoom_height >= 1;
    if (box->zoom == 1.0f || !has_pixels) return call->crop;
    call->zoomed_mask = (uint8_t*)alloc_plane(box->zoom_width, box->zoom_height, 1);
    if (call->zoomed_mask != NULL) {
        zoom_plane_nearest(call->crop, box->crop_width, box->crop_height, call->zoomed_mask,
                           box->zoom_width, box->zoom_height, 1);
    }
    return call->zoomed_mask;
}

static int32_t blend_object(blend_call* call) {
    const uint8_t* mask = zoom_mask(call);
    if (mask == NULL) return -1;
    const rotation* turn = call->object.turned ? &call->object.turn : NULL;
    return blend_region(call->icon, call->destination, mask, call->output, &call->plan.box, turn);
}

// A turned icon is put into the place of one that an earlier call has left. Only a call whose
// object is too large leaves one itself; false without memory for it.
static bool replace_rotated_icon(const blend_call* call) {
    const blend_image* frame = call->icon;
    blend_image* icon = NULL;
    if (!call->plan.fits) {
        icon = alloc_rotated_icon((int32_t)max_i64(frame->width, 0),
                                  (int32_t)max_i64(frame->height, 0));
        if (icon == NULL) return false;
    }
    leave_rotated_icon(icon);
    return true;
}

static int32_t run_blend(blend_call* call, const placement* place, float angle) {
    if (!prepare_object(call, angle)) return -1;
    const blend_plan* plan = &call->plan;
    call->plan = plan_blend(&call->object, place, call->destination);
    if (call->object.turned && !replace_rotated_icon(call)) return -1;
    LOG_LINE(LOG_ERROR, "LLF double check cropsize[%d,%d],maxsize[%d,%d]\n", plan->box.zoom_width,
             plan->box.zoom_height, call->destination->width, call->destination->height);
    if (!plan->fits) {
        LOG_LINE(LOG_ERROR, "LLF double check,Zoom factor is too big, return to zoom = 1\n");
        call->crop = NULL;  // it is kept
        return -1;
    }
    int32_t status = -1;
    if (!same_size(call->destination, call->mask)) {
        log_frame_sizes(call);
    } else {
        status = blend_object(call);
    }
    free_rotated_icon();
    return status;
}

int32_t vorn_imageBlending(const blend_image* icon, const blend_image* destination,
                           const blend_image* mask, blend_image* output, int32_t reserved1,
                           int32_t reserved2, int32_t center_x, int32_t center_y, float zoom,
                           float angle) {
    (void)reserved1;
    (void)reserved2;
    if (icon == NULL || destination == NULL || mask == NULL || output == NULL ||
        icon->data == NULL || destination->data == NULL || mask->data == NULL ||
        output->data == NULL) {
        return -1;
    }
    blend_call call = blend_call();
    call.icon = icon;
    call.destination = destination;
    call.mask = mask;
    call.output = output;
    const placement place = {center_x, center_y, zoom};
    log_start(&place, angle);
    if (!same_size(icon, mask)) {
        log_frame_sizes(&call);
        return -1;
    }
    const int32_t status = run_blend(&call, &place, angle);
    free(call.zoomed_mask);
    free(call.crop);
    if (status == 0) LOG_LINE(LOG_DEBUG, " LLF time_cost_end");
    return status;
}
