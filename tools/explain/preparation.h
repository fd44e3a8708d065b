// SPDX-License-Identifier: Apache-2.0
// What the preparation makes of a mask, on the page before the stages.
#ifndef IMAGEBLEND_TOOLS_EXPLAIN_PREPARATION_H
#define IMAGEBLEND_TOOLS_EXPLAIN_PREPARATION_H

#include <string>

#include "explain/page.h"
#include "pictures/clean_object.h"

namespace tool {

struct PreparationViews {
    const Object& object;
    const CleanObject& clean;
    const Frame &icon, &mask;  // of the blend
};

// Five panels, each with a detail of the edge below it. Returns the row below them.
int add_preparation(Page& page, int top, const PreparationViews& views);

}  // namespace tool

#endif
