// SPDX-License-Identifier: Apache-2.0
#include "pyramid.h"

#include <algorithm>

namespace model {
namespace {

struct plane {
    int width = 0;
    int height = 0;
    int channels = 1;
    std::vector<int> values;

    int at(int x, int y, int c) const {
        const int64_t pixel = int64_t{y} * width + x;
        return values[static_cast<size_t>(pixel * channels + c)];
    }
};

plane from_bytes(const bytes& data, int width, int height, int channels) {
    return {width, height, channels, std::vector<int>(data.begin(), data.end())};
}

// Applies rule(sample, i) to every output i of every row, or of every column; sample(k) repeats the
// edges.
template <bool along_x, class Rule>
plane filter(const plane& in, int width, int height, Rule rule) {
    plane out{width, height, in.channels, {}};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            for (int c = 0; c < in.channels; ++c) {
                const auto sample = [&](int k) {
                    return along_x ? in.at(std::clamp(k, 0, in.width - 1), y, c)
                                   : in.at(x, std::clamp(k, 0, in.height - 1), c);
                };
                out.values.push_back(rule(sample, along_x ? x : y));
            }
        }
    }
    return out;
}

template <class Rule>
plane filter_both(const plane& in, int width, int height, Rule rule) {
    return filter<false>(filter<true>(in, width, in.height, rule), width, height, rule);
}

// 1 4 6 4 1 centred on 2i, rounded to a byte after each axis.
plane reduce(const plane& in) {
    const auto rule = [](const auto& s, int i) {
        const int k = 2 * i;
        return (s(k - 2) + 4 * s(k - 1) + 6 * s(k) + 4 * s(k + 1) + s(k + 2) + 8) >> 4;
    };
    return filter_both(in, in.width / 2, in.height / 2, rule);
}

// 1 6 1 at even outputs, 4 4 at odd ones; the extra output of an odd side repeats the edge.
plane expand(const plane& in, int width, int height) {
    const auto rule = [](const auto& s, int i) {
        const int k = i / 2;
        if (i % 2 == 0) return (s(k - 1) + 6 * s(k) + s(k + 1) + 4) >> 3;
        return (4 * (s(k) + s(k + 1)) + 4) >> 3;
    };
    return filter_both(in, width, height, rule);
}

// Levels 0 .. count-1 are differences, level `count` is the coarsest picture itself.
std::vector<plane> laplacian_pyramid(plane level, int count) {
    std::vector<plane> pyramid;
    for (int l = 0; l < count; ++l) {
        plane coarser = reduce(level);
        const plane expanded = expand(coarser, level.width, level.height);
        for (size_t i = 0; i < level.values.size(); ++i)
            level.values[i] -= expanded.values[i];
        pyramid.push_back(std::move(level));
        level = std::move(coarser);
    }
    pyramid.push_back(std::move(level));
    return pyramid;
}

// The weights sum to 255 and the divisor is 256; negative sums round downwards.
plane mix(const plane& source, const plane& destination, const plane& mask) {
    plane result = destination;
    for (size_t i = 0; i < result.values.size(); ++i) {
        const int weight = mask.values[i / 3];
        result.values[i] =
            (weight * source.values[i] + (255 - weight) * destination.values[i] + 128) >> 8;
    }
    return result;
}

}  // namespace

bytes pyramid_blend(const bytes& source, const bytes& destination, const bytes& mask, int width,
                    int height, int levels) {
    const int count = std::max(levels, 0);
    const auto sources = laplacian_pyramid(from_bytes(source, width, height, 3), count);
    const auto destinations = laplacian_pyramid(from_bytes(destination, width, height, 3), count);
    std::vector<plane> blended;
    plane weights = from_bytes(mask, width, height, 1);
    for (size_t l = 0; l < sources.size(); ++l) {
        blended.push_back(mix(sources[l], destinations[l], weights));
        if (l + 1 < sources.size()) weights = reduce(weights);
    }
    plane result = blended.back();
    for (int& value : result.values)
        value &= 255;
    for (size_t l = blended.size() - 1; l > 0; --l) {
        const plane& detail = blended[l - 1];
        result = expand(result, detail.width, detail.height);
        for (size_t i = 0; i < result.values.size(); ++i) {
            result.values[i] = std::clamp(result.values[i] + detail.values[i], 0, 255);
        }
    }
    return bytes(result.values.begin(), result.values.end());
}

}  // namespace model
