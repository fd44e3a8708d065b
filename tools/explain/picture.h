// SPDX-License-Identifier: Apache-2.0
// The one picture that shows a blend from the placement to the result.
#ifndef IMAGEBLEND_TOOLS_EXPLAIN_PICTURE_H
#define IMAGEBLEND_TOOLS_EXPLAIN_PICTURE_H

#include <string>
#include <vector>

#include "explain/page.h"
#include "explain/stages.h"
#include "pictures/frame.h"
#include "pictures/placement.h"

namespace tool {

// What the page says beside the stages.
struct BlendFacts {
    std::string source, destination;  // names of files
    Placement placement;
    std::string source_remark;  // behind the source's name
    double zoom;                // of the blend
    bool turned;                // by the blend
    Point asked;                // in the destination frame
    std::vector<std::string> seams;
    std::string verdict;
    bool good;  // nothing to complain of
};

// The page's head. Returns the row below it.
int add_title(Page& page, const BlendFacts& facts);

// The stages of the blend, from a row of the page on; `number` is that of the first.
// `destination` and `output` are colour frames.
struct BlendPictures {
    const BlendStages& stages;
    const Frame& destination;
    const Frame& output;
};
void add_blend(Page& page, int top, int number, const BlendFacts& facts,
               const BlendPictures& pictures);

}  // namespace tool

#endif
