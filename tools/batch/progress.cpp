#include "batch/progress.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace tool {
namespace {

constexpr uint64_t bar_width = 24;

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

void Progress::draw() {
    const Clock::time_point now = Clock::now();
    if (!on_terminal_ || (bar_shown_ && now - drawn_ < std::chrono::milliseconds(100))) return;
    drawn_ = now;
    const double rate = static_cast<double>(done()) / std::max(seconds(), 1e-3);
    std::string text;
    if (total_ > 0) {
        const auto filled = static_cast<size_t>(std::min(done(), total_) * bar_width / total_);
        text = "[" + std::string(filled, '#') + std::string(bar_width - filled, '-') + "] " +
               std::to_string(done()) + "/" + std::to_string(total_);
    } else {
        text = std::to_string(done()) + " jobs";
    }
    text += "  " + one_digit(rate) + "/s";
    if (total_ > done() && done() > 0) {
        text += "  " + duration(static_cast<double>(total_ - done()) / rate) + " left";
    }
    if (failed > 0) text += "  " + std::to_string(failed) + " failed";
    clear_bar();
    std::fputs(text.c_str(), stderr);
    bar_shown_ = true;
}

void Progress::report(uint64_t line_number, const std::string& message) {
    clear_bar();
    std::fprintf(stderr, "imageblend: %s:%llu: %s\n", name_.c_str(),
                 static_cast<unsigned long long>(line_number), message.c_str());
}

void Progress::summarise(bool interrupted) {
    clear_bar();
    std::string text = std::to_string(blended) + " blended";
    if (skipped > 0) text += ", " + std::to_string(skipped) + " skipped as the output exists";
    text += ", " + std::to_string(failed) + " failed in " + one_digit(seconds()) + " s";
    if (blended > 0) {
        text += " (" + one_digit(static_cast<double>(blended) / std::max(seconds(), 1e-3)) +
                " a second)";
    }
    if (interrupted) text += "; interrupted: the same command goes on from here";
    std::fprintf(stderr, "imageblend: %s: %s\n", name_.c_str(), text.c_str());
}

}  // namespace tool
