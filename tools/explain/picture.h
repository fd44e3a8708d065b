// The one picture that shows a blend from the placement to the result.
#ifndef IMAGEBLEND_TOOLS_EXPLAIN_PICTURE_H
#define IMAGEBLEND_TOOLS_EXPLAIN_PICTURE_H

#include "commands/blend_steps.h"
#include "explain/stages.h"

namespace tool {

// `destination` and `output` are colour frames.
vips::VImage explain_picture(const BlendJob& job, const PreparedBlend& blend,
                             const BlendStages& stages, const Frame& destination,
                             const Frame& output);

}  // namespace tool

#endif
