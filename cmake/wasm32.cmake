# SPDX-License-Identifier: Apache-2.0
# WebAssembly with Debian's clang and wasi-libc, whose allocator and mathematics need no system.
set(CMAKE_SYSTEM_NAME Generic)
set(CMAKE_SYSTEM_PROCESSOR wasm32)
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET wasm32-wasi)
set(CMAKE_CXX_COMPILER_TARGET wasm32-wasi)
# No program of C++ can be linked, as its library is not there; nothing here uses it.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_EXECUTABLE_SUFFIX_C .wasm)
# No program of C++ can be linked, as its library is not there; nothing here uses it.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_EXECUTABLE_SUFFIX_CXX .wasm)

# What browsers have had since 2023.
set(features "-msimd128 -mbulk-memory -mnontrapping-fptoint -msign-ext")
set(CMAKE_C_FLAGS_INIT "${features}")
set(CMAKE_CXX_FLAGS_INIT "${features}")

set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
