// SPDX-License-Identifier: Apache-2.0
// The stages of one blend, computed again plane by plane so that they can be shown.
#ifndef IMAGEBLEND_TOOLS_EXPLAIN_STAGES_H
#define IMAGEBLEND_TOOLS_EXPLAIN_STAGES_H

#include <imageblend.h>

#include <cstdint>
#include <string>
#include <vector>

namespace tool {

struct Rectangle {
    int left, top, width, height;
};

// Packed rows; 1 channel for a mask, 3 for colours, 4 for a frame with its unused first byte.
struct Plane {
    int width = 0, height = 0, channels = 0;
    std::vector<uint8_t> bytes;
};

// One level of the pyramids. Laplacian levels hold three channels, -255..255; at the top they are
// the pictures themselves.
struct Level {
    Plane mask, source, destination;
    std::vector<int16_t> source_laplacian, destination_laplacian, blended_laplacian;
    Plane result;  // the collapse up to here
};

struct BlendStages {
    Plane source;               // the source frame, turned
    Plane source_mask;          // the mask in that frame
    Rectangle object;           // the object's box in it
    Rectangle box;              // the box that is blended: the object's with margins
    int margin;                 // wanted on each side
    Rectangle place;            // where the zoomed box stands in the destination
    std::vector<Level> levels;  // the finest first; level 0 has the size of the place
    double gain;                // makes the blended Laplacian levels visible
    Plane paste;                // the destination frame with the object pasted plainly
};

struct BlendCall {
    blend_image icon, destination, mask;
    blend_image output;  // what the library made of them
    int32_t center_x, center_y;
    float zoom, angle;
};

// Fails when the stages do not give the library's output byte for byte.
BlendStages compute_stages(const BlendCall& call);

// One of the Laplacian planes of a level, times the gain, around a grey of 128; at the top the
// picture that it is.
Plane visible_laplacian(const BlendStages& stages, size_t level,
                        const std::vector<int16_t>& laplacian);

// Writes every plane of every level as a bitmap and as raw files into a folder, which is made.
void dump_stages(const BlendStages& stages, const std::string& folder);

}  // namespace tool

#endif
