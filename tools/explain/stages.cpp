// SPDX-License-Identifier: Apache-2.0
#include "explain/stages.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "api/plan.h"
#include "api/zoom_plane.h"
#include "blend/rectangle.h"
#include "blend/resize.h"
#include "blend/row_conversion.h"
#include "kernels/band_kernels.h"
#include "kernels/whole_plane.h"
#include "pictures/errors.h"

namespace tool {
namespace {

[[noreturn]] void fail(const std::string& what) {
    throw Error(Exit::internal, "explain: " + what);
}

// The kernels report sizes that they refuse and missing memory; neither is expected.
void check(int32_t status) {
    if (status != 0) fail("a stage of the blend cannot be computed again");
}

Plane make_plane(int width, int height, int channels) {
    const size_t bytes = static_cast<size_t>(std::max(width, 0)) *
                         static_cast<size_t>(std::max(height, 0)) * static_cast<size_t>(channels);
    return {width, height, channels, std::vector<uint8_t>(bytes)};
}

Plane plane_of(const blend_image& image, int channels) {
    Plane plane = make_plane(image.width, image.height, channels);
    std::copy_n(image.data, plane.bytes.size(), plane.bytes.begin());
    return plane;
}

// Of pixels that are only read where the plane is constant.
blend_image record_of(const Plane& plane) {
    return {plane.width, plane.height, const_cast<uint8_t*>(plane.bytes.data())};
}

// The object in its mask and what the blend does with it.
struct Plan {
    object_plan object{};
    blend_plan blend{};

    explicit Plan(const BlendCall& call) {
        measure_object(call.mask.data, call.mask.width, call.mask.height, &object);
        turn_object(call.angle, &object);
        const placement place = {call.center_x, call.center_y, call.zoom};
        blend = plan_blend(&object, &place, &call.destination);
    }
};

Plane mask_part(const object_plan& object, const pixel_box& box) {
    Plane plane = make_plane(box.width, box.height, 1);
    copy_object_mask(&object, &box, plane.bytes.data(), plane.bytes.size());
    return plane;
}

Plane turned_colours(const BlendCall& call, const rotation& turn) {
    const pixel_box all = {0, 0, call.icon.width, call.icon.height};
    Plane packed = make_plane(all.width, all.height, 3);
    crop_turned_to_rgb(&call.icon, &turn, &all, packed.bytes.data());
    Plane colours = make_plane(all.width, all.height, 4);
    const blend_image to = record_of(colours);
    write_region_argb(&to, &all, packed.bytes.data());
    return colours;
}

Rectangle object_box(const mask_box& box) {
    return {static_cast<int>(box.extent.xmin), static_cast<int>(box.extent.ymin), box.bare_width,
            box.bare_height};
}

Plane cut_colours(const Plane& frame, const Rectangle& box) {
    Plane patch = make_plane(box.width, box.height, 3);
    const blend_image from = record_of(frame);
    const pixel_box part = {box.left, box.top, box.width, box.height};
    crop_to_rgb(&from, &part, patch.bytes.data());
    return patch;
}

Rectangle source_box(const blend_plan& plan) {
    return {plan.box.crop_left, plan.box.crop_top, plan.box.crop_width, plan.box.crop_height};
}

// The mask and the source rectangle at the zoomed size.
void cut_inputs(const Plane& frame, const Plan& plan, Level& finest) {
    const blend_box& box = plan.blend.box;
    const mask_box& from = plan.object.box;
    const int width = box.zoom_width;
    const int height = box.zoom_height;
    const Plane mask = mask_part(plan.object, {from.x0, from.y0, box.crop_width, box.crop_height});
    if (box.zoom == 1.0F) {
        finest.mask = mask;
        finest.source = cut_colours(frame, {box.zoom_left, box.zoom_top, width, height});
        return;
    }
    finest.mask = make_plane(width, height, 1);
    zoom_plane_nearest(mask.bytes.data(), mask.width, mask.height, finest.mask.bytes.data(), width,
                       height, 1);
    const Plane colours = cut_colours(frame, source_box(plan.blend));
    finest.source = make_plane(width, height, 3);
    check(resize_plane(colours.bytes.data(), finest.source.bytes.data(), colours.width,
                       colours.height, width, height, 3));
}

Plane reduce(const Plane& fine) {
    Plane coarse = make_plane(fine.width / 2, fine.height / 2, fine.channels);
    const auto kernel = fine.channels == 1 ? ImageDown_ByteNC : ImageDown_ByteC3;
    check(kernel(fine.bytes.data(), fine.width, fine.height, coarse.bytes.data(), coarse.width,
                 coarse.height));
    return coarse;
}

Plane expand(const Plane& coarse, const Plane& size) {
    Plane fine = make_plane(size.width, size.height, 3);
    check(ImageUp_ByteC3(coarse.bytes.data(), coarse.width, coarse.height, fine.bytes.data(),
                         fine.width, fine.height));
    return fine;
}

// A band that is all of a level.
band_task whole_level(const Plane& level) {
    static const pixel_layout layout_c3 = {0, 3};
    static const pixel_layout layout_mask = {0, 1};
    band_task task = band_task();
    task.src_width = level.width;
    task.src_rows = level.height;
    task.src_geom = task.src2_geom = task.dst_geom = &layout_c3;
    task.mask_geom = &layout_mask;
    return task;
}

std::vector<int16_t> laplacian(const Plane& level, const Plane* coarser) {
    std::vector<int16_t> values(level.bytes.size());
    band_task task = whole_level(level);
    task.src = level.bytes.data();
    task.dst_lap = values.data();
    if (!coarser) {
        ImageWiden_Byte3C(&task);
    } else {
        const Plane expanded = expand(*coarser, level);
        task.src2 = expanded.bytes.data();
        ImageLaplace_Byte3C(&task);
    }
    return values;
}

void build_pyramids(std::vector<Level>& levels, int depth) {
    while (static_cast<int>(levels.size()) <= depth) {
        const Level& fine = levels.back();
        if (fine.mask.width < 4 || fine.mask.height < 4) return;
        Level coarse;
        coarse.mask = reduce(fine.mask);
        coarse.source = reduce(fine.source);
        coarse.destination = reduce(fine.destination);
        levels.push_back(std::move(coarse));
    }
}

void collapse(std::vector<Level>& levels) {
    for (size_t l = levels.size(); l-- > 0;) {
        Level& level = levels[l];
        const Level* const coarser = l + 1 < levels.size() ? &levels[l + 1] : nullptr;
        level.source_laplacian = laplacian(level.source, coarser ? &coarser->source : nullptr);
        level.destination_laplacian =
            laplacian(level.destination, coarser ? &coarser->destination : nullptr);
        level.blended_laplacian.resize(level.source.bytes.size());
        band_task task = whole_level(level.source);
        task.src = level.mask.bytes.data();
        task.lap = level.source_laplacian.data();
        task.lap2 = level.destination_laplacian.data();
        task.dst_lap = level.blended_laplacian.data();
        ImageBlend_Short3C(&task);
        level.result = make_plane(level.source.width, level.source.height, 3);
        uint8_t* const result = level.result.bytes.data();
        if (coarser) {
            const Plane base = expand(coarser->result, level.result);
            task.src = base.bytes.data();
            task.lap = level.blended_laplacian.data();
            task.dst = result;
            ImageCollapse_Short3C(&task);
        } else {
            narrow_plane_c3(level.blended_laplacian.data(),
                            static_cast<uint32_t>(level.result.width), level.result.height, result);
        }
    }
}

Plane stamp(const BlendCall& call, const Rectangle& place, const Plane& patch) {
    Plane frame = plane_of(call.destination, 4);
    const blend_image to = record_of(frame);
    const pixel_box box = {place.left, place.top, place.width, place.height};
    write_region_argb(&to, &box, patch.bytes.data());
    return frame;
}

Plane paste(const Level& finest) {
    Plane patch = finest.destination;
    for (size_t i = 0; i < patch.bytes.size(); i++) {
        const int weight = finest.mask.bytes[i / 3];
        patch.bytes[i] = static_cast<uint8_t>(
            (weight * finest.source.bytes[i] + (255 - weight) * patch.bytes[i] + 127) / 255);
    }
    return patch;
}

// All but the largest hundredth of the values reach from black to white at most.
double find_gain(const std::vector<Level>& levels) {
    std::vector<int> sizes;
    for (size_t l = 0; l + 1 < levels.size(); l++) {
        for (const int16_t value : levels[l].blended_laplacian)
            sizes.push_back(std::abs(value));
    }
    if (sizes.empty()) return 1.0;
    const auto at = sizes.begin() + static_cast<std::ptrdiff_t>(sizes.size() * 99 / 100);
    std::nth_element(sizes.begin(), at, sizes.end());
    return std::clamp(127.0 / std::max(*at, 1), 1.0, 16.0);
}

}  // namespace

BlendStages compute_stages(const BlendCall& call) {
    const Plan plan(call);
    const blend_box& box = plan.blend.box;
    if (box.zoom_width < 1 || box.zoom_height < 1) {
        throw Error(Exit::cannot_place, "--zoom: nothing of the object is left at it");
    }
    BlendStages stages{};
    const int32_t frame_width = call.mask.width;
    const int32_t frame_height = call.mask.height;
    stages.source =
        plan.object.turned ? turned_colours(call, plan.object.turn) : plane_of(call.icon, 4);
    stages.source_mask = mask_part(plan.object, {0, 0, frame_width, frame_height});
    stages.object = object_box(plan.object.box);
    stages.margin = plan.object.box.margin;
    stages.box = source_box(plan.blend);
    stages.place = {box.left, box.top, box.zoom_width, box.zoom_height};

    Level finest;
    cut_inputs(stages.source, plan, finest);
    finest.destination = cut_colours(plane_of(call.destination, 4), stages.place);
    stages.levels.push_back(std::move(finest));
    build_pyramids(stages.levels, box.levels);
    collapse(stages.levels);
    stages.gain = find_gain(stages.levels);

    const Plane blended = stamp(call, stages.place, stages.levels[0].result);
    if (std::memcmp(blended.bytes.data(), call.output.data, blended.bytes.size()) != 0) {
        fail("the stages do not add up to the library's own result");
    }
    stages.paste = stamp(call, stages.place, paste(stages.levels[0]));
    return stages;
}

Plane visible_laplacian(const BlendStages& stages, size_t level,
                        const std::vector<int16_t>& laplacian) {
    const bool top = level + 1 == stages.levels.size();
    const double grey = top ? 0.0 : 128.0;
    const double gain = top ? 1.0 : stages.gain;
    const Plane& size = stages.levels[level].source;
    Plane plane = make_plane(size.width, size.height, 3);
    std::transform(laplacian.begin(), laplacian.end(), plane.bytes.begin(), [&](int16_t value) {
        return static_cast<uint8_t>(std::clamp(grey + gain * value + 0.5, 0.0, 255.0));
    });
    return plane;
}

}  // namespace tool
