// SPDX-License-Identifier: Apache-2.0
#include "quality_cases.h"

#include <algorithm>
#include <opencv2/imgproc.hpp>

namespace {

cv::Point2f middle_of_box(const cv::Mat& alpha) {
    const cv::Rect box = cv::boundingRect(alpha >= 128);
    return cv::Point2f(box.tl() + box.br()) * 0.5f;
}

cv::Mat make_mask(const scene_pictures& scene, const quality_case& which) {
    cv::Mat alpha;
    scene.source_layer.alpha.convertTo(alpha, CV_8U);
    if (which.exact_mask) return alpha;
    if (which.widening == 0.0f && !which.soft) return alpha >= 128;
    const cv::Mat outwards = which.widening - scene.object->distance();
    if (!which.soft) return outwards > 0.0;
    cv::Mat mask;
    outwards.convertTo(mask, CV_8U, 255.0, 127.5);
    return mask;
}

// A part is lost where the mask ends too far from it for rounded corners and the lens blur alone, a
// gap where the mask fills it deeper than it lies outside of the outline.
cv::Mat find_lost(const cv::Mat& exact, const quality_case& which, const cv::Mat& mask) {
    cv::Mat distance, lost;
    if (which.exact_mask || which.widening == 0.0f) return cv::Mat::zeros(exact.size(), CV_8U);
    const auto grown = [&](int side) {
        cv::dilate(lost, lost, cv::getStructuringElement(cv::MORPH_ELLIPSE, {side, side}));
        return lost;
    };
    if (which.widening < 0.0f) {
        cv::distanceTransform(mask < 128, distance, cv::DIST_L2, cv::DIST_MASK_PRECISE);
        lost = (distance > 4.0f - which.widening) & (exact > 0);
        return grown(3);
    }
    cv::distanceTransform(mask >= 128, distance, cv::DIST_L2, cv::DIST_MASK_PRECISE);
    lost = (distance > which.widening + 1.0f) & (exact == 0);
    // With its soft border.
    return grown(9) & (exact < 255);
}

cv::Mat cut_out(const scene_pictures& scene, material kind) {
    const layer& object = scene.source_layer;
    cv::Mat made(object.alpha.size(), CV_8UC4);
    for (int y = 0; y < made.rows; y++) {
        for (int x = 0; x < made.cols; x++) {
            const float alpha = object.alpha.at<float>(y, x);
            cv::Vec3f colour = object.colour.at<cv::Vec3f>(y, x);
            if (kind == material::straight && alpha > 0.0f) colour *= 255.0f / alpha;
            if (kind == material::photo_alpha || (kind == material::contaminated && alpha > 0.0f)) {
                colour = scene.source.at<cv::Vec3b>(y, x);
            }
            made.at<cv::Vec4b>(y, x) = {
                cv::saturate_cast<uint8_t>(colour[0]), cv::saturate_cast<uint8_t>(colour[1]),
                cv::saturate_cast<uint8_t>(colour[2]), cv::saturate_cast<uint8_t>(alpha)};
        }
    }
    return made;
}

}  // namespace

const std::vector<quality_case>& quality_cases() {
    const view plain = {1.0f, 0.0f};
    const material photo = material::photo;
    static const std::vector<quality_case> cases = {
        {"exact", photo, true, 0, true, plain},
        {"hard", photo, false, 0, false, plain},
        {"tight-2", photo, false, -2, false, plain},
        {"tight-2-soft", photo, false, -2, true, plain},
        {"wide-4", photo, false, 4, false, plain},
        {"wide-4-soft", photo, false, 4, true, plain},
        {"wide-8", photo, false, 8, false, plain},
        {"wide-8-soft", photo, false, 8, true, plain},
        {"cutout-straight", material::straight, true, 0, true, plain},
        {"cutout-premultiplied", material::premultiplied, true, 0, true, plain},
        {"cutout-contaminated", material::contaminated, true, 0, true, plain},
        {"photo-alpha", material::photo_alpha, true, 0, true, plain},
        {"turned-0.6-20", photo, true, 0, true, {0.6f, 20.0f}},
        {"turned-1.4-minus-30", photo, true, 0, true, {1.4f, -30.0f}},
        {"zoomed-0.35", photo, true, 0, true, {0.35f, 0.0f}},
        {"turned-hard-0.8-10", photo, false, 0, false, {0.8f, 10.0f}},
    };
    return cases;
}

case_pictures make_case(const scene_pictures& scene, const quality_case& which) {
    case_pictures made;
    if (which.source == material::photo) {
        made.source = which.placed.is_plain() ? scene.source : scene.source_no_grain;
        made.mask = made.alpha = make_mask(scene, which);
    } else {
        made.source = cut_out(scene, which.source);
        cv::extractChannel(made.source, made.alpha, 3);
    }
    const cv::Size room = scene.destination.size() - scene.source.size();
    made.moved = {room.width / 2 + 5, room.height / 2 - 7};
    cv::Mat exact;
    scene.source_layer.alpha.convertTo(exact, CV_8U);
    made.exact_middle = middle_of_box(exact);
    made.given_middle = middle_of_box(made.alpha);
    made.at = made.moved + cv::Point(cvFloor(made.given_middle.x), cvFloor(made.given_middle.y));
    made.lost = find_lost(exact, which, made.alpha);
    return made;
}
