// SPDX-License-Identifier: Apache-2.0
// A plain model of the four exported functions: whole planes, one thread, no shared code with the
// library. It is the measure that the boundary tests hold the library to, byte for byte and log
// line for log line.
#ifndef IMAGEBLEND_TESTS_MODEL_H
#define IMAGEBLEND_TESTS_MODEL_H

#include <stdint.h>

#include <string>
#include <vector>

namespace model {

using bytes = std::vector<uint8_t>;

struct log_line {
    int priority = 0;
    std::string text;
};

inline bool operator==(const log_line& a, const log_line& b) {
    return a.priority == b.priority && a.text == b.text;
}

using log_lines = std::vector<log_line>;

// A colour frame (4 bytes a pixel) or a mask (1 byte), by its role. A frame with a side below 1 has
// no pixel.
struct frame {
    int32_t width = 0;
    int32_t height = 0;
    bytes data;
};

struct placement {
    int32_t center_x = 0;
    int32_t center_y = 0;
    float zoom = 1.0F;
    float angle = 0.0F;
};

// What a caller can see of a call.
struct outcome {
    int32_t status = 0;
    log_lines log;
    int32_t width = 0;  // of the object or of its icon
    int32_t height = 0;
    bytes pixels;       // of the icon or of the output; a failed call has none
    bool clean = true;  // no byte is written that the call has to leave alone
};

// The version line ends after "build time:", pointers read "<ptr>"; see support/log_capture.h.
outcome get_icon_size(const frame& mask);
outcome create_rgb_icon(const frame& source, const frame& mask);
outcome verify_icon_pos(const frame& mask, const placement& place);
outcome image_blending(const frame& icon, const frame& destination, const frame& mask,
                       const placement& place);

}  // namespace model

#endif  // IMAGEBLEND_TESTS_MODEL_H
