// SPDX-License-Identifier: Apache-2.0
// Photos of an object whose alpha and colour are known exactly, and destinations for it.
#ifndef IMAGEBLEND_BENCH_QUALITY_SCENES_H
#define IMAGEBLEND_BENCH_QUALITY_SCENES_H

#include <map>
#include <opencv2/core.hpp>
#include <string>
#include <utility>
#include <vector>

#include "quality_drawing.h"

struct quality_scene {
    std::string object, surroundings, destination;
    uint64_t seed;

    std::string name() const { return object + "-" + surroundings + "-" + destination; }
};

// Set 1 is what the preparation may be tuned on, set 2 is kept aside: other objects, other pairs.
const std::vector<quality_scene>& scenes_of_set(int set);

struct view {
    float zoom, angle;  // angle counter-clockwise in degrees

    bool is_plain() const { return zoom == 1.0f && angle == 0.0f; }
};

// An object as a lens sees it, at any place between the pixels: sample [i, j] is the pixel whose
// middle lies i / scale, j / scale from the upper left corner.
struct seen_object {
    cv::Mat samples;  // four floats: blue, green, red, each times alpha, and alpha, all 0 to 255
    int scale;
};

// Alpha is a whole number from 0 to 255 in floats, colour three floats times alpha / 255.
struct layer {
    cv::Mat alpha, colour;
};

// `origin` is the place of the object's upper left corner in the frame; it is rounded to the scale.
layer place(const seen_object& object, cv::Size frame, cv::Point2f origin);

// Layer over picture, bytes.
cv::Mat over(const layer& top, const cv::Mat& below);

// One object for all of its scenes: it is drawn, seen and measured once.
class scene_object {
  public:
    explicit scene_object(const std::string& name);

    const std::string& name() const { return name_; }
    const seen_object& seen(const view& how);
    cv::Point origin() const { return origin_; }  // of the object seen at zoom 1 in the source
    // Pixels from the drawn outline, outside positive, in the middle of each pixel of the source.
    const cv::Mat& distance() const { return distance_; }

  private:
    std::string name_;
    drawing shape_;
    cv::Point origin_;
    cv::Mat distance_;
    std::map<std::pair<float, float>, seen_object> views_;
};

struct scene_pictures {
    scene_object* object;
    layer source_layer;       // with grain
    cv::Mat source;           // three bytes, with grain
    cv::Mat source_no_grain;  // for other zooms and angles: a new picture has no old grain
    cv::Mat destination;      // three bytes
};

scene_pictures paint_scene(const quality_scene& scene, scene_object* object);

#endif
