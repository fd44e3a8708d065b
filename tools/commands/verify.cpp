#include <cstdio>

#include "commands/bare_blend.h"
#include "commands/prepared_blend.h"

namespace tool {
namespace {

Exit verify_as_is(const BlendJob& job) {
    const Size destination = picture_size(job.destination);
    const BareBlend blend = plan_bare_blend(load_object(job.object, Wanted::mask),
                                            place(job.placement, destination), destination);
    if (!blend.plan->check.fits) {
        std::printf("does not fit: the largest zoom that fits is %s\n",
                    largest_zoom(blend).c_str());
        return Exit::cannot_place;
    }
    const std::vector<std::string> seams = seams_of(blend);
    if (!seams.empty()) {
        std::printf("fits, with a seam at the %s\n", list(seams).c_str());
        return Exit::seams;
    }
    std::puts("fits with full margins");
    return Exit::success;
}

}  // namespace

Exit run_verify(const BlendJob& job) {
    if (job.as_is) return verify_as_is(job);
    const PreparedBlend blend = prepare_blend(job, load_destination(job.destination));
    for (const std::string& remark : remarks(blend))
        warn(remark);
    if (!blend.layer.cut.empty()) {
        std::printf("fits, cut off at the %s\n", list(blend.layer.cut).c_str());
        return Exit::seams;
    }
    std::puts("fits");
    return Exit::success;
}

}  // namespace tool
