/* SPDX-License-Identifier: Apache-2.0 */
/* The types of threads, which records may hold; a module of one thread calls none of the rest. */
#ifndef IMAGEBLEND_WEB_PTHREAD_H
#define IMAGEBLEND_WEB_PTHREAD_H

#include <sys/types.h>

#endif
