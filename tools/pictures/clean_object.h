// SPDX-License-Identifier: Apache-2.0
// The object alone, as a picture that can be scaled, turned and laid over another.
#ifndef IMAGEBLEND_TOOLS_PICTURES_CLEAN_OBJECT_H
#define IMAGEBLEND_TOOLS_PICTURES_CLEAN_OBJECT_H

#include <imageblend_prepare.h>

#include "pictures/frame.h"
#include "pictures/object.h"

namespace tool {

struct CleanArguments {
    bool fit = true;
    double grow = 0.0;  // pixels
};

struct CleanObject {
    Frame pixels;        // colours and alpha of the part `box` of the source
    vips::VImage image;  // the same; refers to `pixels`
    imageblend_box box;
    imageblend_findings findings;
    Outline outline;       // of `image`, where alpha is 128 and more; above 0 if it nowhere is
    Outline soft_outline;  // where alpha is above 0
};

// Fails when there is not enough memory, or nothing is left of the object.
CleanObject clean_object(const Object& object, const CleanArguments& arguments);

}  // namespace tool

#endif
