/* SPDX-License-Identifier: Apache-2.0 */
/*
 * android/log.h - the part of Android's logging interface that libimageblend and its command line
 * use, for platforms that have no Android. It declares the same names with the same meaning, so
 * code written against it builds unchanged against Android's own header.
 *
 * The stand-in is linked into the library and into the command line. Its symbols have names of its
 * own, so that it hides no function of the program and is hidden by none. A line goes
 *
 *   to the logger that was set in this very copy of the stand-in, if any;
 *   else to the function __android_log_print of the program or of a library it has loaded, if any;
 *   else to standard error, when its priority reaches the one that the environment variable
 *   IMAGEBLEND_LOG names: verbose, debug, info, warn, error, fatal, or the number 2 to 7.
 */
#ifndef IMAGEBLEND_STAND_IN_ANDROID_LOG_H
#define IMAGEBLEND_STAND_IN_ANDROID_LOG_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef enum android_LogPriority {
    ANDROID_LOG_UNKNOWN = 0,
    ANDROID_LOG_DEFAULT,
    ANDROID_LOG_VERBOSE,
    ANDROID_LOG_DEBUG,
    ANDROID_LOG_INFO,
    ANDROID_LOG_WARN,
    ANDROID_LOG_ERROR,
    ANDROID_LOG_FATAL,
    ANDROID_LOG_SILENT
} android_LogPriority;

/* Formats a line as printf does, up to 1023 bytes, and logs it under `tag` at `prio`. Returns 1
 * when the line was printed or handed to a logger, 0 when its priority was too low. Safe on any
 * thread. */
int __android_log_print(int prio, const char* tag, const char* fmt,
                        ...) __asm__("imageblend_log_print") __attribute__((format(printf, 3, 4)));

/* One formatted line, as a logger receives it; valid during the call only. */
struct __android_log_message {
    size_t struct_size;
    int32_t buffer_id;
    int32_t priority;
    const char* tag;
    const char* file;
    uint32_t line;
    const char* message;
};

typedef void (*__android_logger_function)(const struct __android_log_message* message);

/* Hands every later line of any priority to `logger`; null takes it away. The logger runs on the
 * thread that logs. */
void __android_log_set_logger(__android_logger_function logger) __asm__(
    "imageblend_log_set_logger");

#ifdef __cplusplus
}
#endif

#endif /* IMAGEBLEND_STAND_IN_ANDROID_LOG_H */
