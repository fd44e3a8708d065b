// SPDX-License-Identifier: Apache-2.0
// What surrounds a command: the start of libvips, and errors turned into messages and statuses.
#ifndef IMAGEBLEND_TOOLS_COMMANDS_GUARD_H
#define IMAGEBLEND_TOOLS_COMMANDS_GUARD_H

#include <functional>
#include <string>

#include "pictures/errors.h"

namespace tool {

// Prints the message on standard error.
Exit complain(Exit status, const std::string& message);

// Runs a command; an error that it throws is printed.
Exit run_guarded(const std::function<Exit()>& command);

// False after a message.
bool start_vips();

}  // namespace tool

#endif
