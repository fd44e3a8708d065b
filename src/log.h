// SPDX-License-Identifier: Apache-2.0
// Diagnostics of the library: one line of the Android log under the library's tag.
#ifndef IMAGEBLEND_LOG_H
#define IMAGEBLEND_LOG_H

#include <android/log.h>

enum { LOG_DEBUG = 3, LOG_INFO = 4, LOG_WARN = 5, LOG_ERROR = 6 };

#define LOG_LINE(priority, ...) \
    ((void)__android_log_print((priority), "IMAGE_BLENDING", __VA_ARGS__))

#endif
