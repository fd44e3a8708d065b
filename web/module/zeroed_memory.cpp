// SPDX-License-Identifier: Apache-2.0
// calloc for the module. The one in its library brings a memset along, which is not the one
// instruction that there is.
#include <stdlib.h>
#include <string.h>

extern "C" void* __wrap_calloc(size_t count, size_t size) {
    size_t bytes;
    if (__builtin_mul_overflow(count, size, &bytes)) return NULL;
    void* memory = malloc(bytes);
    if (memory != NULL) memset(memory, 0, bytes);
    return memory;
}
