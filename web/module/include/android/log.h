/* SPDX-License-Identifier: Apache-2.0 */
/* Android's logging for a module that has nowhere to log to: lines are left out. */
#ifndef IMAGEBLEND_WEB_ANDROID_LOG_H
#define IMAGEBLEND_WEB_ANDROID_LOG_H

static inline __attribute__((format(printf, 3, 4))) int __android_log_print(int prio,
                                                                            const char* tag,
                                                                            const char* fmt, ...) {
    (void)prio;
    (void)tag;
    (void)fmt;
    return 0;
}

#endif
