# SPDX-License-Identifier: Apache-2.0
# Modules for the tests in web/tests, which find them in the folder of the build.

# add_test_module(NAME EXPORTS... SOURCES...): NAME.wasm.
function(add_test_module name exports)
    add_executable(${name} ${ARGN})
    list(TRANSFORM exports PREPEND -Wl,--export=)
    target_link_options(${name} PRIVATE -O0 -mexec-model=reactor ${exports})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
endfunction()

set(tests ${PROJECT_SOURCE_DIR}/tests)

# The library with its row operations open to a driver, optimized like the module itself.
add_test_module(rows
    "malloc;vorn_imageBlending;use_plain_rows;reduce_row_c3;reduce_row_c1;expand_row_c3;reduce_column;merge_rows_of;mix_rows;resample_row_c3;pack_rgb;unpack_rgb"
    ${PROJECT_SOURCE_DIR}/web/tests/open_rows.cpp)
target_link_libraries(rows PRIVATE imageblend imageblend_flags)
target_include_directories(rows PRIVATE ${PROJECT_SOURCE_DIR}/src)
target_link_options(rows PRIVATE -Wl,--stack-first -Wl,--wrap=_Z14active_row_opsv)
set_target_properties(rows PROPERTIES LINKER_LANGUAGE C)
add_custom_command(TARGET rows POST_BUILD VERBATIM
    COMMAND ${WASM_OPT} ${wasm_opt_flags} $<TARGET_FILE:rows> -o $<TARGET_FILE:rows>)

# The calls of tests/hashes. This one has the C++ library, and imports from its driver.
add_test_module(calls "call_line"
    ${PROJECT_SOURCE_DIR}/web/tests/module_calls.cpp
    ${tests}/hashes/whole_calls.cpp
    ${tests}/model/calls.cpp
    ${tests}/model/geometry.cpp
    ${tests}/model/pyramid.cpp
    ${tests}/model/resample.cpp
    ${tests}/model/verify.cpp
    ${tests}/support/random_scene.cpp
    ${tests}/support/scene.cpp)
target_include_directories(calls PRIVATE ${tests} ${PROJECT_SOURCE_DIR}/include)
# Without the warnings of imageblend_flags: the tests count with 64 bits where pointers have 32.
target_compile_options(calls PRIVATE -Wall -Wextra -ffp-contract=off -fno-fast-math -fno-exceptions)
