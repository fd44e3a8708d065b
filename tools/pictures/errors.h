// SPDX-License-Identifier: Apache-2.0
// Exit statuses, the error that ends a command, and warnings.
#ifndef IMAGEBLEND_TOOLS_PICTURES_ERRORS_H
#define IMAGEBLEND_TOOLS_PICTURES_ERRORS_H

#include <cstdio>
#include <stdexcept>
#include <string>

namespace tool {

// The numbers from 64 on are those of sysexits.h.
enum class Exit : int {
    success = 0,
    seams = 1,
    cannot_place = 2,
    jobs_failed = 3,
    warned = 4,
    usage = 64,
    bad_data = 65,
    no_input = 66,
    internal = 70,
    no_output = 73,
};

// Ends the command. The message names the file or the argument, and the value.
class Error : public std::runtime_error {
  public:
    Error(Exit status, const std::string& message) : std::runtime_error(message), status_(status) {}
    Exit status() const { return status_; }

  private:
    Exit status_;
};

struct WarningRules {
    bool strict = false;  // a warning is a failure
    bool quiet = false;   // none is printed
};
// Holds for all commands that follow, and for the processes that are forked.
void set_warning_rules(const WarningRules& rules);

// Kept until print_warnings, which comes after the output is in place.
void warn(const std::string& message);
// Since forget_warnings; those that are printed or silenced count too.
int warnings_given();
void forget_warnings();
void print_warnings();
// Fails if there is a warning and --strict is given. `what_failed` is "out.jpg: is not written".
void refuse_warnings(const std::string& what_failed);

// A number with three digits, for messages.
inline std::string short_text(double number) {
    char digits[32];
    std::snprintf(digits, sizeof digits, "%.3g", number);
    return digits;
}

}  // namespace tool

#endif
