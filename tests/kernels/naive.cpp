#include "naive.h"

#include <algorithm>
#include <random>
#include <utility>

namespace naive {
namespace {

// One line inside a plane: sample k is at data[offset + k * stride].
struct line {
    const bytes& data;
    size_t offset;
    size_t stride;
    int32_t length;

    int at(int32_t k) const {
        return data[offset + static_cast<size_t>(std::clamp(k, 0, length - 1)) * stride];
    }
};

uint8_t reduced(const line& s, int32_t i) {
    const int32_t c = 2 * i;
    const int sum = s.at(c - 2) + 4 * s.at(c - 1) + 6 * s.at(c) + 4 * s.at(c + 1) + s.at(c + 2);
    return static_cast<uint8_t>((sum + 8) / 16);
}

uint8_t expanded(const line& s, int32_t i) {
    const int32_t k = i / 2;
    const int sum =
        i % 2 == 0 ? s.at(k - 1) + 6 * s.at(k) + s.at(k + 1) : 4 * s.at(k) + 4 * s.at(k + 1);
    return static_cast<uint8_t>((sum + 4) / 8);
}

using filter = uint8_t (*)(const line&, int32_t);

// `count` samples of every row into rows of `width` pixels.
void filter_rows(const bytes& src, extent from, int32_t width, int32_t count, int32_t channels,
                 filter rule, bytes& out) {
    const auto step = static_cast<size_t>(channels);
    for (int32_t y = 0; y < from.height; ++y) {
        const size_t in_row = plane_bytes({from.width, y}, channels);
        const size_t out_row = plane_bytes({width, y}, channels);
        for (size_t c = 0; c < step; ++c) {
            const line s = {src, in_row + c, step, from.width};
            for (int32_t i = 0; i < count; ++i)
                out[out_row + static_cast<size_t>(i) * step + c] = rule(s, i);
        }
    }
}

void filter_columns(const bytes& src, extent from, int32_t count, int32_t channels, filter rule,
                    bytes& out) {
    const size_t row_bytes = plane_bytes({from.width, 1}, channels);
    for (size_t x = 0; x < row_bytes; ++x) {
        const line s = {src, x, row_bytes, from.height};
        for (int32_t i = 0; i < count; ++i)
            out[static_cast<size_t>(i) * row_bytes + x] = rule(s, i);
    }
}

}  // namespace

size_t plane_bytes(extent e, int32_t channels) {
    return static_cast<size_t>(e.width) * static_cast<size_t>(e.height) *
           static_cast<size_t>(channels);
}

bytes rows_of(const bytes& plane, size_t row_bytes, int32_t first, int32_t count) {
    const auto begin =
        plane.begin() + static_cast<ptrdiff_t>(static_cast<size_t>(first) * row_bytes);
    return bytes(begin, begin + static_cast<ptrdiff_t>(static_cast<size_t>(count) * row_bytes));
}

bytes reduce_rows(const bytes& src, extent from, int32_t width, int32_t channels) {
    bytes out(plane_bytes({width, from.height}, channels));
    filter_rows(src, from, width, width, channels, reduced, out);
    return out;
}

bytes reduce_columns(const bytes& src, extent from, int32_t height, int32_t channels) {
    bytes out(plane_bytes({from.width, height}, channels));
    filter_columns(src, from, height, channels, reduced, out);
    return out;
}

bytes reduce(const bytes& src, extent from, extent to, int32_t channels) {
    return reduce_columns(reduce_rows(src, from, to.width, channels), {to.width, from.height},
                          to.height, channels);
}

bytes expand_rows(const bytes& src, extent from, int32_t width, bytes target) {
    filter_rows(src, from, width, std::min(width, 2 * from.width + 1), 3, expanded, target);
    return target;
}

bytes expand_columns(const bytes& src, extent from, int32_t height, bytes target) {
    filter_columns(src, from, std::min(height, 2 * from.height + 1), 3, expanded, target);
    return target;
}

bytes expand(const bytes& src, extent from, extent to, uint8_t fill, bytes target) {
    const bytes blank(plane_bytes({to.width, from.height}, 3), fill);
    return expand_columns(expand_rows(src, from, to.width, blank), {to.width, from.height},
                          to.height, std::move(target));
}

bytes data(int kind, size_t count, uint64_t seed) {
    std::mt19937_64 engine(seed * 6 + static_cast<uint64_t>(kind));
    bytes out(count);
    for (size_t i = 0; i < count; ++i) {
        const auto random = static_cast<uint8_t>(engine() >> 24);
        switch (kind) {
            case 0:
                out[i] = 0;
                break;
            case 1:
                out[i] = 255;
                break;
            case 2:
                out[i] = i % 2 == 0 ? 255 : 0;
                break;
            case 3:
                out[i] = i / 3 % 2 == 0 ? 0 : 255;
                break;
            case 4:
                out[i] = random;
                break;
            default:
                out[i] = random < 128 ? 0 : 255;
        }
    }
    return out;
}

}  // namespace naive
