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

// Of the drawing, from the upper left corner of what is seen of it.
cv::Point2f middle(const seen_object& seen) {
    return cv::Point2f(static_cast<float>(seen.samples.cols),
                       static_cast<float>(seen.samples.rows)) *
           (0.5f / static_cast<float>(seen.scale));
}

}  // namespace

true_results::true_results(const scene_pictures& scene, const quality_case& which,
                           const case_pictures& pictures, bool leave_out_lost)
    : scene_(scene),
      pictures_(pictures),
      plain_(which.placed.is_plain()),
      leave_out_lost_(leave_out_lost) {
    if (!plain_) {
        seen_ = &scene.object->seen(which.placed);
        return;
    }
    const cv::Rect box = cv::boundingRect(pictures.alpha >= 128);
    offset_ = {static_cast<float>(box.width % 2) / 2, static_cast<float>(box.height % 2) / 2};
}

truth true_results::at_shift(cv::Point2f shift) const {
    const cv::Size frame = scene_.destination.size();
    truth made;
    made.destination = scene_.destination;
    layer placed;
    if (plain_) {
        const cv::Point by = pictures_.moved + cv::Point(cvRound(shift.x), cvRound(shift.y));
        placed = {moved(scene_.source_layer.alpha, frame, by),
                  moved(scene_.source_layer.colour, frame, by)};
        made.left_out = moved(pictures_.lost, frame, by);
    } else {
        placed = place(*seen_, frame, cv::Point2f(pictures_.at) - seen_->box_middle + shift);
    }
    if (plain_ && leave_out_lost_) {
        made.left_out = made.left_out > 0;
    } else {
        made.left_out = cv::Mat::zeros(frame, CV_8U);
    }
    made.alpha = placed.alpha;
    made.composite = over(placed, scene_.destination);
    return made;
}

quality_figures true_results::judge(const cv::Mat& result, bool find_place) const {
    cv::Point2f best(0, 0);
    double least = edge_difference(at_shift(best), result);
    for (float step = 1.0f; find_place && step >= (plain_ ? 1.0f : 0.25f);) {
        const cv::Point2f from = best;
        for (int y = -1; y <= 1; y++) {
            for (int x = -1; x <= 1; x++) {
                const cv::Point2f shift =
                    from + step * cv::Point2f(static_cast<float>(x), static_cast<float>(y));
                if (std::max(std::abs(shift.x), std::abs(shift.y)) > 1.5f) continue;
                const double difference = edge_difference(at_shift(shift), result);
                if (difference >= least) continue;
                least = difference;
                best = shift;
            }
        }
        if (best == from) step /= 2;
    }
    quality_figures figures = measure(at_shift(best), result);
    figures.shift = best + offset_;
    return figures;
}

peer_input make_peer_input(const scene_pictures& scene, const quality_case& which,
                           const case_pictures& pictures, const std::string& folder) {
    cv::Mat colour = pictures.source, alpha = pictures.alpha;
    if (colour.channels() == 4) cv::cvtColor(colour, colour, cv::COLOR_BGRA2BGR);
    cv::Point2f from = cv::Point2f(scene.object->origin()) + middle(scene.object->seen({1, 0}));
    cv::Point2f to = from + cv::Point2f(pictures.moved);
    const float zoom = which.placed.zoom;
    if (!which.placed.is_plain()) {
        const seen_object& seen = scene.object->seen(which.placed);
        to = cv::Point2f(pictures.at) - seen.box_middle + middle(seen);
        const int kernel = zoom < 1.0f ? cv::INTER_AREA : cv::INTER_CUBIC;
        const cv::Size size = colour.size();
        cv::resize(colour, colour, {}, static_cast<double>(zoom), static_cast<double>(zoom),
                   kernel);
        cv::resize(alpha, alpha, colour.size(), 0, 0, kernel);
        from.x *= static_cast<float>(colour.cols) / static_cast<float>(size.width);
        from.y *= static_cast<float>(colour.rows) / static_cast<float>(size.height);
    }
    const float radians = which.placed.angle * static_cast<float>(CV_PI) / 180.0f;
    const float c = std::cos(radians), s = std::sin(radians);
    // OpenCV counts from the middle of the first pixel.
    from -= cv::Point2f(0.5f, 0.5f);
    to -= cv::Point2f(0.5f, 0.5f);
    const cv::Matx23f matrix(c, s, to.x - c * from.x - s * from.y, -s, c,
                             to.y + s * from.x - c * from.y);
    const cv::Size frame = scene.destination.size();
    peer_input input;
    const int kernel = which.placed.is_plain() ? cv::INTER_NEAREST : cv::INTER_CUBIC;
    cv::warpAffine(colour, input.source, matrix, frame, kernel, cv::BORDER_REPLICATE);
    cv::warpAffine(alpha, input.alpha, matrix, frame, kernel, cv::BORDER_CONSTANT);
    input.destination = scene.destination;
    input.folder = folder;
    return input;
}
