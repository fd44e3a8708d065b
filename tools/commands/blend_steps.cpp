#include "commands/blend_steps.h"

#include <cstdlib>
#include <vector>

#include "pictures/log_listener.h"

namespace tool {
namespace {

std::string pixels(int number) {
    return std::to_string(number) + (number == 1 ? " pixel" : " pixels");
}

}  // namespace

PreparedBlend prepare_blend(const BlendJob& job) {
    PreparedBlend blend;
    blend.photo = load_destination(job.destination);
    blend.destination = blend.photo.pixels;
    const Size frame = size_of(blend.destination);
    blend.placement = place(job.placement, frame);
    blend.object = load_object(job.object, Wanted::mask_and_picture, blend.photo);
    blend.framed = fit_object(blend.object, frame, blend.placement.zoom, blend.placement.angle);
    blend.mask = mask_frame(blend.framed);
    blend.verdict = verify(blend.mask, blend.placement, blend.framed.zoom);
    blend.geometry = foresee(blend.framed, blend.placement);
    blend.icon = icon_frame(blend.framed, blend.object.picture);
    return blend;
}

void blend_frames(const PreparedBlend& blend, const Frame& destination, const Frame& output) {
    const blend_image icon_record = blend.icon.record();
    const blend_image mask_picture = blend.mask.record();
    const blend_image destination_record = destination.record();
    blend_image output_record = output.record();
    const Pixel centre = blend.geometry.centre;
    LogListener log;
    const int32_t status = vorn_imageBlending(
        &icon_record, &destination_record, &mask_picture, &output_record, 0, 0, centre.x, centre.y,
        static_cast<float>(blend.framed.zoom), blend.placement.angle);
    log.replay();
    if (status == 0) return;
    if (!log.heard("Zoom factor is too big")) {
        throw Error(Exit::internal,
                    "not enough memory to blend a frame of " + text(destination.size));
    }
    throw Error(Exit::cannot_place,
                "--zoom " + short_text(blend.placement.zoom) +
                    ": the object does not fit into the destination; the largest zoom that fits "
                    "is " +
                    largest_zoom(blend.mask, blend.placement, blend.framed.scale));
}

std::string moves_text(const Geometry& geometry) {
    std::vector<std::string> moves;
    if (geometry.moved_right != 0) {
        moves.push_back(pixels(std::abs(geometry.moved_right)) +
                        (geometry.moved_right > 0 ? " to the right" : " to the left"));
    }
    if (geometry.moved_down != 0) {
        moves.push_back(pixels(std::abs(geometry.moved_down)) +
                        (geometry.moved_down > 0 ? " down" : " up"));
    }
    return list(moves);
}

void report_placement(const BlendJob& job, const PreparedBlend& blend) {
    if (blend.framed.scale != 1.0) {
        warn(job.object.source + ": the object (" + text(find_box_size(blend.object.mask)) +
             ") does not lie in a frame of the destination's size (" + text(blend.framed.frame) +
             "): the source is scaled by " + short_text(blend.framed.scale) +
             " before it is blended");
    }
    if (!blend.verdict.seams.empty()) {
        warn(job.output + ": a seam may show at the " + list(blend.verdict.seams) +
             ": the object is too near to the border there");
    }
    if (!blend.verdict.fits) {
        warn(job.output + ": the turned object nearly fills the destination: a seam may show");
    }
    const std::string moves = moves_text(blend.geometry);
    if (!moves.empty()) warn(job.output + ": the object is moved inwards by " + moves);
}

}  // namespace tool
