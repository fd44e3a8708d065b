// SPDX-License-Identifier: Apache-2.0
#include "quality_peers.h"

#include <stdlib.h>

#include <filesystem>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <opencv2/photo.hpp>
#include <opencv2/stitching/detail/blenders.hpp>

namespace {

cv::Mat plain_paste(const peer_input& input) {
    cv::Mat share, source, destination, result;
    cv::cvtColor(input.alpha, share, cv::COLOR_GRAY2BGR);
    share.convertTo(share, CV_32FC3, 1.0 / 255.0);
    input.source.convertTo(source, CV_32FC3);
    input.destination.convertTo(destination, CV_32FC3);
    cv::Mat(destination + (source - destination).mul(share)).convertTo(result, CV_8U);
    return result;
}

cv::Mat multi_band(const peer_input& input) {
    cv::detail::MultiBandBlender blender(false, 5, CV_32F);
    const cv::Rect frame(cv::Point(0, 0), input.destination.size());
    cv::Mat result, mask, bytes;
    blender.prepare(frame);
    blender.feed(input.source, input.alpha, {0, 0});
    blender.feed(input.destination, ~input.alpha, {0, 0});
    blender.blend(result, mask);
    result.convertTo(bytes, CV_8U);
    return bytes;
}

cv::Mat seamless_clone(const peer_input& input) {
    const cv::Mat mask = input.alpha >= 128;
    const cv::Rect box = cv::boundingRect(mask);
    cv::Mat result;
    cv::seamlessClone(input.source, input.destination, mask,
                      box.tl() + cv::Point(box.width / 2, box.height / 2), result,
                      cv::NORMAL_CLONE);
    return result;
}

void save_with_alpha(const std::string& path, const cv::Mat& picture, const cv::Mat& alpha) {
    cv::Mat together;
    cv::merge(std::vector<cv::Mat>{picture, alpha}, together);
    cv::imwrite(path, together);
}

// Enblend takes its seam from a mask file. It leaves out a picture that the other one covers whole,
// so the source ends some way from the object, and the destination has one hole, of a pixel, deep
// in the object.
cv::Mat enblend(const peer_input& input) {
    const std::string folder = input.folder + "/enblend";
    std::filesystem::create_directories(folder);
    cv::Mat mask = input.alpha >= 128, depth, around;
    cv::distanceTransform(mask, depth, cv::DIST_L2, cv::DIST_MASK_PRECISE);
    cv::Point deepest;
    cv::minMaxLoc(depth, nullptr, nullptr, nullptr, &deepest);
    cv::Mat all_but_one(mask.size(), CV_8U, 255.0);
    all_but_one.at<uint8_t>(deepest) = 0;
    cv::dilate(mask, around, cv::getStructuringElement(cv::MORPH_RECT, {65, 65}));
    save_with_alpha(folder + "/destination.png", input.destination, all_but_one);
    save_with_alpha(folder + "/source.png", input.source, around);
    cv::imwrite(folder + "/mask-1.tif", mask);
    const std::string command = "cd '" + folder +
                                "' && rm -f result.png && enblend --load-masks='mask-%n.tif' "
                                "-o result.png destination.png source.png > log 2>&1";
    if (system(command.c_str()) != 0) return {};
    return cv::imread(folder + "/result.png", cv::IMREAD_COLOR);
}

}  // namespace

std::vector<peer> find_peers(std::vector<std::string>* missing) {
    std::vector<peer> peers = {{"plain paste", plain_paste},
                               {"MultiBandBlender", multi_band},
                               {"seamlessClone", seamless_clone}};
    if (system("command -v enblend > /dev/null") == 0) {
        peers.push_back({"enblend", enblend});
    } else {
        missing->push_back("enblend is not installed (Debian package enblend); it is left out");
    }
    return peers;
}
