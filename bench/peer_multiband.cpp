// SPDX-License-Identifier: Apache-2.0
#include <memory>
#include <opencv2/core.hpp>
#include <opencv2/stitching/detail/blenders.hpp>

#include "patch_blends.h"

namespace {

struct multiband {
    cv::Mat src, dst, mask, inverse;  // headers of the caller's bytes but for the last
    cv::Mat out, out_mask;
    cv::Rect place;
    cv::detail::MultiBandBlender blender;

    multiband(const patch_pair& patches, int weight_type)
        : place(0, 0, patches.side, patches.side), blender(false, DEPTH, weight_type) {
        const auto header = [&](const std::vector<uint8_t>& bytes, int type) {
            return cv::Mat(place.size(), type, const_cast<uint8_t*>(bytes.data()));
        };
        src = header(patches.src, CV_8UC3);
        dst = header(patches.dst, CV_8UC3);
        mask = header(patches.mask, CV_8UC1);
        cv::bitwise_not(mask, inverse);
    }

    void run() {
        blender.prepare(place);
        blender.feed(src, mask, place.tl());
        blender.feed(dst, inverse, place.tl());
        blender.blend(out, out_mask);
    }
};

patch_blend make_blend(const patch_pair& patches, int weight_type) {
    auto peer = std::make_shared<multiband>(patches, weight_type);
    return {[peer] { peer->run(); },
            [peer] {
                cv::Mat bytes;
                peer->out.convertTo(bytes, CV_8U);
                return std::vector<uint8_t>(bytes.datastart, bytes.dataend);
            }};
}

}  // namespace

patch_blend make_multiband(const patch_pair& patches) {
    return make_blend(patches, CV_32F);
}

patch_blend make_multiband_16s(const patch_pair& patches) {
    return make_blend(patches, CV_16S);
}
