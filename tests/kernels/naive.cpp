// SPDX-License-Identifier: Apache-2.0
#include "naive.h"

#include <algorithm>
#include <random>

namespace naive {
int16_t blended(int mask, int a, int b) {
    const int sum = mask * a + (255 - mask) * b + 128;
    return static_cast<int16_t>((sum + 256 * 65536) / 256 - 65536);
}

uint8_t collapsed(int lap, int base) {
    const int sum = static_cast<int16_t>(static_cast<uint16_t>(lap + base));
    return static_cast<uint8_t>(std::clamp(sum, 0, 255));
}

size_t plane_bytes(extent e, int32_t channels) {
    return static_cast<size_t>(e.width) * static_cast<size_t>(e.height) *
           static_cast<size_t>(channels);
}

bytes rows_of(const bytes& plane, size_t row_bytes, int32_t first, int32_t count) {
    const uint8_t* const begin = plane.data() + static_cast<size_t>(first) * row_bytes;
    return bytes(begin, begin + static_cast<size_t>(count) * row_bytes);
}

bytes data(int kind, size_t count, uint64_t seed) {
    std::mt19937_64 engine(seed * 6 + static_cast<uint64_t>(kind));
    bytes out(count);
    for (size_t i = 0; i < count; ++i) {
        const auto random = static_cast<uint8_t>(engine() >> 24);
        const bool high[] = {false, true, i % 2 == 0, i / 3 % 2 != 0, false, random >= 128};
        out[i] = kind == 4 ? random : static_cast<uint8_t>(high[kind] ? 255 : 0);
    }
    return out;
}

words signed_data(int kind, size_t count, int limit, uint64_t seed) {
    const bytes low = data(kind, count, seed);
    std::mt19937_64 engine(seed);
    words out(count);
    for (size_t i = 0; i < count; ++i) {
        const int random = static_cast<int>(engine() % static_cast<uint64_t>(2 * limit + 1));
        const int value = kind == 4 ? random - limit : (low[i] == 0 ? -limit : limit);
        out[i] = static_cast<int16_t>(value);
    }
    return out;
}

}  // namespace naive
