#include "resample.h"

#include <stdlib.h>

#include <algorithm>

namespace model {
namespace {

/* Distance between output samples in 1/128 of a source sample. */
int64_t step_of(int64_t from, int64_t to) {
    return to == 1 ? 0 : (from * 128 + (to >> 1) - 128) / (to - 1);
}

struct tap_pair {
    int64_t first = 0;
    int64_t second = 0;
    int64_t first_weight = 0;
    int64_t second_weight = 128;
};

tap_pair taps_at(int64_t position, int64_t length) {
    const int64_t nearest = (position + 64) >> 7;
    const int64_t a = nearest * 128 < position ? nearest : nearest - 1;
    const int64_t b = a + 1;
    return {std::clamp<int64_t>(a, 0, length - 1), std::clamp<int64_t>(b, 0, length - 1),
            128 - llabs(position - a * 128), 128 - llabs(b * 128 - position)};
}

/* Interpolates along one axis: `lines` lines of `from` samples become lines of `to` samples.
 * Sample k of line n lies at n * line_step + k * sample_step in units of pixels. */
bytes interpolate(const bytes& source, int from, int to, int lines, bool horizontal) {
    bytes result(static_cast<size_t>(to) * static_cast<size_t>(lines) * 3);
    const int64_t step = step_of(from, to);
    for (int64_t k = 0; k < to; ++k) {
        const tap_pair taps = taps_at(k * step, from);
        for (int64_t line = 0; line < lines; ++line) {
            const auto byte_at = [&](int64_t sample, int64_t length, int64_t channel) {
                const int64_t pixel = horizontal ? line * length + sample : sample * lines + line;
                return static_cast<size_t>(pixel * 3 + channel);
            };
            for (int64_t c = 0; c < 3; ++c) {
                const int64_t sum = source[byte_at(taps.first, from, c)] * taps.first_weight +
                                    source[byte_at(taps.second, from, c)] * taps.second_weight + 64;
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
