// SPDX-License-Identifier: Apache-2.0
#include "patch_blends.h"

#include <memory>
#include <stdexcept>

#include "blend/pyramid_blend.h"

#ifdef IMAGEBLEND_BENCH_OPENCV
#include <opencv2/core.hpp>
#endif

namespace {

using workspace_ptr = std::unique_ptr<blend_workspace, decltype(&free_blend_workspace)>;

workspace_ptr make_workspace(int32_t side) {
    workspace_ptr ws(alloc_blend_workspace(side, side, DEPTH), free_blend_workspace);
    if (!ws) throw std::runtime_error("no memory for a workspace of side " + std::to_string(side));
    return ws;
}

void blend(const patch_pair& patches, std::vector<uint8_t>& out, blend_workspace* ws) {
    const auto rectangle = [&](const std::vector<uint8_t>& pixels) {
        return packed_patch(pixels.data(), patches.side, patches.side);
    };
    const patch src = rectangle(patches.src), dst = rectangle(patches.dst), result = rectangle(out);
    if (pyramid_blend(&src, &dst, patches.mask.data(), &result, ws, nullptr) != 0) {
        throw std::runtime_error("pyramid_blend failed for side " + std::to_string(patches.side));
    }
}

}  // namespace

patch_blend make_imageblend(const patch_pair& patches) {
    auto out = std::make_shared<std::vector<uint8_t>>(patches.dst.size());
    const std::shared_ptr<blend_workspace> ws = make_workspace(patches.side);
    return {[&patches, out, ws] { blend(patches, *out, ws.get()); }, [out] { return *out; }};
}

patch_blend make_imageblend_fresh(const patch_pair& patches) {
    auto out = std::make_shared<std::vector<uint8_t>>(patches.dst.size());
    return {[&patches, out] { blend(patches, *out, make_workspace(patches.side).get()); },
            [out] { return *out; }};
}

std::vector<uint8_t> paste(const patch_pair& patches) {
    std::vector<uint8_t> out = patches.dst;
    for (size_t i = 0; i < out.size(); i++) {
        if (patches.mask[i / 3] != 0) out[i] = patches.src[i];
    }
    return out;
}

const std::vector<blend_kind>& blend_kinds() {
    static const std::vector<blend_kind> kinds = {
        {"imageblend_1", make_imageblend, 1},
        {"imageblend", make_imageblend, -1},
#ifdef IMAGEBLEND_BENCH_HALIDE
        {"halide_1", make_halide_1, 1},
        {"halide", make_halide, -1},
#endif
#ifdef IMAGEBLEND_BENCH_OPENCV
        {"by_hand_1", make_by_hand, 1},
        {"by_hand", make_by_hand, -1},
        {"multiband_1", make_multiband, 1},
        {"multiband", make_multiband, -1},
        {"multiband_16s", make_multiband_16s, -1},
#endif
    };
    return kinds;
}

thread_limit::thread_limit(const blend_kind& kind) {
    sched_getaffinity(0, sizeof cores_, &cores_);
    if (kind.threads == 1) {
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(static_cast<size_t>(sched_getcpu()), &one);
        sched_setaffinity(0, sizeof one, &one);
    }
#ifdef IMAGEBLEND_BENCH_OPENCV
    if (kind.threads < 0 || kind.threads != cv::getNumThreads()) cv::setNumThreads(kind.threads);
#endif
}

thread_limit::~thread_limit() {
    sched_setaffinity(0, sizeof cores_, &cores_);
}
