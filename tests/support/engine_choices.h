// SPDX-License-Identifier: Apache-2.0
// Takes over what the engine chooses by the machine and the size of a blend: its row operations and
// how many threads it uses. For executables that are linked with the library's objects and with
// --wrap for the functions (wrap_engine_choices in CMake). Not while a blend is running.
#ifndef IMAGEBLEND_TESTS_ENGINE_CHOICES_H
#define IMAGEBLEND_TESTS_ENGINE_CHOICES_H

#include <stdint.h>

namespace support {

// Four workers, and pieces as small as can be, from work of this many pixels up; a negative number
// restores the library's own choice.
void use_threads_from(int64_t pixels);

// The plain row operations, or the library's own choice.
void force_plain_rows(bool force);

}  // namespace support

#endif  // IMAGEBLEND_TESTS_ENGINE_CHOICES_H
