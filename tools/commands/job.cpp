// SPDX-License-Identifier: Apache-2.0
// What a job may ask of the preparation.
#include <charconv>
#include <cmath>

#include "commands/commands.h"

namespace tool {

int parse_surroundings(const std::string& text) {
    if (text == "auto") return IMAGEBLEND_SURROUNDINGS_AUTO;
    int pixels = -1;
    const char* const end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, pixels);
    if (parsed.ec != std::errc() || parsed.ptr != end || pixels < 0 ||
        pixels > IMAGEBLEND_LARGEST_REACH) {
        throw Error(Exit::usage, "--surroundings " + text +
                                     ": must be auto or a whole number of "
                                     "pixels from 0 to 256");
    }
    return pixels;
}

void check_preparation(const BlendJob& job) {
    const double grow = job.clean.grow;
    if (!(std::abs(grow) <= IMAGEBLEND_LARGEST_GROWTH)) {
        throw Error(Exit::usage,
                    "--grow " + short_text(grow) + ": must be a number from -16 to 16");
    }
    if (!job.as_is) return;
    if (grow != 0.0 || job.surroundings != 0 || job.placement.anchor != Anchor::centre) {
        throw Error(Exit::usage, "--as-is: leaves nothing to --grow, --surroundings and --anchor");
    }
}

}  // namespace tool
