// SPDX-License-Identifier: Apache-2.0
// Runs the library's functions on a scene and holds the outcome against the model.
#ifndef IMAGEBLEND_TESTS_COMPARE_H
#define IMAGEBLEND_TESTS_COMPARE_H

#include <gtest/gtest.h>

#include <ostream>

#include "library_calls.h"
#include "model/model.h"

namespace model {

// How GoogleTest prints a line.
inline void PrintTo(const log_line& line, std::ostream* out) {
    *out << "\n    " << line.priority << " " << ::testing::PrintToString(line.text);
}

}  // namespace model

namespace support {

// While it lives, a leak sanitizer looks away from what this thread allocates.
class without_leak_check {
  public:
    explicit without_leak_check(bool really = true);
    ~without_leak_check();
    without_leak_check(const without_leak_check&) = delete;
    without_leak_check& operator=(const without_leak_check&) = delete;

  private:
    bool disabled_;
};

// Each makes one call and one model call and compares all that the caller can see.
::testing::AssertionResult blend_matches(const scene& s, aliasing alias = aliasing::none);
::testing::AssertionResult cutout_matches(const scene& s);
::testing::AssertionResult verify_matches(const scene& s);
::testing::AssertionResult size_matches(const model::frame& mask);

::testing::AssertionResult same_log(const model::log_lines& expected,
                                    const model::log_lines& actual);

// Bytes of colour pixels; the message names the first pixel that differs.
::testing::AssertionResult same_pixels(const model::bytes& expected, const model::bytes& actual,
                                       int32_t width);

}  // namespace support

#endif  // IMAGEBLEND_TESTS_COMPARE_H
