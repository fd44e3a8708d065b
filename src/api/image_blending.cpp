// SPDX-License-Identifier: Apache-2.0
// vorn_imageBlending: prepares the object's mask and hands the blend to the engine.
#include "api/plan.h"
#include "api/zoom_plane.h"
#include "blend/blend_region.h"
#include "blend/rotated_icon.h"
#include "costs.h"
#include "frame.h"
#include "imageblend.h"
#include "log.h"
#include "memory.h"

// The frames of one call and what it makes of them.
typedef struct blend_call {
    const blend_image *icon, *destination, *mask, *output;
    object_plan object;
    blend_plan plan;
    uint8_t* crop;              // the object's box of the mask
    uint8_t* zoomed_mask;       // the same zoomed; null at zoom 1
    blend_image* rotated_icon;  // what is read of the turned icon; null without an angle
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
    if (call->crop != NULL) copy_mask_box(mask, &box, call->crop, (size_t)bytes);
    return call->crop != NULL;
}

// Finds the object, turns its mask and crops it; false without memory.
static bool prepare_object(blend_call* call, float angle) {
    object_plan* object = &call->object;
    measure_object(call->mask->data, call->mask->width, call->mask->height, object);
    log_mask_box(&object->upright);
    log_crop_size(&object->upright);
    bool done = turn_object(angle, object);
    if (done && object->turned) log_mask_box(&object->box);
    done = done && crop_object(call);
    free_object(object);
    return done;
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

static int32_t blend_upright(blend_call* call) {
    const uint8_t* mask = zoom_mask(call);
    if (mask == NULL) return -1;
    return blend_region(call->icon, call->destination, mask, call->output, &call->plan.box, NULL);
}

// Blends a turned object, whose colours are turned as a part of the blend.
static int32_t blend_turned(blend_call* call) {
    const uint8_t* mask = zoom_mask(call);
    if (mask == NULL) return -1;
    const blend_image* icon = call->rotated_icon;
    colour_rotation colours = {call->object.turn, call->icon->data, call->plan.source, icon->data};
    const row_work rotation_work = {rotate_colours, &colours, icon->height,
                                    TURNED_PIXEL_COST * (int64_t)icon->width * icon->height};
    const row_work* fill = &rotation_work;
    if (frame_overlaps(call->icon, call->output->data, frame_bytes(call->destination))) {
        // The output is written while the blend runs, so the icon must have been read before.
        do_rows(fill);
        fill = NULL;
    }
    return blend_region(icon, call->destination, mask, call->output, &call->plan.box, fill);
}

// The window of the turned icon that the blend reads; its pixels are filled beside the blend.
static bool open_rotated_icon(blend_call* call) {
    if (!call->object.turned) return true;
    const pixel_window* w = &call->plan.source;
    call->rotated_icon = alloc_rotated_icon((int32_t)max_i64((int64_t)w->x_end - w->x_begin, 0),
                                            (int32_t)max_i64((int64_t)w->y_end - w->y_begin, 0));
    if (call->rotated_icon == NULL) return false;
    leave_rotated_icon(NULL);
    return true;
}

static int32_t run_blend(blend_call* call, const placement* place, float angle) {
    if (!prepare_object(call, angle)) return -1;
    const blend_plan* plan = &call->plan;
    call->plan = plan_blend(&call->object, place, call->destination);
    if (!open_rotated_icon(call)) return -1;
    LOG_LINE(LOG_ERROR, "LLF double check cropsize[%d,%d],maxsize[%d,%d]\n", plan->box.zoom_width,
             plan->box.zoom_height, call->destination->width, call->destination->height);
    if (!plan->fits) {
        LOG_LINE(LOG_ERROR, "LLF double check,Zoom factor is too big, return to zoom = 1\n");
        // The crop and the rotated icon are kept.
        if (call->rotated_icon != NULL) leave_rotated_icon(call->rotated_icon);
        call->rotated_icon = NULL;
        call->crop = NULL;
        return -1;
    }
    int32_t status = -1;
    if (!same_size(call->destination, call->mask)) {
        log_frame_sizes(call);
    } else {
        status = call->object.turned ? blend_turned(call) : blend_upright(call);
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
    free_icon(call.rotated_icon);
    free(call.zoomed_mask);
    free(call.crop);
    if (status == 0) LOG_LINE(LOG_DEBUG, " LLF time_cost_end");
    return status;
}
