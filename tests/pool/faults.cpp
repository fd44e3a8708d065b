// SPDX-License-Identifier: Apache-2.0
#include "faults.h"

#include <pthread.h>
#include <stddef.h>

#include <array>

namespace faults {
namespace {

std::array<std::atomic<scope*>, 5> active;
std::atomic<int64_t> blocks;

std::atomic<scope*>& slot(call kind) {
    return active[static_cast<size_t>(kind)];
}

bool fails(call kind) {
    scope* current = slot(kind);
    return current != nullptr && current->next_fails();
}

void* counted(void* block) {
    if (block != nullptr) ++blocks;
    return block;
}

}  // namespace

scope::scope(call kind, std::function<bool(int)> fails) : kind_(kind), fails_(std::move(fails)) {
    slot(kind_) = this;
}

scope::~scope() {
    slot(kind_) = nullptr;
}

int64_t live_blocks() {
    return blocks;
}

}  // namespace faults

using faults::call;

// The names are the linker's: --wrap sends calls of f to __wrap_f and those of __real_f to f.
extern "C" {

void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void __real_free(void* block);
int __real_pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                          void* (*routine)(void*), void* arg);
int __real_pthread_join(pthread_t thread, void** result);
int __real_pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes);
int __real_pthread_cond_init(pthread_cond_t* condition, const pthread_condattr_t* attributes);

void* __wrap_malloc(size_t size) {
    return faults::fails(call::allocation) ? nullptr : faults::counted(__real_malloc(size));
}

void* __wrap_calloc(size_t count, size_t size) {
    return faults::fails(call::allocation) ? nullptr : faults::counted(__real_calloc(count, size));
}

void __wrap_free(void* block) {
    if (block != nullptr) --faults::blocks;
    __real_free(block);
}

int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                          void* (*routine)(void*), void* arg) {
    if (faults::fails(call::thread_create)) return faults::CODE;
    return __real_pthread_create(thread, attributes, routine, arg);
}

int __wrap_pthread_join(pthread_t thread, void** result) {
    const int error = __real_pthread_join(thread, result);
    return faults::fails(call::thread_join) ? faults::CODE : error;
}

int __wrap_pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes) {
    if (faults::fails(call::mutex_init)) return faults::CODE;
    return __real_pthread_mutex_init(mutex, attributes);
}

int __wrap_pthread_cond_init(pthread_cond_t* condition, const pthread_condattr_t* attributes) {
    if (faults::fails(call::cond_init)) return faults::CODE;
    return __real_pthread_cond_init(condition, attributes);
}

}  // extern "C"
