// SPDX-License-Identifier: Apache-2.0
// The outputs of a batch: which are there, and which are the same file.
#ifndef IMAGEBLEND_TOOLS_BATCH_OUTPUTS_H
#define IMAGEBLEND_TOOLS_BATCH_OUTPUTS_H

#include <cstdint>
#include <string>
#include <unordered_map>

namespace tool {

class Outputs {
  public:
    // Notes the output of a line. Returns the line that has the same file already, by whatever
    // path or link, or 0.
    uint64_t claim(const std::string& output, uint64_t line_number);

  private:
    std::unordered_map<std::string, uint64_t> line_of_file_;
};

// `output` may have options of libvips in brackets.
bool output_exists(const std::string& output);

}  // namespace tool

#endif
