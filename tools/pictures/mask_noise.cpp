// SPDX-License-Identifier: Apache-2.0
#include "pictures/mask_noise.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <numeric>
#include <string>

namespace tool {
namespace {

using vips::VImage;

// The distance from 0 and from 255 that noise reaches in a mask which is hard otherwise, and the
// one that is given up in a JPEG file whose softness is meant.
constexpr int far_noise = 32;
constexpr int near_noise = 12;

struct Counts {
    int64_t black, faint, middle, strong;  // 0, up to far_noise, between, and from there below 255
    int64_t inside;                        // 128 and more
};

using Histogram = std::array<int64_t, 256>;

// Most of a mask is runs of 0 and of 255.
Histogram count_bytes(const uint8_t* bytes, size_t size) {
    Histogram counts{};
    size_t at = 0;
    for (uint64_t eight = 0; at + sizeof eight <= size; at += sizeof eight) {
        std::memcpy(&eight, bytes + at, sizeof eight);
        if (eight == 0 || eight == UINT64_MAX) {
            counts[eight & 255] += 8;
            continue;
        }
        for (size_t i = at; i < at + sizeof eight; i++)
            counts[bytes[i]]++;
    }
    for (; at < size; at++)
        counts[bytes[at]]++;
    return counts;
}

Counts count_values(const VImage& mask) {
    const Histogram counts =
        count_bytes(static_cast<const uint8_t*>(mask.data()),
                    static_cast<size_t>(mask.width()) * static_cast<size_t>(mask.height()));
    const auto sum = [&](int begin, int end) {
        return std::accumulate(counts.begin() + begin, counts.begin() + end, int64_t{0});
    };
    return {sum(0, 1), sum(1, far_noise), sum(far_noise, 256 - far_noise),
            sum(256 - far_noise, 255), sum(128, 256)};
}

// Noise lies at both ends alike, and little between; what is soft lies between or is faint.
int reach_of_noise(const Counts& counts, bool jpeg) {
    const int64_t ends = counts.faint + counts.strong;
    if (counts.inside == 0 || ends == 0) return 0;
    const bool two_valued =
        4 * counts.middle <= ends && 8 * std::min(counts.faint, counts.strong) >= ends;
    const bool lifted = counts.faint > 4 * counts.black && counts.faint > counts.middle;
    if (two_valued || lifted) return far_noise;
    return jpeg ? near_noise : 0;
}

}  // namespace

VImage without_noise(const VImage& mask) {
    const bool jpeg = mask.get_typeof(VIPS_META_LOADER) != 0 &&
                      std::string(mask.get_string(VIPS_META_LOADER)).compare(0, 4, "jpeg") == 0;
    const int reach = reach_of_noise(count_values(mask), jpeg);
    if (reach == 0) return mask;
    const double range = 255.0 - 2.0 * reach;
    const VImage table = (VImage::identity() - static_cast<double>(reach)) * (255.0 / range);
    return mask.maplut(table.rint().cast(VIPS_FORMAT_UCHAR)).copy_memory();
}

}  // namespace tool
