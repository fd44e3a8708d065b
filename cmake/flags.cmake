# SPDX-License-Identifier: Apache-2.0
# Compiler options that all of the project's targets share.

# Strict warnings, and the promise that float expressions are evaluated as written.
add_library(imageblend_flags INTERFACE)
target_compile_options(imageblend_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
    -ffp-contract=off -fno-fast-math
    $<$<BOOL:${IMAGEBLEND_WARNINGS_AS_ERRORS}>:-Werror>)
