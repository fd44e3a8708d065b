#include "commands/blend_steps.h"
#include "explain/picture.h"
#include "explain/stages.h"
#include "pictures/log_listener.h"
#include "pictures/output_file.h"

namespace tool {
namespace {

// The library makes blended pixels opaque, which shows the place of the blended rectangle.
Frame transparent_frame(const vips::VImage& picture) {
    Frame frame = colour_frame(picture);
    const size_t pixels =
        static_cast<size_t>(frame.size.width) * static_cast<size_t>(frame.size.height);
    for (size_t i = 0; i < pixels; i++)
        frame.bytes.get()[i * 4] = 0;
    return frame;
}

}  // namespace

Exit run_explain(const BlendJob& job, const std::string& dump_folder) {
    OutputFile picture(job.output);
    const PreparedBlend blend = prepare_blend(job);
    const Frame destination = transparent_frame(blend.destination);
    const Frame output = transparent_frame(blend.destination);
    blend_frames(blend, destination, output);
    report_placement(job, blend);

    BlendStages stages;
    {
        const LogListener silence;  // the blend has logged the same lines
        stages = compute_stages({blend.icon.record(), destination.record(), blend.mask.record(),
                                 output.record(), blend.geometry.centre.x, blend.geometry.centre.y,
                                 static_cast<float>(blend.framed.zoom), blend.placement.angle});
    }
    if (!dump_folder.empty()) dump_stages(stages, dump_folder);
    picture.commit(explain_picture(job, blend, stages, destination, output));
    return Exit::success;
}

}  // namespace tool
