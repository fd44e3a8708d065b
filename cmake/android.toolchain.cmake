# SPDX-License-Identifier: Apache-2.0
# The NDK's toolchain, found through ANDROID_NDK_HOME.
set(ndk_toolchain $ENV{ANDROID_NDK_HOME}/build/cmake/android.toolchain.cmake)
if(NOT EXISTS ${ndk_toolchain})
    message(FATAL_ERROR "ANDROID_NDK_HOME is \"$ENV{ANDROID_NDK_HOME}\", must name the folder of "
                        "an Android NDK, r26 or newer")
endif()
include(${ndk_toolchain})
