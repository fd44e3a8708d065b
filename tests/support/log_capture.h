// SPDX-License-Identifier: Apache-2.0
// Catches the library's log lines. The support library defines __android_log_print, which a program
// may have to receive them; towards the shared library the executable must export it.
#ifndef IMAGEBLEND_TESTS_LOG_CAPTURE_H
#define IMAGEBLEND_TESTS_LOG_CAPTURE_H

#include "model/model.h"

namespace support {

// Forgets the lines caught so far.
void clear_log();

// The lines since the last clear_log or take_log, in order and from every thread, as they were
// formatted. A line under a foreign tag has that tag in front of its text.
model::log_lines take_log();

// The lines without what differs from build to build and run to run: the version line ends after
// "build time:" and a printed pointer reads "<ptr>".
model::log_lines normalised(model::log_lines lines);

}  // namespace support

#endif  // IMAGEBLEND_TESTS_LOG_CAPTURE_H
