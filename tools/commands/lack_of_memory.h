// SPDX-License-Identifier: Apache-2.0
// The end of a process that gets no more memory.
#ifndef IMAGEBLEND_TOOLS_COMMANDS_LACK_OF_MEMORY_H
#define IMAGEBLEND_TOOLS_COMMANDS_LACK_OF_MEMORY_H

namespace tool {

// Prints the message without allocating, removes the temporary file and ends the process.
[[noreturn]] void end_without_memory();

}  // namespace tool

#endif
