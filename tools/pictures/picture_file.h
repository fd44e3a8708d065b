// SPDX-License-Identifier: Apache-2.0
// Opens image files: which kinds and sizes are read, and standard input.
#ifndef IMAGEBLEND_TOOLS_PICTURES_PICTURE_FILE_H
#define IMAGEBLEND_TOOLS_PICTURES_PICTURE_FILE_H

#include <cstdint>
#include <string>
#include <vips/vips8>

#include "pictures/errors.h"

namespace tool {

// The path of standard input, and as an output that of standard output.
constexpr const char* standard_stream = "-";

struct ReadingRules {
    // Loaders that libvips does not trust, and those of ImageMagick, SVG and PDF, too. They may
    // read other files that a picture names.
    bool any_format = false;
    uint64_t max_pixels = 200'000'000;
};
// Holds for all commands that follow, and for the processes that are forked.
void set_reading_rules(const ReadingRules& rules);
// Tells libvips, which must have been started.
void apply_reading_rules();

// The name in messages.
std::string input_name(const std::string& path);

// Whether the rules keep this loader of libvips from reading; null is no loader.
bool is_blocked(const char* loader);

// Reads no more than the header. The pixels can be read once, from the top down. Standard input is
// opened once; all calls give the same image. Fails when there are more pixels than are allowed.
vips::VImage open_picture(const std::string& path);

// The text that libvips left about a failure, on one line.
std::string vips_message(const vips::VError& error);
// libvips hands on the texts of the codecs, which are all that tells it.
bool is_lack_of_memory(const std::string& message);

[[noreturn]] void fail_reading(const std::string& path, const vips::VError& error);

// Runs a step that reads the file; a failure of libvips names the file.
template <typename Step>
auto reading(const std::string& path, const Step& step) {
    try {
        return step();
    } catch (const vips::VError& error) {
        fail_reading(path, error);
    }
}

}  // namespace tool

#endif
