// The stand-in for Android's logging: see android/log.h.
#include <android/log.h>
#include <stdarg.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static _Atomic(__android_logger_function) current_logger;

// The lowest priority to print; above every priority when the variable names none.
static int lowest_printed(void) {
    static const char* const names[] = {"",     "",     "verbose", "debug",
                                        "info", "warn", "error",   "fatal"};
    const char* value = getenv("IMAGEBLEND_LOG");
    if (value == NULL || value[0] == '\0') return ANDROID_LOG_SILENT;
    for (int priority = ANDROID_LOG_VERBOSE; priority <= ANDROID_LOG_FATAL; priority++) {
        if (strcmp(value, names[priority]) == 0) return priority;
    }
    if (value[0] >= '2' && value[0] <= '7' && value[1] == '\0') return value[0] - '0';
    return ANDROID_LOG_SILENT;
}

static void print_line(int priority, const char* tag, const char* message) {
    static const char letters[] = "??VDIWEF";
    const char letter = priority >= 0 && priority <= ANDROID_LOG_FATAL ? letters[priority] : '?';
    size_t length = strlen(message);
    while (length > 0 && message[length - 1] == '\n')
        length--;
    fprintf(stderr, "%c %s: %.*s\n", letter, tag, (int)length, message);
}

int __android_log_print(int prio, const char* tag, const char* fmt, ...) {
    const __android_logger_function logger = atomic_load(&current_logger);
    if (logger == NULL && prio < lowest_printed()) return 0;
    char message[1024];
    va_list arguments;
    va_start(arguments, fmt);
    vsnprintf(message, sizeof message, fmt, arguments);
    va_end(arguments);
    if (logger == NULL) {
        print_line(prio, tag, message);
    } else {
        const struct __android_log_message line = {
            sizeof(struct __android_log_message), 0, prio, tag, NULL, 0, message};
        logger(&line);
    }
    return 1;
}

void __android_log_set_logger(__android_logger_function logger) {
    atomic_store(&current_logger, logger);
}
