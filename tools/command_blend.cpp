#include <cmath>
#include <cstdlib>
#include <vector>

#include "commands.h"
#include "log_listener.h"
#include "output_file.h"

namespace tool {
namespace {

std::string pixels(int number) {
    return std::to_string(number) + (number == 1 ? " pixel" : " pixels");
}

void report_scale(const BlendJob& job, const Object& object, const FramedObject& framed) {
    if (framed.scale == 1.0) return;
    warn(job.object.source + ": the object (" + text(find_box_size(object.mask)) +
         ") does not lie in a frame of the destination's size (" + text(framed.frame) +
         "): the source is scaled by " + short_text(framed.scale) + " before it is blended");
}

void report_placement(const BlendJob& job, const Verdict& verdict, const Geometry& geometry) {
    if (!verdict.seams.empty()) {
        warn(job.output + ": a seam may show at the " + list(verdict.seams) +
             ": the object is too near to the border there");
    }
    if (!verdict.fits) {
        warn(job.output + ": the turned object nearly fills the destination: a seam may show");
    }
    std::vector<std::string> moves;
    if (geometry.moved_right != 0) {
        moves.push_back(pixels(std::abs(geometry.moved_right)) +
                        (geometry.moved_right > 0 ? " to the right" : " to the left"));
    }
    if (geometry.moved_down != 0) {
        moves.push_back(pixels(std::abs(geometry.moved_down)) +
                        (geometry.moved_down > 0 ? " down" : " up"));
    }
    if (!moves.empty()) warn(job.output + ": the object is moved inwards by " + list(moves));
}

// The output takes the place of the destination in its frame.
void blend_into(const Frame& destination, const Frame& icon, const Frame& mask,
                const Geometry& geometry, const FramedObject& framed, const Placement& placement) {
    const blend_image icon_record = icon.record();
    const blend_image mask_picture = mask.record();
    const blend_image destination_record = destination.record();
    blend_image output = destination_record;
    LogListener log;
    const int32_t status = vorn_imageBlending(&icon_record, &destination_record, &mask_picture,
                                              &output, 0, 0, geometry.centre.x, geometry.centre.y,
                                              static_cast<float>(framed.zoom), placement.angle);
    log.replay();
    if (status == 0) return;
    if (!log.heard("Zoom factor is too big")) {
        throw Error(Exit::internal,
                    "not enough memory to blend a frame of " + text(destination.size));
    }
    throw Error(Exit::cannot_place, "--zoom " + short_text(placement.zoom) +
                                        ": the object does not fit into the destination; the " +
                                        "largest zoom that fits is " +
                                        largest_zoom(mask, placement, framed.scale));
}

}  // namespace

Exit run_blend(const BlendJob& job) {
    OutputFile output(job.output);
    const vips::VImage destination = load_picture(job.destination);
    const Placement placement = place(job.placement, size_of(destination));
    const Object object = load_object(job.object, Wanted::mask_and_picture);
    const FramedObject framed =
        fit_object(object, size_of(destination), placement.zoom, placement.angle);

    const Frame mask = mask_frame(framed);
    const Verdict verdict = verify(mask, placement, framed.zoom);
    const Geometry geometry = foresee(framed, placement);
    const Frame icon = icon_frame(framed, object.picture);
    const Frame canvas = colour_frame(destination);
    blend_into(canvas, icon, mask, geometry, framed, placement);
    report_scale(job, object, framed);
    report_placement(job, verdict, geometry);

    const bool with_alpha = destination.has_alpha() && output.keeps_alpha();
    if (destination.has_alpha() && !with_alpha) {
        warn(job.output + ": this kind of file holds no alpha channel; that of " + job.destination +
             " is left out");
    }
    output.commit(frame_picture(canvas, with_alpha));
    return Exit::success;
}

}  // namespace tool
