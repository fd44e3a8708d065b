/* Runs the library's functions on a scene and holds the outcome against the model. */
#ifndef IMAGEBLEND_TESTS_COMPARE_H
#define IMAGEBLEND_TESTS_COMPARE_H

#include <gtest/gtest.h>

#include "model/model.h"
#include "scene.h"

namespace support {

/* Which buffer the output shares, if any. With `both` the icon is the destination's buffer too; the
 * two pictures of the scene must then be equal. */
enum class aliasing { none, destination, icon, both };

struct blend_outcome {
    int32_t status = 0;
    model::log_lines log; /* normalised */
    model::bytes before;  /* the output's bytes before the call */
    model::bytes output;
    bool inputs_kept = true; /* no input byte changed, save those that the output shares */
    bool guards_kept = true; /* nothing was written beside a buffer or into the output's record */
};
blend_outcome run_blend(const scene& s, aliasing alias = aliasing::none);

struct cutout_outcome {
    int32_t status = 0;
    model::log_lines log;
    int32_t width = 0;
    int32_t height = 0;
    model::bytes pixels;
    bool guards_kept = true;
};
/* The icon's buffer has exactly the size that the mask asks for. */
cutout_outcome run_cutout(const scene& s);

struct verify_outcome {
    int32_t status = 0;
    model::log_lines log;
};
verify_outcome run_verify(const scene& s);

/* Each makes one call and one model call and compares all that the caller can see. A failed blend
 * may have left its output alone or copied the destination into it. */
::testing::AssertionResult blend_matches(const scene& s, aliasing alias = aliasing::none);
::testing::AssertionResult cutout_matches(const scene& s);
::testing::AssertionResult verify_matches(const scene& s);
::testing::AssertionResult size_matches(const model::frame& mask);

::testing::AssertionResult same_log(const model::log_lines& expected,
                                    const model::log_lines& actual);

/* Bytes of colour pixels; the message names the first pixel that differs and counts the rest. */
::testing::AssertionResult same_pixels(const model::bytes& expected, const model::bytes& actual,
                                       int32_t width);

}  // namespace support

#endif  // IMAGEBLEND_TESTS_COMPARE_H
