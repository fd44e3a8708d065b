// SPDX-License-Identifier: Apache-2.0
#include <memory>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "patch_blends.h"

// The loops are compiled for wider vectors too, as the functions of OpenCV are.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
#define WIDE_LOOP __attribute__((target_clones("avx2", "default"), optimize("O3")))
#else
#define WIDE_LOOP
#endif

namespace {

WIDE_LOOP void subtract(const uint8_t* a, const uint8_t* b, int16_t* to, int count) {
    for (int i = 0; i < count; i++)
        to[i] = static_cast<int16_t>(a[i] - b[i]);
}

// `weights` has the mask's value once for each channel.
WIDE_LOOP void mix(const uint8_t* weights, const int16_t* a, const int16_t* b, int16_t* to,
                   int count) {
    for (int i = 0; i < count; i++) {
        const int m = weights[i];
        to[i] = static_cast<int16_t>((m * a[i] + (255 - m) * b[i] + 128) >> 8);
    }
}

WIDE_LOOP void add(const int16_t* lap, const uint8_t* base, uint8_t* to, int count) {
    for (int i = 0; i < count; i++) {
        const int sum = lap[i] + base[i];
        to[i] = static_cast<uint8_t>(sum < 0 ? 0 : sum > 255 ? 255 : sum);
    }
}

WIDE_LOOP void spread(const uint8_t* mask, uint8_t* to, int pixels) {
    for (int p = 0; p < pixels; p++)
        to[3 * p] = to[3 * p + 1] = to[3 * p + 2] = mask[p];
}

struct by_hand {
    cv::Mat src[DEPTH + 1], dst[DEPTH + 1], mask[DEPTH + 1], result[DEPTH + 1];
    cv::Mat up_src[DEPTH], up_dst[DEPTH], up_result[DEPTH];
    cv::Mat zero;  // a row

    explicit by_hand(const patch_pair& patches) {
        const cv::Size size(patches.side, patches.side);
        const auto header = [&](const std::vector<uint8_t>& bytes, int type) {
            return cv::Mat(size, type, const_cast<uint8_t*>(bytes.data()));
        };
        src[0] = header(patches.src, CV_8UC3);
        dst[0] = header(patches.dst, CV_8UC3);
        mask[0] = header(patches.mask, CV_8UC1);
        for (int l = 0; l <= DEPTH; l++)
            result[l].create(size.height >> l, size.width >> l, CV_8UC3);
        zero = cv::Mat::zeros(1, size.width, CV_8UC3);
    }

    // The level's Laplacians, their mix and its sum with the expanded result, row by row, so that
    // the 16-bit rows stay in the cache. The coarsest level has no expansions.
    void blend_level(int level) {
        const int width = result[level].cols, count = 3 * width;
        const auto rows = [&](const cv::Range& range) {
            std::vector<int16_t> lap(2 * static_cast<size_t>(count));
            std::vector<uint8_t> weights(static_cast<size_t>(count));
            int16_t *lap_src = lap.data(), *lap_dst = lap.data() + count;
            for (int y = range.start; y < range.end; y++) {
                const auto expanded = [&](const cv::Mat* up) {
                    return level == DEPTH ? zero.ptr() : up[level].ptr(y);
                };
                subtract(src[level].ptr(y), expanded(up_src), lap_src, count);
                subtract(dst[level].ptr(y), expanded(up_dst), lap_dst, count);
                spread(mask[level].ptr(y), weights.data(), width);
                mix(weights.data(), lap_src, lap_dst, lap_src, count);
                add(lap_src, expanded(up_result), result[level].ptr(y), count);
            }
        };
        cv::parallel_for_(cv::Range(0, result[level].rows), rows, cv::getNumThreads());
    }

    void run() {
        for (int l = 0; l < DEPTH; l++) {
            cv::pyrDown(src[l], src[l + 1]);
            cv::pyrDown(dst[l], dst[l + 1]);
            cv::pyrDown(mask[l], mask[l + 1]);
        }
        blend_level(DEPTH);
        for (int l = DEPTH - 1; l >= 0; l--) {
            cv::pyrUp(src[l + 1], up_src[l], src[l].size());
            cv::pyrUp(dst[l + 1], up_dst[l], dst[l].size());
            cv::pyrUp(result[l + 1], up_result[l], result[l].size());
            blend_level(l);
        }
    }
};

}  // namespace

patch_blend make_by_hand(const patch_pair& patches) {
    auto peer = std::make_shared<by_hand>(patches);
    return {[peer] { peer->run(); },
            [peer] {
                return std::vector<uint8_t>(peer->result[0].datastart, peer->result[0].dataend);
            }};
}
