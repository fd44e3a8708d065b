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

LineReader::LineReader(const std::string& path) : name_(path == "-" ? "standard input" : path) {
    if (path != "-") descriptor_ = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor_ < 0) {
        throw Error(Exit::no_input, path + ": cannot be read: " + std::strerror(errno));
    }
}

LineReader::~LineReader() {
    if (descriptor_ > 0) close(descriptor_);
}

std::optional<std::string> LineReader::next() {
    while (!at_end()) {
        size_t end = buffer_.find('\n', position_);
        if (end == std::string::npos && !at_end_) break;
        if (end == std::string::npos) end = buffer_.size();
        std::string line = buffer_.substr(position_, end - position_);
        position_ = std::min(end + 1, buffer_.size());
        line_number_++;
        while (!line.empty() && is_blank(line.back()))
            line.pop_back();
        if (line.find_first_not_of(" \t\r") != std::string::npos) return line;
    }
    return std::nullopt;
}

bool LineReader::fill() {
    buffer_.erase(0, position_);
    position_ = 0;
    char block[65536];
    const ssize_t bytes = read(descriptor_, block, sizeof block);
    if (bytes < 0 && errno != EINTR && errno != EAGAIN) {
        throw Error(Exit::no_input, name_ + ": cannot be read: " + std::strerror(errno));
    }
    if (bytes > 0) buffer_.append(block, static_cast<size_t>(bytes));
    if (bytes == 0) at_end_ = true;
    return !at_end_;
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
