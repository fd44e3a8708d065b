// SPDX-License-Identifier: Apache-2.0
#include "commands/bare_blend.h"
#include "commands/prepared_blend.h"
#include "pictures/output_file.h"

namespace tool {
namespace {

using vips::VImage;

VImage blend_as_is(const BlendJob& job, const Photo& photo, BlendResult& result) {
    const VImage& destination = photo.pixels;
    const Placement placement = place(job.placement, size_of(destination));
    const BareBlend blend = plan_bare_blend(
        load_object(job.object, Wanted::mask_and_picture, photo), placement, size_of(destination));
    const Frame canvas = colour_frame(destination);
    blend_bare(blend, icon_frame(blend.framed, blend.object.picture), canvas, canvas);
    warn_of_placement(job, blend);
    result = {placement.at, verdict_text(blend)};
    return frame_picture(canvas, destination.has_alpha()).copy_memory();
}

VImage blend_after_preparation(const BlendJob& job, const Photo& photo, BlendResult& result) {
    PreparedBlend blend = prepare_blend(job, photo);
    blend_prepared(blend);
    warn_of_object(blend);
    result = {blend.placement.at, verdict_text(blend)};
    return blended_picture(blend, photo.pixels);
}

}  // namespace

Exit run_blend(const BlendJob& job, BlendResult* result) {
    OutputFile output(job.output);
    const Photo photo = load_destination(job.destination);
    output.take_kind_of(photo.pixels);
    BlendResult placed;
    VImage blended =
        job.as_is ? blend_as_is(job, photo, placed) : blend_after_preparation(job, photo, placed);
    if (blended.has_alpha() && !output.keeps_alpha()) {
        warn(job.output + ": this kind of file holds no alpha channel; that of " + job.destination +
             " is left out");
        blended = blended.extract_band(0, VImage::option()->set("n", 3));
    }
    output.commit(with_metadata(blended, photo));
    if (result) *result = placed;
    return Exit::success;
}

}  // namespace tool
