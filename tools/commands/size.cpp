// SPDX-License-Identifier: Apache-2.0
#include <cstdio>

#include "commands/commands.h"

namespace tool {

Exit run_size(const ObjectArguments& arguments) {
    ObjectArguments chosen = arguments;
    if (chosen.mask.empty() && !picture_has_alpha(chosen.source)) chosen.mask = chosen.source;
    const Object object = load_object(chosen, Wanted::mask);
    const Size size = find_box_size(object.mask);
    std::printf("%d %d\n", size.width, size.height);
    return Exit::success;
}

}  // namespace tool
