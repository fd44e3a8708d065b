// SPDX-License-Identifier: Apache-2.0
#include "pictures/errors.h"

#include <vector>

namespace tool {
namespace {

WarningRules rules;
std::vector<std::string> warnings;
size_t printed = 0;

}  // namespace

void set_warning_rules(const WarningRules& given) {
    rules = given;
}

void warn(const std::string& message) {
    warnings.push_back(message);
}

int warnings_given() {
    return static_cast<int>(warnings.size());
}

void forget_warnings() {
    warnings.clear();
    printed = 0;
}

void print_warnings() {
    for (; printed < warnings.size(); printed++) {
        if (!rules.quiet)
            std::fprintf(stderr, "imageblend: warning: %s\n", warnings[printed].c_str());
    }
}

void refuse_warnings(const std::string& what_failed) {
    if (!rules.strict || warnings.empty()) return;
    const std::string count =
        warnings.size() == 1 ? "a warning" : std::to_string(warnings.size()) + " warnings";
    throw Error(Exit::warned, what_failed + ": " + count + " under --strict");
}

}  // namespace tool
