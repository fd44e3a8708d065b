// SPDX-License-Identifier: Apache-2.0
// What people have of an object: masks good and bad, cut-outs of several kinds.
#ifndef IMAGEBLEND_BENCH_QUALITY_CASES_H
#define IMAGEBLEND_BENCH_QUALITY_CASES_H

#include <string>
#include <vector>

#include "quality_scenes.h"

enum class material {
    photo,          // the photo, and a mask beside it
    photo_alpha,    // the photo with the exact alpha as its own
    straight,       // cut out: the object's own colours, transparent pixels black
    premultiplied,  // cut out: colours times alpha
    contaminated,   // cut out: the photo's colours where alpha is not 0, else black
};

struct quality_case {
    std::string name;
    material source;
    // For a photo's mask: pixels that the outline lies outside of the true one, and whether it is
    // antialiased. The exact mask is neither.
    bool exact_mask;
    float widening;
    bool soft;
    view placed;
};

const std::vector<quality_case>& quality_cases();

// The pictures of one case, and where they are to land.
struct case_pictures {
    cv::Mat source;  // three or four bytes a pixel
    cv::Mat mask;    // bytes; empty where the source has the alpha
    cv::Mat alpha;   // bytes: the mask, or the source's own
    cv::Point at;    // where the middle of the object's box is to stand in the destination
    // The middle of the box of 128 and more, in the source: of the alpha above and of the exact
    // one.
    cv::Point2f given_middle, exact_middle;
    cv::Point moved;  // from the source to the destination at zoom 1 and angle 0
    // In the source: not 0 where the mask has lost a thin part or closed a gap for good.
    cv::Mat lost;
};

case_pictures make_case(const scene_pictures& scene, const quality_case& which);

#endif
