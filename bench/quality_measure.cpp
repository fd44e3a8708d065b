// SPDX-License-Identifier: Apache-2.0
#include "quality_measure.h"

#include <opencv2/imgproc.hpp>

namespace {

constexpr double REACH = 16.0;

cv::Mat to_lab(const cv::Mat& picture) {
    cv::Mat scaled, lab;
    picture.convertTo(scaled, CV_32FC3, 1.0 / 255.0);
    cv::cvtColor(scaled, lab, cv::COLOR_BGR2Lab);
    return lab;
}

cv::Mat difference(const cv::Mat& one, const cv::Mat& other) {
    const cv::Mat delta = to_lab(one) - to_lab(other);
    std::vector<cv::Mat> planes;
    cv::split(delta.mul(delta), planes);
    cv::Mat distance;
    cv::sqrt(planes[0] + planes[1] + planes[2], distance);
    return distance;
}

cv::Mat distance_to(const cv::Mat& where) {
    cv::Mat distance;
    cv::distanceTransform(where == 0, distance, cv::DIST_L2, cv::DIST_MASK_PRECISE);
    return distance;
}

cv::Mat edge_of(const cv::Mat& alpha) {
    cv::Mat edge = (alpha > 0) & (alpha < 255);
    cv::dilate(edge, edge, cv::getStructuringElement(cv::MORPH_CROSS, {3, 3}));
    return edge;
}

}  // namespace

quality_figures measure(const truth& exact, const cv::Mat& result) {
    const cv::Mat from_object = distance_to(exact.alpha > 0);
    const cv::Mat from_outside = distance_to(exact.alpha < 255);
    const cv::Mat counted = exact.left_out == 0;
    const cv::Mat halo = (exact.alpha == 0) & (from_object <= REACH);
    const cv::Mat inside = (exact.alpha == 255) & (from_outside <= REACH);
    const cv::Mat edge = edge_of(exact.alpha);
    const cv::Mat to_composite = difference(result, exact.composite);
    const cv::Mat to_destination = difference(result, exact.destination);

    std::vector<cv::Mat> planes;
    cv::split(result != exact.destination, planes);
    const cv::Mat changed = planes[0] | planes[1] | planes[2];
    const cv::Mat all = halo | inside | edge;
    return {cv::mean(to_destination, halo & counted)[0],
            cv::mean(to_composite, inside & counted)[0],
            cv::mean(to_composite, edge & counted)[0],
            cv::countNonZero(changed & (from_object > REACH)),
            1.0 - static_cast<double>(cv::countNonZero(all & counted)) /
                      static_cast<double>(cv::countNonZero(all)),
            {0, 0}};
}

double object_difference(const truth& exact, const cv::Mat& result) {
    cv::Mat delta;
    cv::absdiff(exact.composite, result, delta);
    const cv::Scalar means = cv::mean(delta, (exact.alpha > 0) & (exact.left_out == 0));
    return means[0] + means[1] + means[2];
}
