// SPDX-License-Identifier: Apache-2.0
#include "quality_scenes.h"

#include <cmath>
#include <opencv2/imgproc.hpp>

#include "quality_grounds.h"
#include "quality_objects.h"

namespace {

constexpr float LENS = 0.7f;   // standard deviation of the lens blur, pixels of the source
constexpr float GRAIN = 1.6f;  // standard deviation, grey levels
constexpr float ROOM = 6.0f;   // around the drawing, for blur and turning
const cv::Size SOURCE_SIZE(400, 410), DESTINATION_SIZE(640, 560);

// The matrix from pixels of the drawing to samples.
cv::Matx23f to_samples(const drawing& object, const view& how, int scale, cv::Size size) {
    const float factor = how.zoom * static_cast<float>(scale) / FINE;
    const float radians = how.angle * static_cast<float>(CV_PI) / 180.0f;
    const float c = factor * std::cos(radians), s = factor * std::sin(radians);
    const float from_x = static_cast<float>(object.cover.cols) / 2 - 0.5f;
    const float from_y = static_cast<float>(object.cover.rows) / 2 - 0.5f;
    const float to_x = static_cast<float>(size.width) / 2 - 0.5f;
    const float to_y = static_cast<float>(size.height) / 2 - 0.5f;
    return {c, s, to_x - c * from_x - s * from_y, -s, c, to_y + s * from_x - c * from_y};
}

cv::Mat to_bytes(const cv::Mat& picture) {
    cv::Mat bytes;
    picture.convertTo(bytes, CV_8U);
    return bytes;
}

seen_object see(const drawing& object, const view& how) {
    // Half as many samples where the object grows, to keep the memory in bounds.
    const int scale = how.zoom > 1.0f ? FINE / 2 : FINE;
    const float samples = static_cast<float>(scale);
    const float radians = how.angle * static_cast<float>(CV_PI) / 180.0f;
    const float c = std::abs(std::cos(radians)), s = std::abs(std::sin(radians));
    const float width = static_cast<float>(object.cover.cols) / FINE * how.zoom;
    const float height = static_cast<float>(object.cover.rows) / FINE * how.zoom;
    const auto whole = [&](float length) {
        return (2 * cvCeil(length / 2 + ROOM * std::max(how.zoom, 1.0f))) * scale;
    };
    const cv::Size size(whole(c * width + s * height), whole(s * width + c * height));

    cv::Mat cover, drawn, seen;
    object.cover.convertTo(cover, CV_32F);
    cv::Mat channels(object.cover.size(), CV_32FC4);
    const int pairs[] = {0, 0, 1, 1, 2, 2, 3, 3};
    cv::mixChannels(std::vector<cv::Mat>{object.colour, cover}, channels, pairs, 4);
    cv::warpAffine(channels, drawn, to_samples(object, how, scale, size), size, cv::INTER_LINEAR);
    const double blur = static_cast<double>(LENS * how.zoom * samples);
    const int reach = cvRound(2.8 * blur);
    cv::GaussianBlur(drawn, seen, {2 * reach + 1, 2 * reach + 1}, blur, blur);
    // A box of an even size is taken half a sample to the left: sample i means the place i / scale.
    cv::blur(seen, drawn, {scale, scale});
    return {drawn, scale};
}

cv::Mat signed_distance(const drawing& object, cv::Point corner) {
    cv::Mat cover = cv::Mat::zeros(SOURCE_SIZE * FINE, CV_8U);
    object.cover.copyTo(cover(cv::Rect(corner, object.cover.size())));
    cv::Mat outside, inside, coarse(SOURCE_SIZE, CV_32F);
    cv::distanceTransform(~cover, outside, cv::DIST_L2, cv::DIST_MASK_PRECISE);
    cv::distanceTransform(cover, inside, cv::DIST_L2, cv::DIST_MASK_PRECISE);
    const cv::Mat fine = (outside - inside) / FINE;
    for (int y = 0; y < coarse.rows; y++) {
        for (int x = 0; x < coarse.cols; x++) {
            coarse.at<float>(y, x) = fine.at<float>(y * FINE + FINE / 2, x * FINE + FINE / 2);
        }
    }
    return coarse;
}

}  // namespace

const std::vector<quality_scene>& scenes_of_set(int set) {
    static const std::vector<quality_scene> tuned = {
        {"jar", "dark_wall", "foliage", 101}, {"jar", "foliage", "night", 102},
        {"jar", "bricks", "shore", 103},      {"weed", "sky", "sand", 104},
        {"weed", "light_wall", "shore", 105}, {"weed", "sand", "night", 106},
        {"gear", "sky", "foliage", 107},      {"gear", "dark_wall", "light_wall", 108},
        {"gear", "foliage", "sky", 109}};
    static const std::vector<quality_scene> kept_aside = {
        {"lamp", "foliage", "dark_wall", 201}, {"lamp", "dark_wall", "shore", 202},
        {"lamp", "night", "bricks", 203},      {"wheel", "sand", "sky", 204},
        {"wheel", "shore", "light_wall", 205}, {"wheel", "light_wall", "foliage", 206},
        {"leaf", "night", "sand", 207},        {"leaf", "dark_wall", "sky", 208},
        {"leaf", "light_wall", "foliage", 209}};
    return set == 2 ? kept_aside : tuned;
}

layer place(const seen_object& object, cv::Size frame, cv::Point2f origin) {
    layer placed = {cv::Mat::zeros(frame, CV_32F), cv::Mat::zeros(frame, CV_32FC3)};
    const float scale = static_cast<float>(object.scale);
    const int first_x = cvRound((0.5f - origin.x) * scale);
    const int first_y = cvRound((0.5f - origin.y) * scale);
    for (int y = 0; y < frame.height; y++) {
        const int row = first_y + y * object.scale;
        if (row < 0 || row >= object.samples.rows) continue;
        for (int x = 0; x < frame.width; x++) {
            const int column = first_x + x * object.scale;
            if (column < 0 || column >= object.samples.cols) continue;
            const cv::Vec4f& sample = object.samples.at<cv::Vec4f>(row, column);
            const float alpha = std::round(sample[3]);
            if (alpha <= 0.0f) continue;
            placed.alpha.at<float>(y, x) = alpha;
            placed.colour.at<cv::Vec3f>(y, x) =
                cv::Vec3f(sample[0], sample[1], sample[2]) * (alpha / sample[3]);
        }
    }
    return placed;
}

cv::Mat over(const layer& top, const cv::Mat& below) {
    cv::Mat share, picture;
    cv::cvtColor(1.0 - top.alpha / 255.0, share, cv::COLOR_GRAY2BGR);
    below.convertTo(picture, CV_32FC3);
    return to_bytes(top.colour + picture.mul(share));
}

scene_object::scene_object(const std::string& name) : name_(name), shape_(draw_object(name)) {
    const cv::Mat& samples = seen({1.0f, 0.0f}).samples;
    origin_ = {(SOURCE_SIZE.width - samples.cols / FINE) / 2 + 3,
               (SOURCE_SIZE.height - samples.rows / FINE) / 2 - 2};
    const cv::Size room = samples.size() - shape_.cover.size();
    distance_ =
        signed_distance(shape_, origin_ * FINE + cv::Point(room.width / 2, room.height / 2));
}

const seen_object& scene_object::seen(const view& how) {
    const auto [place, missing] = views_.try_emplace({how.zoom, how.angle});
    if (missing) place->second = see(shape_, how);
    return place->second;
}

scene_pictures paint_scene(const quality_scene& scene, scene_object* object) {
    scene_pictures made;
    made.object = object;
    made.source_layer = place(object->seen({1.0f, 0.0f}), SOURCE_SIZE, object->origin());

    const cv::Mat ground = paint_ground(scene.surroundings, SOURCE_SIZE, scene.seed);
    made.source_no_grain = over(made.source_layer, ground);
    const cv::Mat noise = grain(SOURCE_SIZE, GRAIN, scene.seed + 1);
    cv::Mat share;
    cv::cvtColor(made.source_layer.alpha / 255.0, share, cv::COLOR_GRAY2BGR);
    made.source_layer.colour += noise.mul(share);
    made.source = over(made.source_layer, ground + noise);

    const uint64_t seed = scene.seed + 50;
    made.destination = to_bytes(paint_ground(scene.destination, DESTINATION_SIZE, seed) +
                                grain(DESTINATION_SIZE, GRAIN, seed + 1));
    return made;
}
