// SPDX-License-Identifier: Apache-2.0
#include "geometry.h"
#include "model.h"

namespace model {
namespace {

// One axis of the placement: the zoomed box as it stands in the destination.
struct axis {
    int64_t frame_side = 0;
    int64_t zoomed = 0;
    int64_t near_edge = 0;
    int64_t far_edge = 0;
};

axis place(int32_t frame_side, int32_t boxed, int32_t bare, int32_t center, float zoom) {
    const int64_t zoomed = truncate(static_cast<float>(boxed) * zoom);
    const int64_t near_edge =
        truncate(static_cast<float>(center) - static_cast<float>(bare) * zoom * 0.5F);
    return {frame_side, zoomed, near_edge, zoomed + near_edge - 1};
}

// Moves the near edges inside. The far edges keep their first values, so that an overflow on the
// right or below always ends as a seam.
void repair(axis& x, axis& y, log_lines& lines) {
    if (x.near_edge < 0) {
        log(lines, 5, "dst xl overflow\n");
        x.near_edge = 0;
    }
    if (y.near_edge < 0) {
        log(lines, 5, "dst yu overflow\n");
        y.near_edge = 0;
    }
    if (x.far_edge >= x.frame_side) {
        log(lines, 5, "dst xr overflow\n");
        x.near_edge = x.frame_side - x.zoomed;
    }
    if (y.far_edge >= y.frame_side) {
        log(lines, 5, "dst yd overflow\n");
        y.near_edge = y.frame_side - y.zoomed;
    }
}

int32_t verdict(const axis& x, const axis& y, int32_t margin, log_lines& lines) {
    const int64_t xl = x.near_edge - margin, yu = y.near_edge - margin;
    const int64_t xr = x.frame_side - margin - x.far_edge;
    const int64_t yd = y.frame_side - margin - y.far_edge;
    log(lines, 5, "xl=%d,xr=%d,yu=%d,yd=%d\n", saturate(xl), saturate(xr - 1), saturate(yu),
        saturate(yd - 1));
    if (xr >= 1 && xl >= 0 && yu >= 0 && yd >= 1) return 0;
    if (xl < 0) log(lines, 5, "dst pic xl seam\n");
    if (xr <= 0) log(lines, 5, "dst pic xr seam\n");
    if (yu < 0) log(lines, 5, "dst pic yu seam\n");
    if (yd <= 0) log(lines, 5, "dst pic yd seam\n");
    return 1;
}

}  // namespace

outcome verify_icon_pos(const frame& mask, const placement& wanted) {
    outcome result;
    log_lines unseen;
    mask_box box = find_mask_box(mask, true, true, unseen);
    if (!box.fits) {
        log(result.log, 6, "fital error!size too big\n");
        result.status = -1;
        return result;
    }
    // The margin stays that of the upright object.
    const int32_t margin = level_margin(box.level);
    if (wanted.angle != 0.0F) {
        const rotation turn =
            make_rotation(saturate(int64_t{box.x0} + box.width / 2),
                          saturate(int64_t{box.y0} + box.height / 2), wanted.angle);
        box = find_mask_box(rotate(mask, 1, turn), false, true, result.log);
    }
    axis x = place(mask.width, box.width, box.bare_width, wanted.center_x, wanted.zoom);
    axis y = place(mask.height, box.height, box.bare_height, wanted.center_y, wanted.zoom);
    if (x.zoomed > mask.width || y.zoomed > mask.height) {
        log(result.log, 6, "fital error,Zoom factor is too big\n");
        result.status = -1;
        return result;
    }
    repair(x, y, result.log);
    result.status = verdict(x, y, margin, result.log);
    return result;
}

}  // namespace model
