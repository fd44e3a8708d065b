// SPDX-License-Identifier: Apache-2.0
// Stands before the C library's allocator. GLib and some codecs crash when a small allocation
// fails, GLib because it allocates to report it; the process ends in order instead. Those who ask
// for much, such as the pixels of a picture, get the null pointer that they expect.
#include <cerrno>
#include <cstddef>

#include "commands/lack_of_memory.h"

namespace {

constexpr size_t smallest_large_size = 1 << 20;

void* checked(void* memory, size_t size) {
    if (!memory && size > 0 && size < smallest_large_size) tool::end_without_memory();
    return memory;
}

}  // namespace

extern "C" {

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);
void* __libc_memalign(size_t alignment, size_t size);

void* malloc(size_t size) {
    return checked(__libc_malloc(size), size);
}

void* calloc(size_t count, size_t size) {
    size_t bytes = 0;
    if (__builtin_mul_overflow(count, size, &bytes)) bytes = smallest_large_size;
    return checked(__libc_calloc(count, size), bytes);
}

void* realloc(void* memory, size_t size) {
    return checked(__libc_realloc(memory, size), size);
}

int posix_memalign(void** memory, size_t alignment, size_t size) {
    if (alignment == 0 || alignment % sizeof(void*) != 0 || (alignment & (alignment - 1)) != 0)
        return EINVAL;
    void* const aligned = checked(__libc_memalign(alignment, size), size);
    if (!aligned) return ENOMEM;
    *memory = aligned;
    return 0;
}

}  // extern "C"
