// SPDX-License-Identifier: Apache-2.0
#include "quality_truth.h"

#include <cmath>
#include <opencv2/imgproc.hpp>

namespace {

// A picture as the frame of the destination shows it when it is moved.
cv::Mat moved(const cv::Mat& picture, cv::Size frame, cv::Point by) {
    cv::Mat placed = cv::Mat::zeros(frame, picture.type());
    const cv::Rect wanted(by, picture.size());
    const cv::Rect seen = wanted & cv::Rect(cv::Point(0, 0), frame);
    if (!seen.empty()) picture(seen - by).copyTo(placed(seen));
    return placed;
}

cv::Point2f turned(cv::Point2f by, const view& how) {
    const float radians = how.angle * static_cast<float>(CV_PI) / 180.0f;
    const float c = how.zoom * std::cos(radians), s = how.zoom * std::sin(radians);
    return {c * by.x + s * by.y, c * by.y - s * by.x};
}

// Of the drawing, from the upper left corner of what is seen of it.
cv::Point2f middle(const seen_object& seen) {
    return cv::Point2f(static_cast<float>(seen.samples.cols),
                       static_cast<float>(seen.samples.rows)) *
           (0.5f / static_cast<float>(seen.scale));
}

// How far 0 is from the range between two numbers.
float beyond(float one, float other) {
    if (one * other <= 0.0f) return 0.0f;
    return std::abs(one) < std::abs(other) ? one : other;
}

}  // namespace

true_results::true_results(const scene_pictures& scene, const quality_case& which,
                           const case_pictures& pictures, bool leave_out_lost)
    : scene_(scene),
      pictures_(pictures),
      view_(which.placed),
      leave_out_lost_(leave_out_lost),
      seen_(scene.object->seen(which.placed)) {}

cv::Point2f true_results::middle_of_drawing() const {
    const cv::Point2f in_source =
        cv::Point2f(scene_.object->origin()) + middle(scene_.object->seen({1.0f, 0.0f}));
    return cv::Point2f(pictures_.at) + turned(in_source - pictures_.given_middle, view_);
}

truth true_results::at_shift(cv::Point2f shift) const {
    const cv::Size frame = scene_.destination.size();
    truth made;
    made.destination = scene_.destination;
    made.left_out = cv::Mat::zeros(frame, CV_8U);
    layer placed;
    if (view_.is_plain()) {
        const cv::Point by = pictures_.moved + cv::Point(cvRound(shift.x), cvRound(shift.y));
        placed = {moved(scene_.source_layer.alpha, frame, by),
                  moved(scene_.source_layer.colour, frame, by)};
        if (leave_out_lost_) made.left_out = moved(pictures_.lost, frame, by);
    } else {
        placed = place(seen_, frame, middle_of_drawing() - middle(seen_) + shift);
    }
    made.alpha = placed.alpha;
    made.composite = over(placed, scene_.destination);
    return made;
}

cv::Point2f true_results::off_place(cv::Point2f shift) const {
    cv::Point2f given = shift;
    // --at is a whole number of pixels, and so is a plain move.
    if (view_.is_plain()) {
        given += pictures_.given_middle - cv::Point2f(pictures_.at - pictures_.moved);
    }
    const cv::Point2f exact =
        given + turned(pictures_.exact_middle - pictures_.given_middle, view_);
    return {beyond(given.x, exact.x), beyond(given.y, exact.y)};
}

quality_figures true_results::judge(const cv::Mat& result, bool find_place) const {
    cv::Point2f best(0, 0);
    double least = object_difference(at_shift(best), result);
    for (float step = 1.0f; find_place && step >= (view_.is_plain() ? 1.0f : 0.25f);) {
        const cv::Point2f from = best;
        for (int i = 0; i < 9; i++) {
            const cv::Point2f shift = from + step * cv::Point2f(cv::Point(i % 3 - 1, i / 3 - 1));
            if (std::max(std::abs(shift.x), std::abs(shift.y)) > 1.5f) continue;
            const double difference = object_difference(at_shift(shift), result);
            if (difference >= least) continue;
            least = difference;
            best = shift;
        }
        if (best == from) step /= 2;
    }
    quality_figures figures = measure(at_shift(best), result);
    figures.off_place = off_place(best);
    return figures;
}

peer_input true_results::make_peer_input(const std::string& folder) const {
    cv::Mat colour = pictures_.source, alpha = pictures_.alpha;
    if (colour.channels() == 4) cv::cvtColor(colour, colour, cv::COLOR_BGRA2BGR);
    cv::Point2f from = pictures_.given_middle;
    cv::Point2f to = pictures_.at;
    int kernel = cv::INTER_NEAREST;
    if (view_.is_plain()) {
        to = from + cv::Point2f(pictures_.moved);
    } else {
        kernel = cv::INTER_CUBIC;
        const cv::Size size = colour.size();
        const double zoom = static_cast<double>(view_.zoom);
        const int scaling = zoom < 1.0 ? cv::INTER_AREA : cv::INTER_CUBIC;
        cv::resize(colour, colour, {}, zoom, zoom, scaling);
        cv::resize(alpha, alpha, colour.size(), 0, 0, scaling);
        from.x *= static_cast<float>(colour.cols) / static_cast<float>(size.width);
        from.y *= static_cast<float>(colour.rows) / static_cast<float>(size.height);
    }
    // OpenCV counts from the middle of the first pixel.
    from -= cv::Point2f(0.5f, 0.5f);
    to -= cv::Point2f(0.5f, 0.5f);
    const view turn = {1.0f, view_.angle};
    const cv::Point2f right = turned({1, 0}, turn), down = turned({0, 1}, turn);
    const cv::Point2f corner = to - turned(from, turn);
    const cv::Matx23f matrix(right.x, down.x, corner.x, right.y, down.y, corner.y);
    const cv::Size frame = scene_.destination.size();
    peer_input input;
    cv::warpAffine(colour, input.source, matrix, frame, kernel, cv::BORDER_REPLICATE);
    cv::warpAffine(alpha, input.alpha, matrix, frame, kernel, cv::BORDER_CONSTANT);
    input.destination = scene_.destination;
    input.folder = folder;
    return input;
}
