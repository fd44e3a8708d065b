// SPDX-License-Identifier: Apache-2.0
#include <stddef.h>

#include <algorithm>

#include "geometry.h"
#include "model.h"
#include "pyramid.h"
#include "resample.h"

namespace model {
namespace {

int32_t scaled(int32_t side, float zoom) {
    return truncate(static_cast<float>(side) * zoom);
}

// Where the box starts so that the object without its margins is centred.
int32_t corner(int32_t center, int32_t bare_side, float zoom) {
    const float half = static_cast<float>(bare_side) * zoom * 0.5F;
    return truncate(static_cast<float>(center) - half);
}

// One axis of the rectangle's place in the destination, kept inside the frame.
int64_t place_axis(int32_t wanted, int32_t crop_side, int32_t frame_side, int32_t level,
                   float zoom) {
    int64_t margin = level_margin(level);
    if (zoom == 1.0F) {
        const int64_t place = std::max<int64_t>(wanted - margin, 1);
        return place + crop_side < frame_side ? place : int64_t{frame_side} - 1 - crop_side;
    }
    margin = truncate(static_cast<float>(margin) * zoom);
    const int32_t place = saturate(std::max<int64_t>(wanted - margin, 1));
    const float side = static_cast<float>(crop_side) * zoom;
    const float limit = static_cast<float>(frame_side - 1);
    return side + static_cast<float>(place) > limit ? truncate(limit - side) : place;
}

// The object's picture at the zoomed size.
bytes source_rectangle(const frame& icon, const mask_box& box, int32_t center_x, int32_t center_y,
                       float zoom, extent_2d size) {
    const auto start = [](int32_t center, int32_t side) {
        return std::max<int64_t>(int64_t{center} - side / 2, 0);
    };
    const bytes picture = read_rectangle(icon, start(center_x, box.width),
                                         start(center_y, box.height), box.width, box.height);
    if (zoom == 1.0F) return picture;
    return resample_linear(picture, {box.width, box.height}, size);
}

}  // namespace

outcome get_icon_size(const frame& mask) {
    outcome result;
    const mask_box box = find_mask_box(mask, true, false, result.log);
    result.width = box.bare_width;
    result.height = box.bare_height;
    return result;
}

outcome create_rgb_icon(const frame& source, const frame& mask) {
    outcome result;
    const auto fail = [&](const char* line) {
        log(result.log, 3, "%s", line);
        result.status = -1;
        return result;
    };
    if (int64_t{mask.width} * mask.height < 0) {
        return fail("crop_mask_image memory alloc failed return\n");
    }
    const mask_box box = find_mask_box(mask, true, false, result.log);
    log(result.log, 6, "LLL crop_mask_width:%d,crop_mask_height:%d\n", box.width, box.height);
    log(result.log, 4, "create_rgb_icon crop mask width:%d , height:%d\n", box.width, box.height);
    if (int64_t{box.width} * box.height < 0) {
        return fail("src_patchimage memory alloc failed return\n");
    }
    log(result.log, 3, "src_imageptr:<ptr> , src_patchimage:<ptr>\n");
    result.width = box.width;
    result.height = box.height;
    const bytes crop = crop_mask(mask, box);
    result.pixels.assign(crop.size() * 4, 0);
    // The source's own height is never consulted.
    const frame picture{source.width, mask.height, source.data};
    if (mask.width < 1 || mask.height < 1 || crop.empty()) return result;
    const bytes packed = read_rectangle(picture, box.x0, box.y0, box.width, box.height);
    for (size_t i = 0; i < crop.size(); ++i) {
        if (crop[i] == 0) continue;
        result.pixels[4 * i] = 255;
        std::copy_n(packed.begin() + static_cast<ptrdiff_t>(3 * i), 3,
                    result.pixels.begin() + static_cast<ptrdiff_t>(4 * i + 1));
    }
    return result;
}

outcome image_blending(const frame& icon, const frame& destination, const frame& mask,
                       const placement& place) {
    outcome result;
    const auto fail_sizes = [&] {
        log(result.log, 6, "LLF frame sizes differ icon[%d,%d],destination[%d,%d],mask[%d,%d]\n",
            icon.width, icon.height, destination.width, destination.height, mask.width,
            mask.height);
        result.status = -1;
        return result;
    };
    log(result.log, 3, "LLF time_cost_start");
    log(result.log, 4, "ImageBlending version 2.0, build time:");
    log(result.log, 3, "LLF input param center[%d,%d],zoom=%f,angle=%f\n", place.center_x,
        place.center_y, static_cast<double>(place.zoom), static_cast<double>(place.angle));
    if (icon.width != mask.width || icon.height != mask.height) return fail_sizes();

    mask_box box = find_mask_box(mask, true, true, result.log);
    log(result.log, 6, "LLL crop_mask_width:%d,crop_mask_height:%d\n", box.width, box.height);
    const int32_t center_x = saturate(int64_t{box.x0} + box.width / 2);
    const int32_t center_y = saturate(int64_t{box.y0} + box.height / 2);
    frame turned_mask = mask;
    frame turned_icon = icon;
    if (place.angle != 0.0F) {
        const rotation turn = make_rotation(center_x, center_y, place.angle);
        turned_mask = rotate(mask, 1, turn);
        turned_icon = rotate(icon, 4, turn);
        const mask_box upright = box;
        box = find_mask_box(turned_mask, true, true, result.log);
        if (box.x0 != upright.x0 || box.y0 != upright.y0) {
            box.x0 = saturate(int64_t{center_x} - box.width / 2);
            box.y0 = saturate(int64_t{center_y} - box.height / 2);
        }
    }
    const extent_2d size{scaled(box.width, place.zoom), scaled(box.height, place.zoom)};
    log(result.log, 6, "LLF double check cropsize[%d,%d],maxsize[%d,%d]\n", size.width, size.height,
        destination.width, destination.height);
    if (size.height > destination.height || size.width > destination.width) {
        log(result.log, 6, "LLF double check,Zoom factor is too big, return to zoom = 1\n");
        result.status = -1;
        return result;
    }
    if (destination.width != mask.width || destination.height != mask.height) return fail_sizes();

    frame output = destination;
    if (box.width >= 1 && box.height >= 1 && size.width >= 1 && size.height >= 1) {
        bytes weights = crop_mask(turned_mask, box);
        if (place.zoom != 1.0F) {
            weights = resample_nearest(weights, {box.width, box.height}, size);
        }
        const bytes source =
            source_rectangle(turned_icon, box, center_x, center_y, place.zoom, size);
        const int64_t x = place_axis(corner(place.center_x, box.bare_width, place.zoom), box.width,
                                     mask.width, box.level, place.zoom);
        const int64_t y = place_axis(corner(place.center_y, box.bare_height, place.zoom),
                                     box.height, mask.height, box.level, place.zoom);
        const bytes under = read_rectangle(destination, x, y, size.width, size.height);
        const int32_t depth =
            pyramid_level(scaled(std::min(box.width, box.height), place.zoom), true);
        const bytes blended = pyramid_blend(source, under, weights, size.width, size.height, depth);
        write_rectangle(output, x, y, size.width, size.height, blended);
    }
    result.pixels = std::move(output.data);
    log(result.log, 3, " LLF time_cost_end");
    return result;
}

}  // namespace model
