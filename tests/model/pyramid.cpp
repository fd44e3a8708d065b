#include "pyramid.h"

#include <algorithm>

namespace model {
namespace {

struct plane {
    int width = 0;
    int height = 0;
    int channels = 1;
    std::vector<int> values;

    plane(int w, int h, int c)
        : width(w),
          height(h),
          channels(c),
          values(static_cast<size_t>(w) * static_cast<size_t>(h) * static_cast<size_t>(c)) {}

    size_t index(int x, int y, int c) const {
        return (static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)) *
                   static_cast<size_t>(channels) +
               static_cast<size_t>(c);
    }
    int at(int x, int y, int c) const { return values[index(x, y, c)]; }
};

plane from_bytes(const bytes& data, int width, int height, int channels) {
    plane result(width, height, channels);
    std::copy(data.begin(), data.end(), result.values.begin());
    return result;
}

/* Applies rule(sample, i) to every output i of every row; sample(k) repeats the edges. */
template <class Rule>
plane along_x(const plane& in, int width, Rule rule) {
    plane out(width, in.height, in.channels);
    for (int y = 0; y < in.height; ++y) {
        for (int x = 0; x < width; ++x) {
            for (int c = 0; c < in.channels; ++c) {
                const auto sample = [&](int k) {
                    return in.at(std::clamp(k, 0, in.width - 1), y, c);
                };
                out.values[out.index(x, y, c)] = rule(sample, x);
            }
        }
    }
    return out;
}

template <class Rule>
plane along_y(const plane& in, int height, Rule rule) {
    plane out(in.width, height, in.channels);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < in.width; ++x) {
            for (int c = 0; c < in.channels; ++c) {
                const auto sample = [&](int k) {
                    return in.at(x, std::clamp(k, 0, in.height - 1), c);
                };
                out.values[out.index(x, y, c)] = rule(sample, y);
            }
        }
    }
    return out;
}

/* 1 4 6 4 1 centred on 2i, rounded to a byte after each axis. */
plane reduce(const plane& in) {
    const auto rule = [](const auto& s, int i) {
        const int k = 2 * i;
        return (s(k - 2) + 4 * s(k - 1) + 6 * s(k) + 4 * s(k + 1) + s(k + 2) + 8) >> 4;
    };
    return along_y(along_x(in, in.width / 2, rule), in.height / 2, rule);
}

/* 1 6 1 at even outputs, 4 4 at odd ones; the extra output of an odd side repeats the edge. */
plane expand(const plane& in, int width, int height) {
    const auto rule = [](const auto& s, int i) {
        const int k = i / 2;
        if (i % 2 == 0) return (s(k - 1) + 6 * s(k) + s(k + 1) + 4) >> 3;
        return (4 * (s(k) + s(k + 1)) + 4) >> 3;
    };
    return along_y(along_x(in, width, rule), height, rule);
}

/* Levels 0 .. count-1 are differences, level `count` is the coarsest picture itself. */
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

/* The weights sum to 255 and the divisor is 256; negative sums round downwards. */
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
    bytes packed;
    packed.reserve(result.values.size());
    for (const int value : result.values)
        packed.push_back(static_cast<uint8_t>(value));
    return packed;
}

}  // namespace model
