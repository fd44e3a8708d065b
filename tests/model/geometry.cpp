// SPDX-License-Identifier: Apache-2.0
#include "geometry.h"

#include <math.h>
#include <stdarg.h>
#include <stdio.h>

#include <algorithm>

namespace model {

int32_t saturate(int64_t value) {
    return static_cast<int32_t>(std::clamp<int64_t>(value, INT32_MIN, INT32_MAX));
}

int32_t truncate(float value) {
    if (isnan(value)) return 0;
    if (value >= 2147483648.0F) return INT32_MAX;
    if (value <= -2147483648.0F) return INT32_MIN;
    return static_cast<int32_t>(value);
}

int32_t pyramid_level(int32_t side, bool clamp) {
    if (side < 1) return -4;
    int32_t level = -4;
    for (int32_t rest = side; rest > 1; rest /= 2)
        ++level;
    if (level == 0) return 1;
    return clamp ? std::min(level, 4) : level;
}

int32_t level_margin(int32_t level) {
    return level < 0 ? 0 : saturate(int64_t{4} << level);
}

void log(log_lines& lines, int priority, const char* format, ...) {
    char text[1024];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    lines.push_back({priority, text});
}

namespace {

// Rows that hold a pixel at all.
int32_t rows_of(const frame& f) {
    return f.width < 1 ? 0 : f.height;
}

// One axis of the box: the extent of the object and what the frame leaves for its margins.
struct extent {
    int64_t low = 0;
    int64_t high = 0;
    int64_t frame_side = 0;

    int64_t before(int64_t margin) const { return std::min(low, margin); }
    int64_t after(int64_t margin) const {
        return frame_side - margin > high ? margin : frame_side - 1 - high;
    }
};

void log_seams(const extent& x, const extent& y, int64_t margin, log_lines& lines) {
    if (x.low < margin) log(lines, 4, "orign pic xl seam\n");
    if (x.high >= x.frame_side - margin) log(lines, 4, "orign pic xr seam\n");
    if (y.low < margin) log(lines, 4, "orign pic yu seam\n");
    if (y.high >= y.frame_side - margin) log(lines, 4, "orign pic yd seam\n");
}

}  // namespace

mask_box find_mask_box(const frame& mask, bool clamp, bool margins, log_lines& lines) {
    extent x{saturate(int64_t{mask.width} - 1), 0, mask.width};
    extent y{saturate(int64_t{mask.height} - 1), 0, mask.height};
    for (int32_t row = 0; row < rows_of(mask); ++row) {
        for (int32_t column = 0; column < mask.width; ++column) {
            const size_t index = static_cast<size_t>(row) * static_cast<size_t>(mask.width) +
                                 static_cast<size_t>(column);
            if (mask.data[index] == 0) continue;
            x.low = std::min<int64_t>(x.low, column);
            x.high = std::max<int64_t>(x.high, column);
            y.low = std::min<int64_t>(y.low, row);
            y.high = std::max<int64_t>(y.high, row);
        }
    }
    mask_box box;
    box.x0 = saturate(x.low);
    box.y0 = saturate(y.low);
    box.width = box.bare_width = saturate(x.high - x.low + 1);
    box.height = box.bare_height = saturate(y.high - y.low + 1);
    const int32_t side = std::min(box.width, box.height);
    box.level = pyramid_level(truncate(static_cast<float>(side)), clamp);
    if (!margins) return box;
    if (box.width > mask.width || box.height > mask.height) {
        log(lines, 6, "fital error!\n");
        box.fits = false;
        return box;
    }
    const int64_t margin = level_margin(box.level);
    box.x0 = saturate(x.low - x.before(margin));
    box.y0 = saturate(y.low - y.before(margin));
    box.width = saturate(box.width + x.before(margin) + x.after(margin));
    box.height = saturate(box.height + y.before(margin) + y.after(margin));
    log_seams(x, y, margin, lines);
    return box;
}

bytes crop_mask(const frame& mask, const mask_box& box) {
    if (box.width < 1 || box.height < 1) return {};
    bytes crop;
    crop.reserve(static_cast<size_t>(box.width) * static_cast<size_t>(box.height));
    for (int64_t y = box.y0; y < int64_t{box.y0} + box.height; ++y) {
        for (int64_t x = box.x0; x < int64_t{box.x0} + box.width; ++x) {
            const bool inside = x >= 0 && x < mask.width && y >= 0 && y < mask.height;
            crop.push_back(inside ? mask.data[static_cast<size_t>(y * mask.width + x)] : 0);
        }
    }
    return crop;
}

rotation make_rotation(int32_t center_x, int32_t center_y, float angle) {
    const float radians = static_cast<float>(static_cast<double>(angle) * -3.1415926 / 180.0);
    const double exact = static_cast<double>(radians);
    return {static_cast<float>(center_x), static_cast<float>(center_y),
            static_cast<float>(cos(exact)), static_cast<float>(sin(exact))};
}

frame rotate(const frame& source, int channels, const rotation& turn) {
    frame result{source.width, source.height, bytes(source.data.size())};
    for (int32_t y = 0; y < rows_of(source); ++y) {
        for (int32_t x = 0; x < source.width; ++x) {
            const float dy = static_cast<float>(y) - turn.center_y;
            const float dx = static_cast<float>(x) - turn.center_x;
            const int64_t from_y = truncate((turn.center_y + turn.cosine * dy) - turn.sine * dx);
            const int64_t from_x = truncate((turn.center_x + turn.sine * dy) + turn.cosine * dx);
            if (from_y < 0 || from_x < 0 || from_y >= source.height || from_x >= source.width) {
                continue;
            }
            const int64_t to = (int64_t{y} * source.width + x) * channels;
            const int64_t from = (from_y * source.width + from_x) * channels;
            std::copy_n(source.data.begin() + from, channels, result.data.begin() + to);
        }
    }
    return result;
}

bytes read_rectangle(const frame& colour, int64_t x0, int64_t y0, int32_t width, int32_t height) {
    bytes packed;
    const int64_t pixels = int64_t{colour.width} * colour.height;
    for (int64_t y = y0; y < y0 + height; ++y) {
        for (int64_t x = x0; x < x0 + width; ++x) {
            int64_t index = y * colour.width + x;
            if (index < 0 || index >= pixels) {
                index = std::clamp<int64_t>(y, 0, colour.height - 1) * colour.width +
                        std::clamp<int64_t>(x, 0, colour.width - 1);
            }
            const auto pixel = colour.data.begin() + index * 4;
            packed.insert(packed.end(), pixel + 1, pixel + 4);
        }
    }
    return packed;
}

void write_rectangle(frame& colour, int64_t x0, int64_t y0, int32_t width, int32_t height,
                     const bytes& packed) {
    const int64_t pixels = int64_t{colour.width} * colour.height;
    for (int64_t row = 0; row < height; ++row) {
        for (int64_t column = 0; column < width; ++column) {
            const int64_t index = (y0 + row) * colour.width + x0 + column;
            if (index < 0 || index >= pixels) continue;
            const auto pixel = colour.data.begin() + index * 4;
            pixel[0] = 255;
            std::copy_n(packed.begin() + (row * width + column) * 3, 3, pixel + 1);
        }
    }
}

}  // namespace model
