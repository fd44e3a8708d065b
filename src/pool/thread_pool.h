// SPDX-License-Identifier: Apache-2.0
// The worker pool of one blend: up to four threads, a task queue and a count of completions.
//
// The pool does not count finished tasks: whoever waits calls pool_reset_done before the work that
// ends with a known number of pool_signal_done begins, and pool_wait_done for that number. The
// queue and the completion count have a lock of their own each, and no code holds both.
#ifndef IMAGEBLEND_POOL_THREAD_POOL_H
#define IMAGEBLEND_POOL_THREAD_POOL_H

#include <pthread.h>
#include <stdint.h>

enum { POOL_MAX_THREADS = 4 };

struct thread_pool;

// Start argument of one worker.
typedef struct pool_worker {
    int32_t index;
    struct thread_pool* pool;
} pool_worker;

typedef struct pool_task {
    void* (*routine)(void*);
    void* arg;  // never freed by the pool
    struct pool_task* next;
} pool_task;

typedef struct thread_pool {
    pthread_mutex_t queue_lock;  // guards queue_head, cur_queue_size and shutdown
    pthread_cond_t queue_ready;
    pthread_mutex_t pro_lock;  // guards pro_count
    pthread_cond_t pro_ready;
    pool_task* queue_head;
    int32_t shutdown;
    pthread_t* threadid;
    int32_t* thread_creatflag;  // 1 where the thread runs and must be joined
    int32_t max_thread_num;
    int32_t cur_queue_size;
    int32_t pro_count;  // completions since the last pool_reset_done
    pool_worker worker_args[POOL_MAX_THREADS];
} thread_pool;

// Creates a pool of `thread_num` threads, at most four. Returns 0 when at least one of them runs
// and -1 otherwise; *out then points at freed memory (it is left alone when not even the record
// could be allocated). Failures are printed to standard output.
int32_t pool_init(thread_pool** out, int32_t thread_num);

// Appends a task; tasks start in the order in which they were added. Always returns 0. Where no
// memory is left for the queue's record, the task runs at once on the calling thread.
int32_t pool_add_task(thread_pool* pool, void* (*routine)(void*), void* arg);

// Stops the threads and frees everything; tasks that have not started are dropped. Returns 0, or -1
// when the pool was already stopping or a thread could not be joined.
int32_t pool_destroy(thread_pool* pool);

// Body of a worker; `worker` is its pool_worker. Its return is the implicit pthread_exit of a null
// value.
void* pool_thread_routine(void* worker);

// Whether pool_destroy has begun, for tasks that would otherwise go on.
bool pool_is_stopping(const thread_pool* pool);

void pool_reset_done(thread_pool* pool);

// Reports one completion. A null pool, where a task runs without one, is left alone.
void pool_signal_done(thread_pool* pool);

// Blocks until exactly `expected` completions were reported since pool_reset_done.
void pool_wait_done(thread_pool* pool, int32_t expected);

#endif
