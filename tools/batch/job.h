// SPDX-License-Identifier: Apache-2.0
// One line of a job file: a JSON object whose fields are the arguments of the command blend.
#ifndef IMAGEBLEND_TOOLS_BATCH_JOB_H
#define IMAGEBLEND_TOOLS_BATCH_JOB_H

#include <string>

#include "commands/commands.h"

namespace tool {

// Fails with a message that begins with the field.
BlendJob parse_job(const std::string& line);

}  // namespace tool

#endif
