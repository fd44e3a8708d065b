// SPDX-License-Identifier: Apache-2.0
#include "batch/progress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace tool {
namespace {

constexpr size_t widest_bar = 24;
constexpr size_t narrowest_bar = 6;
constexpr size_t frame_of_bar = 3;  // "[" and "] "

size_t terminal_columns() {
    winsize size{};
    const bool known = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? size.ws_col : 80;
}

std::string duration(double seconds) {
    const auto whole = static_cast<unsigned long>(std::lround(std::max(seconds, 0.0)));
    char digits[48];
    if (whole >= 3600) {
        std::snprintf(digits, sizeof digits, "%lu:%02lu:%02lu", whole / 3600, whole / 60 % 60,
                      whole % 60);
    } else {
        std::snprintf(digits, sizeof digits, "%lu:%02lu", whole / 60, whole % 60);
    }
    return digits;
}

std::string one_digit(double number) {
    char digits[48];
    std::snprintf(digits, sizeof digits, "%.1f", number);
    return digits;
}

}  // namespace

Progress::Progress(const std::string& name, uint64_t total)
    : name_(name), total_(total), on_terminal_(isatty(STDERR_FILENO) == 1), start_(Clock::now()) {}

double Progress::seconds() const {
    return std::chrono::duration<double>(Clock::now() - start_).count();
}

void Progress::clear_bar() {
    if (bar_shown_) std::fputs("\r\033[K", stderr);
    bar_shown_ = false;
}

// The bar and the counts; then failures, time left and rate as far as there is room.
std::string Progress::bar(size_t columns) const {
    const double rate = static_cast<double>(done()) / std::max(seconds(), 1e-3);
    const std::string counts =
        std::to_string(done()) + (total_ > 0 ? "/" + std::to_string(total_) : " jobs");
    const size_t least_bar = total_ > 0 ? narrowest_bar + frame_of_bar : 0;
    size_t used = counts.size() + least_bar;
    const auto if_it_fits = [&](const std::string& part) {
        if (used + part.size() > columns) return std::string();
        used += part.size();
        return part;
    };
    const std::string failures =
        if_it_fits(failed > 0 ? "  " + std::to_string(failed) + " failed" : "");
    const bool ends = total_ > done() && done() > 0;
    const std::string left = if_it_fits(
        ends ? "  " + duration(static_cast<double>(total_ - done()) / rate) + " left" : "");
    const std::string speed = if_it_fits("  " + one_digit(rate) + "/s");
    const std::string text = counts + speed + left + failures;
    if (least_bar == 0 || used > columns) return text.substr(0, columns);
    const size_t width = std::min(widest_bar, columns - text.size() - frame_of_bar);
    const auto filled = static_cast<size_t>(std::min(done(), total_) * width / total_);
    return "[" + std::string(filled, '#') + std::string(width - filled, '-') + "] " + text;
}

void Progress::draw() {
    const Clock::time_point now = Clock::now();
    if (!on_terminal_ || (bar_shown_ && now - drawn_ < std::chrono::milliseconds(100))) return;
    drawn_ = now;
    clear_bar();
    // A character in the last column would make some terminals begin a new line.
    std::fputs(bar(terminal_columns() - 1).c_str(), stderr);
    bar_shown_ = true;
}

void Progress::report(uint64_t line_number, const std::string& message) {
    clear_bar();
    std::fprintf(stderr, "imageblend: %s:%llu: %s\n", name_.c_str(),
                 static_cast<unsigned long long>(line_number), message.c_str());
}

void Progress::tell(const std::string& message) {
    clear_bar();
    std::fprintf(stderr, "imageblend: %s: %s\n", name_.c_str(), message.c_str());
}

void Progress::summarise(const std::string& rest) {
    std::string text = std::to_string(blended) + " blended";
    if (skipped > 0) text += ", " + std::to_string(skipped) + " skipped as the output exists";
    text += ", " + std::to_string(failed) + " failed, " + std::to_string(warnings) +
            (warnings == 1 ? " warning" : " warnings") + " in " + one_digit(seconds()) + " s";
    if (blended > 0) {
        text += " (" + one_digit(static_cast<double>(blended) / std::max(seconds(), 1e-3)) +
                " a second)";
    }
    if (!rest.empty()) text += "; " + rest + ": the same command goes on from here";
    tell(text);
}

}  // namespace tool
