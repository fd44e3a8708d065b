// SPDX-License-Identifier: Apache-2.0
#include "quality_drawing.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>

namespace {

constexpr int FRACTION_BITS = 4;

// OpenCV's drawing functions take the middle of a pixel as a whole number.
cv::Point fine(cv::Point2f point) {
    const auto scaled = [](float value) {
        return cvRound((value * FINE - 0.5f) * (1 << FRACTION_BITS));
    };
    return {scaled(point.x), scaled(point.y)};
}

cv::Size fine(float width, float height) {
    return {cvRound(width * FINE * (1 << FRACTION_BITS)),
            cvRound(height * FINE * (1 << FRACTION_BITS))};
}

cv::Mat nothing(const drawing& on) {
    return cv::Mat::zeros(on.cover.size(), CV_8U);
}

std::vector<cv::Point> fine(const std::vector<cv::Point2f>& points) {
    std::vector<cv::Point> scaled;
    for (const cv::Point2f& point : points)
        scaled.push_back(fine(point));
    return scaled;
}

// Light on a part that is rounded like a ball's quarter towards its outline: x how much of the
// colour comes back, y how much white is added.
struct lighting {
    cv::Mat diffuse, highlight;
};

lighting light_on(const cv::Mat& shape, const surface& material) {
    cv::Mat depth, dx, dy;
    cv::distanceTransform(shape, depth, cv::DIST_L2, cv::DIST_MASK_PRECISE);
    cv::GaussianBlur(depth, depth, {}, FINE);
    cv::Sobel(depth, dx, CV_32F, 1, 0, 3, 0.125);
    cv::Sobel(depth, dy, CV_32F, 0, 1, 3, 0.125);
    lighting made = {cv::Mat::ones(shape.size(), CV_32F), cv::Mat::zeros(shape.size(), CV_32F)};
    if (material.rounding <= 0.0f) return made;
    const cv::Vec3f light = cv::normalize(cv::Vec3f(-0.5f, -0.6f, 0.65f));
    const cv::Vec3f half = cv::normalize(light + cv::Vec3f(0.0f, 0.0f, 1.0f));
    for (int y = 0; y < shape.rows; y++) {
        for (int x = 0; x < shape.cols; x++) {
            if (shape.at<uint8_t>(y, x) == 0) continue;
            const float t = std::min(depth.at<float>(y, x) / (material.rounding * FINE), 1.0f);
            const float lean = 1.0f - t;
            const cv::Vec3f normal(-dx.at<float>(y, x) * lean, -dy.at<float>(y, x) * lean,
                                   std::sqrt(std::max(1.0f - lean * lean, 0.0f)));
            made.diffuse.at<float>(y, x) = 0.35f + 0.85f * std::max(normal.dot(light), 0.0f);
            made.highlight.at<float>(y, x) =
                material.gloss * 255.0f * std::pow(std::max(normal.dot(half), 0.0f), 40.0f);
        }
    }
    return made;
}

}  // namespace

drawing empty_drawing(float width, float height) {
    const cv::Size size(cvRound(width * FINE), cvRound(height * FINE));
    return {cv::Mat::zeros(size, CV_8U), cv::Mat::zeros(size, CV_32FC3)};
}

cv::Mat polygon(const drawing& on, const std::vector<cv::Point2f>& corners) {
    cv::Mat shape = nothing(on);
    cv::fillPoly(shape, std::vector<std::vector<cv::Point>>{fine(corners)}, 255, cv::LINE_8,
                 FRACTION_BITS);
    return shape;
}

cv::Mat ellipse(const drawing& on, cv::Point2f centre, float radius_x, float radius_y,
                float angle) {
    cv::Mat shape = nothing(on);
    cv::ellipse(shape, fine(centre), fine(radius_x, radius_y), angle, 0, 360, 255, cv::FILLED,
                cv::LINE_8, FRACTION_BITS);
    return shape;
}

cv::Mat ellipse_line(const drawing& on, cv::Point2f centre, float radius_x, float radius_y,
                     float thickness) {
    cv::Mat shape = nothing(on);
    cv::ellipse(shape, fine(centre), fine(radius_x, radius_y), 0, 0, 360, 255,
                cvRound(thickness * FINE), cv::LINE_8, FRACTION_BITS);
    return shape;
}

cv::Mat line(const drawing& on, const std::vector<cv::Point2f>& points, float thickness) {
    cv::Mat shape = nothing(on);
    cv::polylines(shape, std::vector<std::vector<cv::Point>>{fine(points)}, false, 255,
                  cvRound(thickness * FINE), cv::LINE_8, FRACTION_BITS);
    return shape;
}

void add_part(drawing* object, const cv::Mat& shape, const surface& material) {
    const lighting light = light_on(shape, material);
    cv::Mat texture = cv::Mat::zeros(shape.size(), CV_32F);
    if (material.texture > 0.0f) {
        texture = natural_noise(shape.size(), material.grain * FINE, 1, material.seed);
    }
    for (int y = 0; y < shape.rows; y++) {
        for (int x = 0; x < shape.cols; x++) {
            if (shape.at<uint8_t>(y, x) == 0) continue;
            const float diffuse = light.diffuse.at<float>(y, x);
            const float roughness = material.texture * texture.at<float>(y, x);
            cv::Vec3f& colour = object->colour.at<cv::Vec3f>(y, x);
            for (int c = 0; c < 3; c++) {
                const float value = (static_cast<float>(material.colour[c]) + roughness) * diffuse;
                colour[c] = std::clamp(value + light.highlight.at<float>(y, x), 0.0f, 255.0f);
            }
        }
    }
    object->cover.setTo(255, shape);
}

void cut_out(drawing* object, const cv::Mat& shape) {
    object->cover.setTo(0, shape);
    object->colour.setTo(cv::Scalar::all(0), shape);
}

cv::Mat natural_noise(cv::Size size, float largest, float smallest, uint64_t seed) {
    cv::RNG random(seed);
    cv::Mat sum = cv::Mat::zeros(size, CV_32F);
    for (float cell = largest; cell >= smallest; cell /= 2) {
        // Two more cells on every side than the picture has, so that the cubic has neighbours.
        const cv::Size cells(cvCeil(static_cast<float>(size.width) / cell) + 4,
                             cvCeil(static_cast<float>(size.height) / cell) + 4);
        cv::Mat lattice(cells, CV_32F), octave;
        random.fill(lattice, cv::RNG::NORMAL, 0, 1);
        const cv::Matx23f to_cell(1 / cell, 0, 1.5f, 0, 1 / cell, 1.5f);
        cv::warpAffine(lattice, octave, to_cell, size, cv::INTER_CUBIC | cv::WARP_INVERSE_MAP);
        sum += octave;
    }
    cv::Scalar mean, deviation;
    cv::meanStdDev(sum, mean, deviation);
    return (sum - mean[0]) / std::max(deviation[0], 1e-6);
}
