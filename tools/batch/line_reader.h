// Lines of a file or of standard input, without blocking where a poll says that there are bytes.
#ifndef IMAGEBLEND_TOOLS_BATCH_LINE_READER_H
#define IMAGEBLEND_TOOLS_BATCH_LINE_READER_H

#include <cstdint>
#include <optional>
#include <string>

namespace tool {

class LineReader {
  public:
    // "-" is standard input.
    explicit LineReader(const std::string& path);
    ~LineReader();
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    // The next line that is not blank, without its end; nothing when more must be read first.
    std::optional<std::string> next();
    // Reads once; false at the end of the file.
    bool fill();

    bool at_end() const { return at_end_ && position_ == buffer_.size(); }
    int descriptor() const { return descriptor_; }
    // Of the line that next() gave last, from 1 on.
    uint64_t line_number() const { return line_number_; }
    // For messages.
    const std::string& name() const { return name_; }
    // Lines that are not blank; 0 when this is not known before they are read.
    uint64_t count_lines() const;

  private:
    std::string name_;
    int descriptor_ = 0;
    bool at_end_ = false;
    std::string buffer_;
    size_t position_ = 0;
    uint64_t line_number_ = 0;
};

}  // namespace tool

#endif
