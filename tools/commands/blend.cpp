#include "commands/blend_steps.h"
#include "pictures/output_file.h"

namespace tool {

Exit run_blend(const BlendJob& job) {
    OutputFile output(job.output);
    const PreparedBlend blend = prepare_blend(job);
    output.take_kind_of(blend.destination);
    const Frame canvas = colour_frame(blend.destination);
    blend_frames(blend, canvas, canvas);
    report_placement(job, blend);

    const bool with_alpha = blend.destination.has_alpha() && output.keeps_alpha();
    if (blend.destination.has_alpha() && !with_alpha) {
        warn(job.output + ": this kind of file holds no alpha channel; that of " + job.destination +
             " is left out");
    }
    output.commit(with_metadata(frame_picture(canvas, with_alpha), blend.photo));
    return Exit::success;
}

}  // namespace tool
