// SPDX-License-Identifier: Apache-2.0
#include "quality_grounds.h"

#include <algorithm>
#include <map>
#include <opencv2/imgproc.hpp>

#include "quality_drawing.h"

namespace {

using colour = cv::Vec3f;

colour mixed(const colour& from, const colour& to, float share) {
    return from + (to - from) * std::clamp(share, 0.0f, 1.0f);
}

// Each pixel by a function of its place, from 0 to 1 in both directions, and of two noises: one of
// spots down to `smallest`, one of spots from `fine` to one pixel.
template <typename Painter>
cv::Mat paint(cv::Size size, float largest, float smallest, float fine, uint64_t seed,
              const Painter& colour_at) {
    const cv::Mat large = natural_noise(size, largest, smallest, seed);
    const cv::Mat small = natural_noise(size, fine, 1, seed + 1000);
    cv::Mat picture(size, CV_32FC3);
    for (int y = 0; y < size.height; y++) {
        for (int x = 0; x < size.width; x++) {
            picture.at<colour>(y, x) =
                colour_at(static_cast<float>(x) / static_cast<float>(size.width),
                          static_cast<float>(y) / static_cast<float>(size.height),
                          large.at<float>(y, x), small.at<float>(y, x));
        }
    }
    return picture;
}

cv::Mat sky(cv::Size size, uint64_t seed) {
    return paint(size, 256, 14, 16, seed, [](float x, float y, float large, float small) {
        const colour clear = mixed({225, 165, 95}, {238, 222, 200}, y * 0.9f + 0.2f * x);
        return mixed(clear, {246, 243, 240}, 0.45f * large - 0.1f) + colour::all(0.8f * small);
    });
}

// A sky over a hazy horizon over grass.
cv::Mat shore(cv::Size size, uint64_t seed) {
    return paint(size, 200, 8, 12, seed, [](float x, float y, float large, float small) {
        const float horizon = 0.46f + 0.01f * large + 0.04f * x;
        if (y < horizon) {
            return mixed({214, 182, 140}, {232, 228, 222}, y / horizon + 0.1f * large);
        }
        const float near = (y - horizon) / (1 - horizon);
        return mixed({120, 138, 118}, {46, 96, 78}, near * 1.6f) +
               colour::all((5 + 12 * near) * small + 8 * large);
    });
}

cv::Mat foliage(cv::Size size, uint64_t seed) {
    return paint(size, 90, 2, 24, seed, [](float, float y, float large, float small) {
        const float light = 0.42f + 0.16f * large + 0.16f * small - 0.1f * y;
        return mixed({16, 30, 20}, {92, 178, 150}, light);
    });
}

cv::Mat wall(cv::Size size, uint64_t seed, const colour& lit, const colour& unlit) {
    return paint(size, 300, 4, 6, seed, [&](float x, float y, float large, float small) {
        return mixed(lit, unlit, 0.8f * x + 0.45f * y - 0.1f) + colour::all(3 * large + 2 * small);
    });
}

cv::Mat dark_wall(cv::Size size, uint64_t seed) {
    return wall(size, seed, {70, 66, 78}, {30, 26, 30});
}

cv::Mat light_wall(cv::Size size, uint64_t seed) {
    return wall(size, seed, {222, 230, 236}, {168, 178, 190});
}

// Darkness with lights out of focus.
cv::Mat night(cv::Size size, uint64_t seed) {
    cv::Mat picture = paint(size, 200, 8, 8, seed, [](float, float y, float large, float small) {
        return mixed({44, 26, 18}, {20, 16, 16}, y) + colour::all(3 * large + 1.5f * small);
    });
    cv::RNG random(seed);
    cv::Mat lights = cv::Mat::zeros(size, CV_32FC3);
    for (int i = 0; i < 26; i++) {
        const cv::Point at(random.uniform(0, size.width), random.uniform(0, size.height));
        const cv::Scalar tint(random.uniform(20, 90), random.uniform(50, 130),
                              random.uniform(80, 170));
        cv::circle(lights, at, random.uniform(6, 26), tint, cv::FILLED, cv::LINE_AA);
    }
    cv::GaussianBlur(lights, lights, {}, 2.5);
    return picture + 0.7 * lights;
}

cv::Mat sand(cv::Size size, uint64_t seed) {
    return paint(size, 120, 4, 5, seed, [](float x, float y, float large, float small) {
        return mixed({128, 172, 206}, {156, 196, 224}, 0.6f * x + 0.4f * y) +
               colour::all(9 * large + 9 * small);
    });
}

cv::Mat bricks(cv::Size size, uint64_t seed) {
    return paint(size, 60, 4, 8, seed, [&](float x, float y, float large, float small) {
        const float down = y * static_cast<float>(size.height) / 26.0f;
        const float row = std::floor(down);
        const float along = x * static_cast<float>(size.width) / 62.0f +
                            (static_cast<int>(row) % 2 == 0 ? 0.0f : 0.5f);
        const bool mortar = down - row < 0.13f || along - std::floor(along) < 0.055f;
        const colour base = mortar ? colour(150, 158, 164) : colour(58, 78, 136);
        return base + colour::all(8 * large + 7 * small);
    });
}

}  // namespace

cv::Mat paint_ground(const std::string& kind, cv::Size size, uint64_t seed) {
    static const std::map<std::string, cv::Mat (*)(cv::Size, uint64_t)> grounds = {
        {"sky", sky},
        {"shore", shore},
        {"foliage", foliage},
        {"dark_wall", dark_wall},
        {"light_wall", light_wall},
        {"night", night},
        {"sand", sand},
        {"bricks", bricks}};
    cv::Mat picture = grounds.at(kind)(size, seed);
    cv::GaussianBlur(picture, picture, {}, 0.7);
    return cv::min(cv::max(picture, cv::Scalar::all(0)), cv::Scalar::all(255));
}

cv::Mat grain(cv::Size size, float deviation, uint64_t seed) {
    cv::RNG random(seed);
    cv::Mat light(size, CV_32F), tint(size, CV_32FC3);
    random.fill(light, cv::RNG::NORMAL, 0, deviation);
    random.fill(tint, cv::RNG::NORMAL, 0, deviation * 0.5f);
    cv::Mat together;
    cv::merge(std::vector<cv::Mat>{light, light, light}, together);
    together += tint;
    cv::GaussianBlur(together, together, {}, 0.5);
    return together;
}
