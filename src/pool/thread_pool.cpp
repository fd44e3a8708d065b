// SPDX-License-Identifier: Apache-2.0
#include "pool/thread_pool.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static bool init_failed(const char* object, int error) {
    if (error != 0) printf("can't init pool->%s err:%d\n", object, error);
    return error != 0;
}

static bool init_locks(thread_pool* pool) {
    if (init_failed("queue_lock", pthread_mutex_init(&pool->queue_lock, NULL))) return false;
    if (init_failed("queue_ready", pthread_cond_init(&pool->queue_ready, NULL))) return false;
    if (init_failed("pro_lock", pthread_mutex_init(&pool->pro_lock, NULL))) return false;
    if (init_failed("pro_ready", pthread_cond_init(&pool->pro_ready, NULL))) return false;
    return true;
}

static bool alloc_thread_arrays(thread_pool* pool) {
    const size_t count = (size_t)(pool->max_thread_num > 0 ? pool->max_thread_num : 1);
    pool->threadid = (pthread_t*)calloc(count, sizeof(pthread_t));
    if (pool->threadid == NULL) puts("can't malloc threadid");
    pool->thread_creatflag = (int32_t*)calloc(count, sizeof(int32_t));
    if (pool->thread_creatflag == NULL) puts("can't malloc thread_creatflag");
    return pool->threadid != NULL && pool->thread_creatflag != NULL;
}

// Starts the workers and returns how many could not be started.
static int32_t start_threads(thread_pool* pool) {
    int32_t failures = 0;
    for (int32_t i = 0; i < pool->max_thread_num; i++) {
        pool->worker_args[i].index = i;
        pool->worker_args[i].pool = pool;
        const int error =
            pthread_create(&pool->threadid[i], NULL, pool_thread_routine, &pool->worker_args[i]);
        if (error != 0) {
            printf("can't create thread: %s\n", strerror(error));
            failures++;
        }
        pool->thread_creatflag[i] = error == 0;
    }
    return failures;
}

static void free_pool(thread_pool* pool) {
    free(pool->threadid);
    free(pool->thread_creatflag);
    free(pool);
}

int32_t pool_init(thread_pool** out, int32_t thread_num) {
    thread_pool* pool = (thread_pool*)calloc(1, sizeof(thread_pool));
    if (pool == NULL) {
        puts("can't alloc thread pool");
        return -1;
    }
    *out = pool;
    if (thread_num > POOL_MAX_THREADS || !init_locks(pool)) {
        free(pool);
        return -1;
    }
    pool->max_thread_num = thread_num;
    if (!alloc_thread_arrays(pool)) {
        free_pool(pool);
        return -1;
    }
    if (start_threads(pool) >= thread_num) {
        puts("all LTM thread create failed.");
        free_pool(pool);
        return -1;
    }
    return 0;
}

// Waits for a task and unlinks it; null when the pool is stopping.
static pool_task* take_task(thread_pool* pool) {
    pool_task* task = NULL;
    pthread_mutex_lock(&pool->queue_lock);
    while (pool->cur_queue_size == 0 && !pool->shutdown) {
        pthread_cond_wait(&pool->queue_ready, &pool->queue_lock);
    }
    if (!pool->shutdown) {
        task = pool->queue_head;
        pool->cur_queue_size--;
        pool->queue_head = task->next;
    }
    pthread_mutex_unlock(&pool->queue_lock);
    return task;
}

void* pool_thread_routine(void* worker) {
    thread_pool* pool = ((pool_worker*)worker)->pool;
    pool_task* task;
    while ((task = take_task(pool)) != NULL) {
        task->routine(task->arg);
        free(task);
    }
    // The same as pthread_exit(NULL), which glibc lets abort the process where it finds no memory
    // or no libgcc_s to unwind with.
    return NULL;
}

int32_t pool_add_task(thread_pool* pool, void* (*routine)(void*), void* arg) {
    pool_task* task = (pool_task*)malloc(sizeof(pool_task));
    if (task == NULL) {
        routine(arg);
        return 0;
    }
    task->routine = routine;
    task->arg = arg;
    task->next = NULL;
    pthread_mutex_lock(&pool->queue_lock);
    pool_task** link = &pool->queue_head;
    while (*link != NULL)
        link = &(*link)->next;
    *link = task;
    pool->cur_queue_size++;
    pthread_mutex_unlock(&pool->queue_lock);
    pthread_cond_signal(&pool->queue_ready);
    return 0;
}

static int32_t join_threads(thread_pool* pool) {
    int32_t status = 0;
    for (int32_t i = 0; i < pool->max_thread_num; i++) {
        if (pool->thread_creatflag[i] != 1) continue;
        const int error = pthread_join(pool->threadid[i], NULL);
        if (error != 0) {
            printf("pthread_join fail: %s , i:%d , threadid:%d\n", strerror(error), i,
                   (int)pool->threadid[i]);
            status = -1;
        }
    }
    return status;
}

bool pool_is_stopping(const thread_pool* pool) {
    return __atomic_load_n(&pool->shutdown, __ATOMIC_RELAXED) != 0;
}

int32_t pool_destroy(thread_pool* pool) {
    // Only the pool's owner writes the flag, so its own reading needs no lock.
    if (pool->shutdown) return -1;
    pthread_mutex_lock(&pool->queue_lock);
    __atomic_store_n(&pool->shutdown, 1, __ATOMIC_RELAXED);
    pthread_mutex_unlock(&pool->queue_lock);
    pthread_cond_broadcast(&pool->queue_ready);

    const int32_t status = join_threads(pool);
    while (pool->queue_head != NULL) {
        pool_task* task = pool->queue_head;
        pool->queue_head = task->next;
        free(task);
    }
    pthread_mutex_destroy(&pool->queue_lock);
    pthread_cond_destroy(&pool->queue_ready);
    pthread_mutex_destroy(&pool->pro_lock);
    pthread_cond_destroy(&pool->pro_ready);
    free_pool(pool);
    return status;
}

void pool_reset_done(thread_pool* pool) {
    pthread_mutex_lock(&pool->pro_lock);
    pool->pro_count = 0;
    pthread_mutex_unlock(&pool->pro_lock);
}

void pool_signal_done(thread_pool* pool) {
    if (pool == NULL) return;
    pthread_mutex_lock(&pool->pro_lock);
    pool->pro_count++;
    pthread_mutex_unlock(&pool->pro_lock);
    pthread_cond_signal(&pool->pro_ready);
}

void pool_wait_done(thread_pool* pool, int32_t expected) {
    pthread_mutex_lock(&pool->pro_lock);
    while (pool->pro_count != expected)
        pthread_cond_wait(&pool->pro_ready, &pool->pro_lock);
    pthread_mutex_unlock(&pool->pro_lock);
}
