// SPDX-License-Identifier: Apache-2.0
#include "commands/bare_blend.h"
#include "commands/prepared_blend.h"
#include "explain/picture.h"
#include "explain/preparation.h"
#include "pictures/output_file.h"

namespace tool {
namespace {

using vips::VImage;

BlendFacts facts_of(const BlendJob& job, const Placement& placement) {
    BlendFacts facts{};
    facts.source = job.object.source;
    facts.destination = job.destination;
    facts.placement = placement;
    facts.zoom = 1.0;
    facts.asked = placement.at;
    return facts;
}

BlendFacts bare_facts(const BlendJob& job, const BareBlend& blend) {
    BlendFacts facts = facts_of(job, blend.placement);
    if (blend.framed.scale != 1.0) {
        facts.source_remark = ", scaled by " + short_text(blend.framed.scale);
    }
    facts.turned = blend.placement.angle != 0.0F;
    if (facts.turned) {
        facts.source_remark +=
            ", turned by " + short_text(static_cast<double>(blend.placement.angle)) + "°";
    }
    facts.zoom = blend.framed.zoom;
    facts.seams = seams_of(blend);
    facts.verdict = "fits with full margins";
    if (!facts.seams.empty())
        facts.verdict = "fits, but a seam may show at the " + list(facts.seams);
    if (!blend.plan->check.fits) {
        facts.verdict = "the turned object nearly fills the destination: a seam may show";
    }
    facts.good = blend.plan->check.fits && facts.seams.empty();
    const std::string moves = moves_text(blend);
    if (!moves.empty()) facts.verdict += "; moved inwards by " + moves;
    return facts;
}

VImage explain_as_is(const BlendJob& job, const std::string& dump_folder) {
    const Photo photo = load_destination(job.destination);
    const VImage& picture = photo.pixels;
    const BareBlend blend =
        plan_bare_blend(load_object(job.object, Wanted::mask_and_picture, photo),
                        place(job.placement, size_of(picture)), size_of(picture));
    const Frame icon = icon_frame(blend.framed, blend.object.picture);
    const Frame destination = colour_frame(picture);
    const Frame output = make_frame(size_of(picture), 4);
    blend_bare(blend, icon, destination, output);
    warn_of_placement(job, blend);
    const BlendStages stages =
        compute_stages({icon.record(), destination.record(), blend.mask.record(), output.record(),
                        blend.plan->center_x, blend.plan->center_y,
                        static_cast<float>(blend.framed.zoom), blend.placement.angle});
    if (!dump_folder.empty()) dump_stages(stages, dump_folder);
    const BlendFacts facts = bare_facts(job, blend);
    Page page(page_width);
    add_blend(page, add_title(page, facts), 1, facts, {stages, destination, output});
    return page.render();
}

VImage explain_prepared(const BlendJob& job, const std::string& dump_folder) {
    PreparedBlend blend = prepare_blend(job, load_destination(job.destination));
    const imageblend_frames& frames = blend.frames.records;
    const Frame destination = copy_frame(blend.frames.destination, 4);
    blend_prepared(blend);
    warn_of_object(blend);

    const BlendStages stages =
        compute_stages({frames.icon, destination.record(), frames.mask, frames.destination,
                        frames.center_x, frames.center_y, 1.0F, 0.0F});
    if (!dump_folder.empty()) dump_stages(stages, dump_folder);

    BlendFacts facts = facts_of(job, blend.placement);
    facts.asked = {blend.placement.at.x - blend.left - frames.box.left,
                   blend.placement.at.y - blend.top - frames.box.top};
    facts.verdict = verdict_text(blend);
    facts.good = true;
    Page page(page_width);
    const int top =
        add_preparation(page, add_title(page, facts),
                        {blend.object, blend.clean, blend.frames.icon, blend.frames.mask});
    add_blend(page, top, 6, facts, {stages, destination, blend.frames.destination});
    return page.render();
}

}  // namespace

Exit run_explain(const BlendJob& job, const std::string& dump_folder) {
    OutputFile picture(job.output);
    picture.commit(job.as_is ? explain_as_is(job, dump_folder)
                             : explain_prepared(job, dump_folder));
    return Exit::success;
}

}  // namespace tool
