/* SPDX-License-Identifier: Apache-2.0 */
/*
 * POSIX threads for a module of one thread. Its locks are always free, as nobody else takes them.
 * No thread can be started, so there is nobody to wake, to wait for or to join.
 */
#ifndef IMAGEBLEND_WEB_PTHREAD_H
#define IMAGEBLEND_WEB_PTHREAD_H

#include <errno.h>
#include <stdlib.h>
#include <sys/types.h>

static inline int pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                                 void* (*routine)(void*), void* argument) {
    (void)thread;
    (void)attributes;
    (void)routine;
    (void)argument;
    return EAGAIN;
}

static inline int pthread_join(pthread_t thread, void** value) {
    (void)thread;
    (void)value;
    return ESRCH;
}

static inline int pthread_mutex_init(pthread_mutex_t* lock, const pthread_mutexattr_t* attributes) {
    (void)lock;
    (void)attributes;
    return 0;
}

static inline int pthread_mutex_destroy(pthread_mutex_t* lock) {
    (void)lock;
    return 0;
}

static inline int pthread_mutex_lock(pthread_mutex_t* lock) {
    (void)lock;
    return 0;
}

static inline int pthread_mutex_unlock(pthread_mutex_t* lock) {
    (void)lock;
    return 0;
}

static inline int pthread_cond_init(pthread_cond_t* condition,
                                    const pthread_condattr_t* attributes) {
    (void)condition;
    (void)attributes;
    return 0;
}

static inline int pthread_cond_destroy(pthread_cond_t* condition) {
    (void)condition;
    return 0;
}

static inline int pthread_cond_signal(pthread_cond_t* condition) {
    (void)condition;
    return 0;
}

static inline int pthread_cond_broadcast(pthread_cond_t* condition) {
    (void)condition;
    return 0;
}

/* Would never return: nobody is there to signal. */
static inline int pthread_cond_wait(pthread_cond_t* condition, pthread_mutex_t* lock) {
    (void)condition;
    (void)lock;
    abort();
}

#endif
