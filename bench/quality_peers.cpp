#include "quality_peers.h"

#include <stdlib.h>

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

// Takes its seam from mask files, since one picture lies within the other.
cv::Mat enblend(const peer_input& input) {
    const std::string folder = input.folder + "/enblend";
    if (system(("mkdir -p '" + folder + "'").c_str()) != 0) return {};
    const cv::Mat mask = input.alpha >= 128;
    for (const auto& [name, picture] : {std::pair("/destination.tif", input.destination),
                                        std::pair("/source.tif", input.source)}) {
        cv::Mat opaque;
        cv::cvtColor(picture, opaque, cv::COLOR_BGR2BGRA);
        cv::imwrite(folder + name, opaque);
    }
    cv::imwrite(folder + "/mask-0.tif", ~mask);
    cv::imwrite(folder + "/mask-1.tif", mask);
    const std::string command = "cd '" + folder +
                                "' && rm -f result.tif && enblend --load-masks='mask-%i.tif' "
                                "-o result.tif destination.tif source.tif > log 2>&1";
    if (system(command.c_str()) != 0) return {};
    return cv::imread(folder + "/result.tif", cv::IMREAD_COLOR);
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
