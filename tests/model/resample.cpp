// SPDX-License-Identifier: Apache-2.0
#include "resample.h"

#include <algorithm>

namespace model {
namespace {

// Distance between output samples in 1/128 of a source sample.
int64_t step_of(int64_t from, int64_t to) {
    return to == 1 ? 0 : (from * 128 + (to >> 1) - 128) / (to - 1);
}

// Interpolates along one axis: `lines` lines of `from` samples become lines of `to` samples.
bytes interpolate(const bytes& source, int from, int to, int lines, bool horizontal) {
    bytes result(static_cast<size_t>(to) * static_cast<size_t>(lines) * 3);
    const int64_t step = step_of(from, to);
    for (int64_t k = 0; k < to; ++k) {
        const int64_t position = k * step;
        const int64_t before = (position - 1) >> 7;  // the last sample that lies before it
        const int64_t first = std::clamp<int64_t>(before, 0, from - 1);
        const int64_t second = std::clamp<int64_t>(before + 1, 0, from - 1);
        const int64_t second_weight = position - before * 128;
        for (int64_t line = 0; line < lines; ++line) {
            const auto byte_at = [&](int64_t sample, int64_t length, int64_t channel) {
                const int64_t pixel = horizontal ? line * length + sample : sample * lines + line;
                return static_cast<size_t>(pixel * 3 + channel);
            };
            for (int64_t c = 0; c < 3; ++c) {
                const int64_t sum = source[byte_at(first, from, c)] * (128 - second_weight) +
                                    source[byte_at(second, from, c)] * second_weight + 64;
                result[byte_at(k, to, c)] = static_cast<uint8_t>(sum >> 7);
            }
        }
    }
    return result;
}

}  // namespace

bytes resample_nearest(const bytes& source, extent_2d from, extent_2d to) {
    bytes result;
    for (int64_t y = 0; y < to.height; ++y) {
        const int64_t sy = std::clamp<int64_t>((y * step_of(from.height, to.height) + 64) >> 7, 0,
                                               from.height - 1);
        for (int64_t x = 0; x < to.width; ++x) {
            const int64_t sx = std::clamp<int64_t>((x * step_of(from.width, to.width) + 64) >> 7, 0,
                                                   from.width - 1);
            result.push_back(source[static_cast<size_t>(sy * from.width + sx)]);
        }
    }
    return result;
}

bytes resample_linear(const bytes& source, extent_2d from, extent_2d to) {
    const bytes rows = interpolate(source, from.width, to.width, from.height, true);
    return interpolate(rows, from.height, to.height, to.width, false);
}

}  // namespace model
