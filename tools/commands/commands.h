// SPDX-License-Identifier: Apache-2.0
// The sub-commands. Each returns the exit status of a command that ran to its end.
#ifndef IMAGEBLEND_TOOLS_COMMANDS_COMMANDS_H
#define IMAGEBLEND_TOOLS_COMMANDS_COMMANDS_H

#include <cstdint>
#include <string>

#include "pictures/clean_object.h"
#include "pictures/errors.h"
#include "pictures/placement.h"

namespace tool {

struct BlendJob {
    ObjectArguments object;
    std::string destination;
    std::string output;
    PlacementArguments placement;
    CleanArguments clean;
    int surroundings = 0;  // pixels, or IMAGEBLEND_SURROUNDINGS_AUTO
    bool as_is = false;    // mask, zoom and angle go to the library untouched
};
// A number of pixels, or "auto".
int parse_surroundings(const std::string& text);
// Fails for numbers out of range and for options that exclude each other.
void check_preparation(const BlendJob& job);

// Where the object has come to stand.
struct BlendResult {
    Point at{0, 0};       // of its anchor in the destination, as asked for
    std::string verdict;  // as verify prints it
};
// Fills `result` when there is an output.
Exit run_blend(const BlendJob& job, BlendResult* result = nullptr);

// Draws the stages of a blend as one picture. With a folder, their planes are written there too.
Exit run_explain(const BlendJob& job, const std::string& dump_folder);

struct BatchArguments {
    std::string jobs_file;  // "-": standard input
    int processes = 1;
    bool overwrite = false;
    uint64_t first_line = 1;  // the number of the first line in messages
    std::string report_file;  // one JSON object a job; "-": standard output, empty: none
};
// Blends job after job in processes of its own. libvips must not have been started.
Exit run_batch(const BatchArguments& arguments);

// Prints the verdict; the output is not used.
Exit run_verify(const BlendJob& job);

// Prints "WIDTH HEIGHT". A source that has no alpha channel is a mask itself.
Exit run_size(const ObjectArguments& arguments);

Exit run_cutout(const ObjectArguments& arguments, const std::string& output);

}  // namespace tool

#endif
