#include <cstdio>

#include "commands/commands.h"

namespace tool {

Exit run_verify(const BlendJob& job) {
    const Size destination = picture_size(job.destination);
    const Placement placement = place(job.placement, destination);
    const Object object = load_object(job.object, Wanted::mask);
    const FramedObject framed = fit_object(object, destination, placement.zoom, placement.angle);
    const Frame mask = mask_frame(framed);
    const Verdict verdict = verify(mask, placement, framed.zoom);
    if (!verdict.fits) {
        std::printf("does not fit: the largest zoom that fits is %s\n",
                    largest_zoom(mask, placement, framed.scale).c_str());
        return Exit::cannot_place;
    }
    if (!verdict.seams.empty()) {
        std::printf("fits, with a seam at the %s\n", list(verdict.seams).c_str());
        return Exit::seams;
    }
    std::puts("fits with full margins");
    return Exit::success;
}

}  // namespace tool
