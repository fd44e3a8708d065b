// SPDX-License-Identifier: Apache-2.0
// The object as it is laid over the destination: scaled, turned and in its place.
#ifndef IMAGEBLEND_TOOLS_PICTURES_LAYER_H
#define IMAGEBLEND_TOOLS_PICTURES_LAYER_H

#include <string>
#include <vector>

#include "pictures/clean_object.h"
#include "pictures/placement.h"

namespace tool {

// What of the destination an object reaches.
struct Layer {
    Frame object;
    Frame surroundings;            // empty unless surroundings are wanted
    int left, top;                 // in the destination
    int reach;                     // as imageblend_layer has it
    std::vector<std::string> cut;  // sides of the destination that the object crosses
};

// `picture` is the source that the object was cut from; `reach` the pixels of it that come along
// around the object, or IMAGEBLEND_SURROUNDINGS_AUTO. At zoom 1 without an angle the object keeps
// its pixels, and its middle stands at most half a pixel left of or above its place. Otherwise it
// is resampled, exactly there. Fails when the object would be smaller than a pixel, or outside of
// the destination.
Layer make_layer(const CleanObject& clean, const vips::VImage& picture, const Placement& placement,
                 const Size& destination, int reach);

// The records point into the layer.
struct LayerRecords {
    blend_image object, surroundings;
    imageblend_layer layer;
    explicit LayerRecords(const Layer& from);
    LayerRecords(const LayerRecords&) = delete;
    LayerRecords& operator=(const LayerRecords&) = delete;
};

}  // namespace tool

#endif
