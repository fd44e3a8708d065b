// SPDX-License-Identifier: Apache-2.0
#include <cstdio>

#include "commands/bare_blend.h"
#include "commands/prepared_blend.h"

namespace tool {
namespace {

Exit verify_as_is(const BlendJob& job) {
    const Photo photo = load_destination(job.destination);
    const Size destination = size_of(photo.pixels);
    const BareBlend blend =
        plan_bare_blend(load_object(job.object, Wanted::mask_and_picture, photo),
                        place(job.placement, destination), destination);
    if (!blend.plan->check.fits) {
        std::printf("%s: the largest zoom that fits is %s\n", verdict_text(blend).c_str(),
                    largest_zoom(blend).c_str());
        return Exit::cannot_place;
    }
    warn_of_placement(job, blend);
    std::puts(verdict_text(blend).c_str());
    return seams_of(blend).empty() ? Exit::success : Exit::seams;
}

}  // namespace

Exit run_verify(const BlendJob& job) {
    if (job.as_is) return verify_as_is(job);
    const PreparedBlend blend = prepare_blend(job, load_destination(job.destination));
    warn_of_object(blend);
    std::puts(verdict_text(blend).c_str());
    return blend.layer.cut.empty() ? Exit::success : Exit::seams;
}

}  // namespace tool
