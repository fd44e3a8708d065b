// SPDX-License-Identifier: Apache-2.0
// What a batch tells on standard error: a bar on a terminal, messages, and the summary.
#ifndef IMAGEBLEND_TOOLS_BATCH_PROGRESS_H
#define IMAGEBLEND_TOOLS_BATCH_PROGRESS_H

#include <chrono>
#include <cstdint>
#include <string>

namespace tool {

class Progress {
  public:
    // A total of 0 is not known.
    Progress(const std::string& name, uint64_t total);

    uint64_t blended = 0, skipped = 0, failed = 0, warnings = 0;

    bool on_terminal() const { return on_terminal_; }
    // Draws the bar on a terminal, not more often than ten times a second.
    void draw();
    // Prints "imageblend: NAME:LINE: " and the message, above the bar.
    void report(uint64_t line_number, const std::string& message);
    // Prints "imageblend: NAME: " and the message, above the bar.
    void tell(const std::string& message);
    // `rest` says why jobs are left, or nothing.
    void summarise(const std::string& rest);

  private:
    using Clock = std::chrono::steady_clock;
    uint64_t done() const { return blended + skipped + failed; }
    double seconds() const;
    std::string bar(size_t columns) const;
    void clear_bar();

    std::string name_;
    uint64_t total_;
    bool on_terminal_;
    bool bar_shown_ = false;
    Clock::time_point start_;
    Clock::time_point drawn_;
};

}  // namespace tool

#endif
