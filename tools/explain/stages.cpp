#include "explain/stages.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "api/mask_box.h"
#include "api/rotation.h"
#include "api/zoom_plane.h"
#include "blend/blend_region.h"
#include "blend/depth.h"
#include "blend/rectangle.h"
#include "blend/resize.h"
#include "kernels/row_ops.h"
#include "kernels/whole_plane.h"
#include "pictures/errors.h"

namespace tool {
namespace {

constexpr pixel_layout layout_mask = {0, 1};
constexpr pixel_layout layout_c3 = {0, 3};
constexpr pixel_layout layout_frame = {0, 4};

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

// The object's box in the source frame, as the library finds it.
struct SourceBox {
    int32_t left, top, width, height;
    int32_t bare_width, bare_height;
    int32_t level_zoom, level_box;
    int32_t center_x, center_y;
};

SourceBox measure(const Plane& mask, float zoom) {
    SourceBox b{};
    crop_mask(mask.bytes.data(), mask.width, mask.height, nullptr, &b.width, &b.height,
              &b.bare_width, &b.bare_height, &b.left, &b.top, &b.level_zoom, BASE_LEVEL, true,
              &layout_mask, true, &b.level_box, zoom, 0);
    b.center_x = b.left + b.width / 2;
    b.center_y = b.top + b.height / 2;
    return b;
}

mask_view view_of(const Plane& mask) {
    return view_of_mask(mask.bytes.data(), mask.width, mask.height, &layout_mask);
}

// Turns the mask and the source about the box's centre and measures the box again.
void turn(BlendStages& stages, SourceBox& b, float zoom, float angle) {
    Plane& mask = stages.source_mask;
    const int width = mask.width;
    const int height = mask.height;
    const rotation rotation = make_rotation(angle, b.center_x, b.center_y, width, height);
    const mask_view upright = view_of(mask);
    const mask_extent extent = scan_mask(&upright, width, height);
    rotated_mask turned;
    if (!make_rotated_mask(&rotation, mask.bytes.data(), &extent, &turned)) check(-1);
    crop_rotated_mask(&turned.view, width, height, &b.width, &b.height, &b.bare_width,
                      &b.bare_height, &b.left, &b.top, b.center_x, b.center_y, &b.level_zoom,
                      BASE_LEVEL, true, true, &b.level_box, zoom);
    Plane whole = make_plane(width, height, 1);
    copy_mask_box(&turned.view, 0, 0, width, height, whole.bytes.data(), whole.bytes.size());
    free_rotated_mask(&turned);
    mask = std::move(whole);

    Plane colours = make_plane(width, height, 4);
    colour_rotation work = {
        rotation, stages.source.bytes.data(), {0, 0, width, height}, colours.bytes.data()};
    rotate_colours(&work, 0, 0, height);
    stages.source = std::move(colours);
}

Rectangle object_box(const Plane& mask) {
    const mask_view view = view_of(mask);
    const mask_extent extent = scan_mask(&view, mask.width, mask.height);
    return {static_cast<int>(extent.xmin), static_cast<int>(extent.ymin),
            static_cast<int>(extent_width(&extent)), static_cast<int>(extent_height(&extent))};
}

Plane cut_colours(const Plane& frame, const Rectangle& box) {
    Plane patch = make_plane(box.width, box.height, 3);
    crop_to_rgb(frame.bytes.data(), frame.width, patch.bytes.data(), box.left, box.top, box.width,
                box.height, &layout_frame, &layout_c3, frame.height);
    return patch;
}

// The mask and the source rectangle at the zoomed size.
void cut_inputs(const BlendStages& stages, const SourceBox& b, const blend_box& box, float zoom,
                Level& finest) {
    const mask_view view = view_of(stages.source_mask);
    const Plane& frame = stages.source;
    const int width = box.zoom_width;
    const int height = box.zoom_height;
    finest.mask = make_plane(b.width, b.height, 1);
    copy_mask_box(&view, b.left, b.top, b.width, b.height, finest.mask.bytes.data(),
                  finest.mask.bytes.size());
    if (zoom == 1.0F) {
        finest.source = cut_colours(frame, {box.zoom_left, box.zoom_top, width, height});
        return;
    }
    const Plane mask = std::move(finest.mask);
    finest.mask = make_plane(width, height, 1);
    zoom_plane_nearest(mask.bytes.data(), b.width, b.height, finest.mask.bytes.data(), width,
                       height, 1);
    const Plane colours = cut_colours(frame, {box.crop_left, box.crop_top, b.width, b.height});
    finest.source = make_plane(width, height, 3);
    check(resize_plane(colours.bytes.data(), finest.source.bytes.data(), b.width, b.height, width,
                       height, 3));
}

// The last opaque pixel of the output is the last one of the rectangle. One that is as wide as the
// frame starts in the last column of the row above.
Rectangle find_place(const blend_image& output, int width, int height) {
    int64_t last = int64_t{output.width} * output.height - 1;
    while (last >= 0 && output.data[last * 4] == 0)
        last--;
    if (last < 0) throw Error(Exit::cannot_place, "--zoom: nothing of the object is left at it");
    const int64_t first = last - (int64_t{height} - 1) * output.width - (width - 1);
    int64_t left = (first + output.width) % output.width;
    if (left + width > output.width) left -= output.width;
    return {static_cast<int>(left), static_cast<int>((first - left) / output.width), width, height};
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

std::vector<int16_t> laplacian(const Plane& level, const Plane* coarser) {
    std::vector<int16_t> values(level.bytes.size());
    if (!coarser) {
        active_rows()->widen(level.bytes.data(), values.data(), values.size());
    } else {
        const Plane expanded = expand(*coarser, level);
        active_rows()->subtract(level.bytes.data(), expanded.bytes.data(), values.data(),
                                values.size());
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
    const row_ops* const rows = active_rows();
    for (size_t l = levels.size(); l-- > 0;) {
        Level& level = levels[l];
        const Level* const coarser = l + 1 < levels.size() ? &levels[l + 1] : nullptr;
        level.source_laplacian = laplacian(level.source, coarser ? &coarser->source : nullptr);
        level.destination_laplacian =
            laplacian(level.destination, coarser ? &coarser->destination : nullptr);
        level.blended_laplacian.resize(level.source.bytes.size());
        rows->blend(level.mask.bytes.data(), level.source_laplacian.data(),
                    level.destination_laplacian.data(), level.blended_laplacian.data(),
                    level.mask.bytes.size());
        level.result = make_plane(level.source.width, level.source.height, 3);
        const std::vector<int16_t>& blended = level.blended_laplacian;
        if (coarser) {
            const Plane base = expand(coarser->result, level.result);
            rows->collapse(blended.data(), base.bytes.data(), level.result.bytes.data(),
                           blended.size());
        } else {
            rows->narrow(blended.data(), level.result.bytes.data(), blended.size());
        }
    }
}

Plane stamp(const BlendCall& call, const Rectangle& place, const Plane& patch) {
    Plane frame = plane_of(call.destination, 4);
    write_region_argb(frame.bytes.data(), frame.width, patch.bytes.data(), place.left, place.top,
                      place.width, place.height, frame.height);
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
    BlendStages stages{};
    stages.source = plane_of(call.icon, 4);
    stages.source_mask = plane_of(call.mask, 1);
    SourceBox b = measure(stages.source_mask, call.zoom);
    if (call.angle != 0.0F) turn(stages, b, call.zoom, call.angle);
    stages.object = object_box(stages.source_mask);
    stages.margin = margin_of_level(b.level_box);

    blend_box box;
    place_blend_box(&call.destination, b.center_x, b.center_y, b.width, b.height, 0, call.zoom,
                    &box);
    stages.box = {box.crop_left, box.crop_top, b.width, b.height};
    stages.place = find_place(call.output, box.zoom_width, box.zoom_height);

    Level finest;
    cut_inputs(stages, b, box, call.zoom, finest);
    finest.destination = cut_colours(plane_of(call.destination, 4), stages.place);
    stages.levels.push_back(std::move(finest));
    build_pyramids(stages.levels, b.level_zoom);
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
