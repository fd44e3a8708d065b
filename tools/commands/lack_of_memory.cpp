// SPDX-License-Identifier: Apache-2.0
#include "commands/lack_of_memory.h"

#include <unistd.h>

#include <atomic>

#include "pictures/errors.h"
#include "pictures/temporary_file.h"

namespace tool {

void end_without_memory() {
    static std::atomic_flag ending = ATOMIC_FLAG_INIT;
    while (ending.test_and_set())  // another thread is about to end the process
        pause();
    remove_temporary_file();
    constexpr char message[] = "imageblend: not enough memory\n";
    const ssize_t written = write(STDERR_FILENO, message, sizeof message - 1);
    static_cast<void>(written);  // there is nobody else to tell
    _exit(static_cast<int>(Exit::internal));
}

}  // namespace tool
