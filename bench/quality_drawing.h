// SPDX-License-Identifier: Apache-2.0
// Objects drawn in layers at eight times the size of a photo, so that the share of a photo's pixel
// that an object covers is known to a small fraction of a level.
#ifndef IMAGEBLEND_BENCH_QUALITY_DRAWING_H
#define IMAGEBLEND_BENCH_QUALITY_DRAWING_H

#include <stdint.h>

#include <opencv2/core.hpp>
#include <vector>

// Pixels of a drawing for one pixel of a photo, in each direction.
constexpr int FINE = 8;

// All lengths below are pixels of the photo, all colours blue, green, red from 0 to 255.
struct drawing {
    cv::Mat cover;   // bytes, 255 where the object is
    cv::Mat colour;  // three floats, 0 outside of the object
};

struct surface {
    cv::Scalar colour;
    float rounding;  // how far from its outline a part bends away from the viewer
    float gloss;     // strength of the highlight
    float texture;   // grey levels, standard deviation
    float grain;     // size of the texture's largest spots
    uint64_t seed;
};

drawing empty_drawing(float width, float height);

// Shapes as bytes, 255 inside, in the size of the drawing.
cv::Mat polygon(const drawing& on, const std::vector<cv::Point2f>& corners);
cv::Mat ellipse(const drawing& on, cv::Point2f centre, float radius_x, float radius_y,
                float angle = 0.0f);
cv::Mat ellipse_line(const drawing& on, cv::Point2f centre, float radius_x, float radius_y,
                     float thickness);
cv::Mat line(const drawing& on, const std::vector<cv::Point2f>& points, float thickness);

void add_part(drawing* object, const cv::Mat& shape, const surface& material);
void cut_out(drawing* object, const cv::Mat& shape);

// Noise of mean 0 and standard deviation 1 with equal amplitude in every octave from `largest`
// to `smallest` pixels, which is the spectrum of natural pictures.
cv::Mat natural_noise(cv::Size size, float largest, float smallest, uint64_t seed);

#endif
