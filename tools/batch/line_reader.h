// SPDX-License-Identifier: Apache-2.0
// Lines of a file or of standard input, without blocking where a poll says that there are bytes.
#ifndef IMAGEBLEND_TOOLS_BATCH_LINE_READER_H
#define IMAGEBLEND_TOOLS_BATCH_LINE_READER_H

#include <cstdint>
#include <optional>
#include <string>

namespace tool {

struct Line {
    uint64_t number;
    std::string text;  // without its end
    bool too_long;     // longer than max_line_bytes, and not kept
};

constexpr size_t max_line_bytes = 1'000'000;

class LineReader {
  public:
    // "-" is standard input. The first line has the number `first_line`.
    LineReader(const std::string& path, uint64_t first_line);
    ~LineReader();
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    // The next line that is not blank; nothing when more must be read first.
    std::optional<Line> next();
    // Reads once. Keeps at most one line that is not ended yet, up to its limit.
    void fill();

    bool at_end() const { return at_end_ && !too_long_ && position_ == buffer_.size(); }
    int descriptor() const { return descriptor_; }
    // For messages.
    const std::string& name() const { return name_; }
    // Lines that are not blank; 0 when this is not known before they are read.
    uint64_t count_lines() const;

  private:
    std::string name_;
    int descriptor_ = 0;
    bool at_end_ = false;
    bool too_long_ = false;  // the line at position_ has lost its beginning
    std::string buffer_;
    size_t position_ = 0;
    uint64_t next_number_;
};

}  // namespace tool

#endif
