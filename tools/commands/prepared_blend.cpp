// SPDX-License-Identifier: Apache-2.0
#include "commands/prepared_blend.h"

#include <algorithm>

namespace tool {
namespace {

using vips::VImage;

[[noreturn]] void fail_memory(const imageblend_frames& frames) {
    throw Error(Exit::internal, "not enough memory to blend a frame of " +
                                    text(Size{frames.box.width, frames.box.height}));
}

void alloc_frames(BlendFrames& frames) {
    const Size size{frames.records.box.width, frames.records.box.height};
    frames.icon = make_frame(size, 4);
    frames.mask = make_frame(size, 1);
    frames.destination = make_frame(size, 4);
    frames.records.icon = frames.icon.record();
    frames.records.mask = frames.mask.record();
    frames.records.destination = frames.destination.record();
}

[[noreturn]] void fail_empty(const Placement& placement) {
    throw Error(Exit::cannot_place, "--at " + text(placement.at) + ", --zoom " +
                                        short_text(placement.zoom) +
                                        ": nothing of the object would show");
}

// The part of the destination that the frames lie on, as a destination of its own.
void cut_part(PreparedBlend& blend, const VImage& destination) {
    const imageblend_box& box = blend.frames.records.box;
    blend.left = std::max(box.left, 0);
    blend.top = std::max(box.top, 0);
    const int right = std::min(box.left + box.width, destination.width());
    const int bottom = std::min(box.top + box.height, destination.height());
    blend.part = colour_frame(
        destination.extract_area(blend.left, blend.top, right - blend.left, bottom - blend.top));
}

void lay_frames(PreparedBlend& blend, const VImage& destination) {
    LayerRecords records(blend.layer);
    imageblend_frames& frames = blend.frames.records;
    if (imageblend_place(&records.layer, destination.width(), destination.height(), &frames) != 0) {
        fail_memory(frames);
    }
    if (frames.box.width == 0) fail_empty(blend.placement);
    cut_part(blend, destination);
    alloc_frames(blend.frames);
    records.layer.left -= blend.left;
    records.layer.top -= blend.top;
    frames.box.left -= blend.left;
    frames.box.top -= blend.top;
    const blend_image part = blend.part.record();
    if (imageblend_lay(&records.layer, &part, &frames, nullptr) != 0) {
        fail_memory(frames);
    }
}

}  // namespace

PreparedBlend prepare_blend(const BlendJob& job, const Photo& photo) {
    const VImage& destination = photo.pixels;
    PreparedBlend blend{};
    blend.placement = place(job.placement, size_of(destination));
    ObjectArguments arguments = job.object;
    arguments.soft = true;
    blend.object = load_object(arguments, Wanted::mask_and_picture, photo);
    blend.clean = clean_object(blend.object, job.clean);
    const bool has_surroundings = blend.clean.findings.surroundings != 0;
    blend.layer = make_layer(blend.clean, blend.object.picture, blend.placement,
                             size_of(destination), has_surroundings ? job.surroundings : 0);
    blend.lacks_surroundings = job.surroundings > 0 && !has_surroundings;
    lay_frames(blend, destination);
    return blend;
}

void blend_prepared(PreparedBlend& blend) {
    const imageblend_frames& frames = blend.frames.records;
    blend_image result = frames.destination;
    blend_image part = blend.part.record();
    if (vorn_imageBlending(&frames.icon, &frames.destination, &frames.mask, &result, 0, 0,
                           frames.center_x, frames.center_y, 1.0F, 0.0F) != 0 ||
        imageblend_finish(&frames, &result, &part) != 0) {
        fail_memory(frames);
    }
}

VImage blended_picture(const PreparedBlend& blend, const VImage& destination) {
    const VImage part = frame_picture(blend.part, destination.has_alpha()).copy_memory();
    return destination.insert(part, blend.left, blend.top);
}

std::string verdict_text(const PreparedBlend& blend) {
    if (blend.layer.cut.empty()) return "fits";
    return "fits, cut off at the " + list(blend.layer.cut);
}

void warn_of_object(const PreparedBlend& blend) {
    if (blend.clean.findings.fit == IMAGEBLEND_FIT_BEYOND) {
        warn(blend.object.mask_name +
             ": the outline is drawn loosely, with no edge of the picture near it: it is taken as "
             "drawn");
    }
    if (blend.lacks_surroundings) {
        warn(blend.object.mask_name +
             ": the source shows nothing around the object that could come along");
    }
}

}  // namespace tool
