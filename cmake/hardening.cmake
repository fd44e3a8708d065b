# SPDX-License-Identifier: Apache-2.0
# How the project's binaries are made safe and reproducible.

option(IMAGEBLEND_SEPARATE_SYMBOLS "Move debug symbols into files of their own" OFF)

# No file names the folder of the build. The build id covers the debug symbols too.
target_compile_options(imageblend_flags INTERFACE
    -ffile-prefix-map=${PROJECT_BINARY_DIR}=build -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
# What follows is for machine code. A module of WebAssembly cannot reach its own code or stack
# addresses, and everything in it is relative.
if(IMAGEBLEND_BUILD_WEB)
    return()
endif()

# Position-independent executables.
if(PROJECT_IS_TOP_LEVEL)
    include(CheckPIESupported)
    check_pie_supported()
endif()
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

target_compile_options(imageblend_flags INTERFACE -fstack-protector-strong)
target_link_options(imageblend_flags INTERFACE -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "aarch64|arm64")
    target_compile_options(imageblend_flags INTERFACE -mbranch-protection=standard)
endif()
# Checked copies need the optimizer; the NDK brings its own level, a sanitizer its own checks.
set(fortify_level 2)
if(CMAKE_C_COMPILER_ID STREQUAL "GNU" AND CMAKE_C_COMPILER_VERSION VERSION_GREATER_EQUAL 12)
    set(fortify_level 3)
endif()
if(NOT ANDROID AND NOT IMAGEBLEND_SANITIZER_BUILD)
    target_compile_options(imageblend_flags INTERFACE
        $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE>
        $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-D_FORTIFY_SOURCE=${fortify_level}>)
endif()

if(IMAGEBLEND_SEPARATE_SYMBOLS)
    target_compile_options(imageblend_flags INTERFACE -g)
endif()

# Android and 64-bit Arm have pages of up to 16 KB, and such files serve systems with smaller ones too.
# Elsewhere pages are of 4 KB, and the file is smaller.
set(largest_page 16384)
if(NOT ANDROID AND CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
    set(largest_page 4096)
endif()

function(harden_shared_library target)
    target_link_options(${target} PRIVATE
        -Wl,-z,max-page-size=${largest_page} -Wl,-z,noseparate-code -Wl,-z,relro -Wl,-z,now
        -Wl,-z,noexecstack -Wl,--as-needed -Wl,--build-id=sha1
        # A sanitizer's own symbols come from the executable.
        $<$<NOT:$<BOOL:${IMAGEBLEND_SANITIZER_BUILD}>>:-Wl,--no-undefined>)
    if(IMAGEBLEND_SEPARATE_SYMBOLS)
        set(name $<TARGET_FILE_NAME:${target}>)
        add_custom_command(TARGET ${target} POST_BUILD VERBATIM
            COMMAND ${CMAKE_OBJCOPY} --only-keep-debug ${name} ${name}.debug
            COMMAND ${CMAKE_STRIP} --strip-unneeded ${name}
            COMMAND ${CMAKE_OBJCOPY} --add-gnu-debuglink=${name}.debug ${name}
            WORKING_DIRECTORY $<TARGET_FILE_DIR:${target}>)
    endif()
endfunction()

# The folders that the loader searches are the same in the build and when installed: CMake would fill
# a shorter list up with empty ones, which stand for the current folder.
function(search_own_folder target)
    if(ANDROID)
        # The system finds an app's libraries by itself.
        set_target_properties(${target} PROPERTIES SKIP_BUILD_RPATH ON)
    else()
        set_target_properties(${target} PROPERTIES
            BUILD_WITH_INSTALL_RPATH ON INSTALL_RPATH "$ORIGIN")
    endif()
endfunction()
