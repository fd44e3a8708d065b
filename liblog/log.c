/* SPDX-License-Identifier: Apache-2.0 */
// The stand-in for Android's logging: see android/log.h.
#define _POSIX_C_SOURCE 200809L
#include <android/log.h>
#include <stdarg.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

static _Atomic(__android_logger_function) current_logger;

// The program's own function of that name; null when it has none.
extern int print_of_program(int prio, const char* tag, const char* fmt,
                            ...) __asm__("__android_log_print")
    __attribute__((weak, format(printf, 3, 4)));

// The lowest priority to print; above every priority when the variable names none.
static int lowest_printed(void) {
    static const char names[][8] = {"verbose", "debug", "info", "warn", "error", "fatal"};
    const char* value = getenv("IMAGEBLEND_LOG");
    if (value == NULL) return ANDROID_LOG_SILENT;
    for (int i = 0; i < 6; i++) {
        if (strcmp(value, names[i]) == 0) return ANDROID_LOG_VERBOSE + i;
    }
    if (value[0] >= '2' && value[0] <= '7' && value[1] == '\0') return value[0] - '0';
    return ANDROID_LOG_SILENT;
}

// Prints a line of `length` bytes, without the ends of line that it brings.
static void print_line(int priority, const char* tag, const char* message, int length) {
    const char letter = priority >= 0 && priority <= ANDROID_LOG_FATAL ? "??VDIWEF"[priority] : '?';
    while (length > 0 && message[length - 1] == '\n')
        length--;
    dprintf(STDERR_FILENO, "%c %s: %.*s\n", letter, tag, length, message);
}

int __android_log_print(int prio, const char* tag, const char* fmt, ...) {
    const __android_logger_function logger = atomic_load(&current_logger);
    if (logger == NULL && print_of_program == NULL && prio < lowest_printed()) return 0;
    char message[1024];
    va_list arguments;
    va_start(arguments, fmt);
    int length = vsnprintf(message, sizeof message, fmt, arguments);
    va_end(arguments);
    if (length >= (int)sizeof message) length = (int)sizeof message - 1;
    if (logger != NULL) {
        const struct __android_log_message line = {
            sizeof(struct __android_log_message), 0, prio, tag, NULL, 0, message};
        logger(&line);
    } else if (print_of_program != NULL) {
        return print_of_program(prio, tag, "%s", message);
    } else {
        print_line(prio, tag, message, length);
    }
    return 1;
}

void __android_log_set_logger(__android_logger_function logger) {
    atomic_store(&current_logger, logger);
}
