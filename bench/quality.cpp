// SPDX-License-Identifier: Apache-2.0
#include "quality.h"

#include <stdlib.h>

#include <algorithm>

#include "patch_blends.h"

namespace {

// Whether the object, the ellipse of patches_of, is more than MARGIN pixels away.
bool is_beyond(const patch_pair& patches, int64_t x, int64_t y) {
    const int64_t dx = 2 * x + 1 - patches.side, dy = 2 * y + 1 - patches.side;
    return dx * dx + dy * dy > static_cast<int64_t>(patches.side) * patches.side;
}

template <typename Chosen>
movement measure_movement(const patch_pair& patches, const std::vector<uint8_t>& result,
                          const Chosen& chosen) {
    int64_t sum = 0, count = 0;
    int largest = 0;
    for (int32_t y = 0; y < patches.side; y++) {
        for (int32_t x = 0; x < patches.side; x++) {
            const size_t p =
                static_cast<size_t>(y) * static_cast<size_t>(patches.side) + static_cast<size_t>(x);
            if (patches.mask[p] != 0 || !chosen(x, y)) continue;
            for (size_t i = 3 * p; i < 3 * p + 3; i++) {
                const int difference = abs(result[i] - patches.dst[i]);
                sum += difference;
                largest = std::max(largest, difference);
            }
            count += 3;
        }
    }
    const double mean = count > 0 ? static_cast<double>(sum) / static_cast<double>(count) : 0.0;
    return {mean, static_cast<double>(largest)};
}

// Of the steps to the right and down between pixels that both have the mask value `side_of_mask`.
double gradient_energy(const patch_pair& patches, const std::vector<uint8_t>& picture,
                       uint8_t side_of_mask) {
    const size_t side = static_cast<size_t>(patches.side);
    int64_t sum = 0;
    const auto add_step = [&](size_t from, size_t to) {
        if (patches.mask[from] != side_of_mask || patches.mask[to] != side_of_mask) return;
        for (size_t c = 0; c < 3; c++) {
            const int step = picture[3 * to + c] - picture[3 * from + c];
            sum += step * step;
        }
    };
    for (size_t y = 0; y + 1 < side; y++) {
        for (size_t x = 0; x + 1 < side; x++) {
            add_step(y * side + x, y * side + x + 1);
            add_step(y * side + x, (y + 1) * side + x);
        }
    }
    return static_cast<double>(sum);
}

}  // namespace

blend_quality measure_quality(const patch_pair& patches, const std::vector<uint8_t>& result) {
    const std::vector<uint8_t> pasted = paste(patches);
    const auto kept = [&](uint8_t side_of_mask) {
        return gradient_energy(patches, result, side_of_mask) /
               gradient_energy(patches, pasted, side_of_mask);
    };
    return {measure_movement(patches, result, [](int32_t, int32_t) { return true; }),
            measure_movement(patches, result,
                             [&](int32_t x, int32_t y) { return is_beyond(patches, x, y); }),
            kept(255), kept(0)};
}
