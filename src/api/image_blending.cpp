// vorn_imageBlending: prepares the object's mask and hands the blend to the engine.
#include "api/mask_box.h"
#include "api/rotation.h"
#include "api/zoom_plane.h"
#include "blend/blend_region.h"
#include "blend/depth.h"
#include "blend/rotated_icon.h"
#include "frame.h"
#include "imageblend.h"
#include "log.h"
#include "memory.h"

static const pixel_layout layout_mask = {0, 1};

// The object's box and its buffers in one call.
typedef struct blend_call {
    int32_t width, height;            // of the frames
    int32_t crop_width, crop_height;  // of the box with margins
    int32_t x0, y0;                   // its corner
    int32_t bare_width, bare_height;  // of the box without margins
    int32_t level_zoom, level_box;    // depths of the zoomed box and of the bare one
    int32_t center_x, center_y;       // of the unrotated box
    int32_t zoom_width, zoom_height;
    float zoom;
    colour_rotation colours;  // when there is an angle
    uint8_t* crop;            // the box of the mask, crop_width x crop_height
    uint8_t* zoomed_mask;     // zoom_width x zoom_height; null at zoom 1
} blend_call;

static void log_frame_sizes(const blend_image* icon, const blend_image* destination,
                            const blend_image* mask) {
    LOG_LINE(LOG_ERROR, "LLF frame sizes differ icon[%d,%d],destination[%d,%d],mask[%d,%d]\n",
             icon->width, icon->height, destination->width, destination->height, mask->width,
             mask->height);
}

static bool same_size(const blend_image* a, const blend_image* b) {
    return a->width == b->width && a->height == b->height;
}

static void log_start(int32_t center_x, int32_t center_y, float zoom, float angle) {
    LOG_LINE(LOG_DEBUG, "LLF time_cost_start");
    LOG_LINE(LOG_INFO, "ImageBlending version 2.0, build time:%s,time:%s\n", __DATE__, __TIME__);
    LOG_LINE(LOG_DEBUG, "LLF input param center[%d,%d],zoom=%f,angle=%f\n", center_x, center_y,
             (double)zoom, (double)angle);
}

static void measure_object(blend_call* call, const blend_image* mask) {
    crop_mask(mask->data, call->width, call->height, NULL, &call->crop_width, &call->crop_height,
              &call->bare_width, &call->bare_height, &call->x0, &call->y0, &call->level_zoom,
              BASE_LEVEL, true, &layout_mask, true, &call->level_box, call->zoom, 0);
    call->center_x = saturate_i32((int64_t)call->x0 + call->crop_width / 2);
    call->center_y = saturate_i32((int64_t)call->y0 + call->crop_height / 2);
}

// Copies the object's box out of a mask. A frame without pixels has no box to copy.
static bool crop_object(blend_call* call, const mask_view* mask) {
    const bool has_pixels =
        call->width >= 1 && call->height >= 1 && call->crop_width >= 1 && call->crop_height >= 1;
    const int64_t bytes = has_pixels ? (int64_t)call->crop_width * call->crop_height : 0;
    call->crop = (uint8_t*)alloc_plane(bytes, 1, 1);
    if (call->crop == NULL) return false;
    copy_mask_box(mask, call->x0, call->y0, call->crop_width, call->crop_height, call->crop,
                  (size_t)bytes);
    return true;
}

// The pixels of the rotated icon that the blend reads: the box around the centre, moved inside at
// the left and top. A box that leaves the frame goes on at the start of the next row, so then it is
// all of the frame.
static pixel_window colour_window(const blend_call* call) {
    const int64_t left = max_i64((int64_t)call->center_x - call->crop_width / 2, 0);
    const int64_t top = max_i64((int64_t)call->center_y - call->crop_height / 2, 0);
    const int64_t right = left + max_i64(call->crop_width, 0);
    const int64_t bottom = top + max_i64(call->crop_height, 0);
    const pixel_window box = {(int32_t)left, (int32_t)top, (int32_t)right, (int32_t)bottom};
    const pixel_window frame = {0, 0, call->width, call->height};
    return right > call->width || bottom > call->height ? frame : box;
}

// A record for the window of the rotated icon, or null. Its pixels are filled beside the blend.
static blend_image* alloc_rotated_icon(const pixel_window* window) {
    blend_image* icon = (blend_image*)malloc(sizeof(blend_image));
    if (icon == NULL) return NULL;
    icon->width = (int32_t)max_i64((int64_t)window->x_end - window->x_begin, 0);
    icon->height = (int32_t)max_i64((int64_t)window->y_end - window->y_begin, 0);
    icon->data = (uint8_t*)alloc_plane(icon->width, icon->height, 4);
    if (icon->data != NULL) return icon;
    free(icon);
    return NULL;
}

// The extent of the object, which lies within the measured box.
static mask_extent object_extent(const blend_call* call, const blend_image* mask) {
    mask_view box = view_of_mask(mask->data, call->width, call->height, &layout_mask);
    if (call->crop_width >= 1 && call->crop_height >= 1 && call->width >= 1 && call->height >= 1) {
        box.window = {call->x0, call->y0, call->x0 + call->crop_width,
                      call->y0 + call->crop_height};
        box.samples += (size_t)call->y0 * (size_t)call->width + (size_t)call->x0;
    }
    return scan_mask(&box, call->width, call->height);
}

// Rotates the mask about the box's centre, finds the box again and crops it. On success there is a
// rotated icon in g_rotated_icon, and the work that fills it.
static bool rotate_object(blend_call* call, const blend_image* icon, const blend_image* mask) {
    const rotation turn = call->colours.turn;
    const mask_extent extent = object_extent(call, mask);
    rotated_mask rotated;
    if (!make_rotated_mask(&turn, mask->data, &extent, &rotated)) return false;
    crop_rotated_mask(&rotated.view, call->width, call->height, &call->crop_width,
                      &call->crop_height, &call->bare_width, &call->bare_height, &call->x0,
                      &call->y0, call->center_x, call->center_y, &call->level_zoom, BASE_LEVEL,
                      true, true, &call->level_box, call->zoom);
    const bool cropped = crop_object(call, &rotated.view);
    free_rotated_mask(&rotated);
    if (!cropped) return false;
    call->colours.window = colour_window(call);
    blend_image* rotated_icon = alloc_rotated_icon(&call->colours.window);
    if (rotated_icon == NULL) return false;
    call->colours.frame = icon->data;
    call->colours.rotated = rotated_icon->data;
    g_rotated_icon = rotated_icon;
    return true;
}

// The mask of the zoomed box: the crop itself at zoom 1, else resized; null without memory.
static const uint8_t* zoom_mask(blend_call* call) {
    const bool has_pixels = call->crop_width >= 1 && call->crop_height >= 1 &&
                            call->zoom_width >= 1 && call->zoom_height >= 1;
    if (call->zoom == 1.0f || !has_pixels) return call->crop;
    call->zoomed_mask = (uint8_t*)alloc_plane(call->zoom_width, call->zoom_height, 1);
    if (call->zoomed_mask != NULL) {
        zoom_plane_nearest(call->crop, call->crop_width, call->crop_height, call->zoomed_mask,
                           call->zoom_width, call->zoom_height, 1);
    }
    return call->zoomed_mask;
}

static int32_t blend_object(blend_call* call, const blend_image* icon, bool rotated,
                            const blend_image* destination, const blend_image* output,
                            int32_t center_x, int32_t center_y) {
    const uint8_t* zoomed_mask = zoom_mask(call);
    if (zoomed_mask == NULL) return -1;
    const blend_image* source = rotated ? g_rotated_icon : icon;
    const pixel_window* window = &call->colours.window;
    // Turning a pixel takes about twice as long as blending it.
    const row_work rotation_work = {rotate_colours, &call->colours, source->height,
                                    2 * (int64_t)source->width * source->height};
    const row_work* fill = rotated ? &rotation_work : NULL;
    if (rotated && frame_overlaps(icon, output->data, frame_bytes(destination))) {
        // The output is written while the blend runs, so the icon must have been read before.
        do_rows(fill);
        fill = NULL;
    }
    return blend_region(source, destination, zoomed_mask, output,
                        zoomed_corner(center_x, call->bare_width, call->zoom),
                        zoomed_corner(center_y, call->bare_height, call->zoom), call->crop_width,
                        call->crop_height, call->center_x - (rotated ? window->x_begin : 0),
                        call->center_y - (rotated ? window->y_begin : 0), call->level_zoom,
                        call->level_box, 0, call->zoom, fill);
}

static int32_t run_blend(blend_call* call, const blend_image* icon, const blend_image* destination,
                         const blend_image* mask, const blend_image* output, int32_t center_x,
                         int32_t center_y, float angle) {
    measure_object(call, mask);
    if (angle != 0.0f) {
        call->colours.turn =
            make_rotation(angle, call->center_x, call->center_y, call->width, call->height);
        if (!rotate_object(call, icon, mask)) return -1;
    } else {
        const mask_view upright = view_of_mask(mask->data, call->width, call->height, &layout_mask);
        if (!crop_object(call, &upright)) return -1;
    }
    call->zoom_width = float_to_i32((float)call->crop_width * call->zoom);
    call->zoom_height = float_to_i32((float)call->crop_height * call->zoom);
    LOG_LINE(LOG_ERROR, "LLF double check cropsize[%d,%d],maxsize[%d,%d]\n", call->zoom_width,
             call->zoom_height, destination->width, destination->height);
    if (call->zoom_height > destination->height || call->zoom_width > destination->width) {
        LOG_LINE(LOG_ERROR, "LLF double check,Zoom factor is too big, return to zoom = 1\n");
        // The crop and the rotated icon are kept; a later blend frees or replaces the icon.
        call->crop = NULL;
        return -1;
    }
    int32_t status = -1;
    if (!same_size(destination, mask)) {
        log_frame_sizes(icon, destination, mask);
    } else {
        status = blend_object(call, icon, angle != 0.0f, destination, output, center_x, center_y);
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
    log_start(center_x, center_y, zoom, angle);
    if (!same_size(icon, mask)) {
        log_frame_sizes(icon, destination, mask);
        return -1;
    }
    blend_call call = blend_call();
    call.width = mask->width;
    call.height = mask->height;
    call.zoom = zoom;
    const int32_t status =
        run_blend(&call, icon, destination, mask, output, center_x, center_y, angle);
    free(call.zoomed_mask);
    free(call.crop);
    if (status == 0) LOG_LINE(LOG_DEBUG, " LLF time_cost_end");
    return status;
}
