// SPDX-License-Identifier: Apache-2.0
// Halo, inside and edge: how far a result is from the object over the destination, in CIELAB.
#ifndef IMAGEBLEND_BENCH_QUALITY_MEASURE_H
#define IMAGEBLEND_BENCH_QUALITY_MEASURE_H

#include <opencv2/core.hpp>
#include <string>
#include <vector>

// Mean differences, Euclidean in CIELAB under D65.
struct quality_figures {
    double halo;    // from the destination, where alpha is 0, 1 to 16 pixels from the object
    double inside;  // from the exact composite, where alpha is 1, up to 16 pixels from the edge
    double edge;    // from the exact composite, where alpha is between, and 1 pixel around
    int changed_outside;    // pixels more than 16 from the object that are not the destination's
    double lost;            // share of the pixels above that were left out
    cv::Point2f off_place;  // right and down, from the place asked for
};

struct truth {
    cv::Mat alpha;        // floats, 0 to 255
    cv::Mat composite;    // three bytes
    cv::Mat destination;  // three bytes
    cv::Mat left_out;     // bytes, not 0 where a pixel does not count
};

quality_figures measure(const truth& exact, const cv::Mat& result);

// The mean difference of bytes over the object, to find the place of a result.
double object_difference(const truth& exact, const cv::Mat& result);

#endif
