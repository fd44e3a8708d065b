// SPDX-License-Identifier: Apache-2.0
#include "batch/line_reader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "pictures/errors.h"

namespace tool {
namespace {

bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

}  // namespace

LineReader::LineReader(const std::string& path, uint64_t first_line)
    : name_(path == "-" ? "standard input" : path), next_number_(first_line) {
    if (path != "-") descriptor_ = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor_ < 0) {
        throw Error(Exit::no_input, path + ": cannot be read: " + std::strerror(errno));
    }
}

LineReader::~LineReader() {
    if (descriptor_ > 0) close(descriptor_);
}

std::optional<Line> LineReader::next() {
    while (!at_end()) {
        size_t end = buffer_.find('\n', position_);
        if (end == std::string::npos && !at_end_) break;
        if (end == std::string::npos) end = buffer_.size();
        Line line{next_number_++, buffer_.substr(position_, end - position_), too_long_};
        position_ = std::min(end + 1, buffer_.size());
        too_long_ = false;
        if (line.text.size() > max_line_bytes) line.too_long = true;
        while (!line.text.empty() && is_blank(line.text.back()))
            line.text.pop_back();
        if (line.too_long) line.text.clear();
        if (line.too_long || line.text.find_first_not_of(" \t\r") != std::string::npos) return line;
    }
    return std::nullopt;
}

void LineReader::fill() {
    buffer_.erase(0, position_);
    position_ = 0;
    if (buffer_.size() > max_line_bytes) {  // next() has found no end in it
        buffer_.clear();
        too_long_ = true;
    }
    char block[65536];
    const ssize_t bytes = read(descriptor_, block, sizeof block);
    if (bytes < 0 && errno != EINTR && errno != EAGAIN) {
        throw Error(Exit::no_input, name_ + ": cannot be read: " + std::strerror(errno));
    }
    if (bytes > 0) buffer_.append(block, static_cast<size_t>(bytes));
    if (bytes == 0) at_end_ = true;
}

uint64_t LineReader::count_lines() const {
    struct stat file;
    if (fstat(descriptor_, &file) != 0 || !S_ISREG(file.st_mode)) return 0;
    uint64_t lines = 0;
    bool blank = true;
    char block[65536];
    ssize_t bytes = 0;
    for (off_t at = lseek(descriptor_, 0, SEEK_CUR);
         (bytes = pread(descriptor_, block, sizeof block, at)) > 0; at += bytes) {
        for (ssize_t i = 0; i < bytes; i++) {
            if (block[i] == '\n' && !blank) lines++;
            blank = block[i] == '\n' || (blank && is_blank(block[i]));
        }
    }
    return lines + (blank ? 0 : 1);
}

}  // namespace tool
