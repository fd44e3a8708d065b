// SPDX-License-Identifier: Apache-2.0
// Feeds bytes to the bitmap reader as a file and checks what comes back.
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "bmp/bmp_read.h"

namespace {

void require(bool condition) {
    if (!condition) abort();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // The reader's messages; libFuzzer itself writes to standard error.
    return freopen("/dev/null", "w", stdout) != nullptr ? 0 : 1;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // A file in memory whose path can be opened.
    static const int file = memfd_create("input.bmp", 0);
    require(file >= 0 && ftruncate(file, 0) == 0);
    require(pwrite(file, data, size, 0) == static_cast<ssize_t>(size));
    const std::string path = "/proc/self/fd/" + std::to_string(file);
    for (const auto routine : {bmp_read, bmp_read_mask}) {
        int32_t width = -1, height = -1;
        uint8_t* pixels = nullptr;
        uint8_t* planes[3];
        const int32_t status =
            routine(path.c_str(), &width, &height, &pixels, &planes[0], &planes[1], &planes[2]);
        for (const uint8_t* plane : planes)
            require(plane == nullptr);
        if (status == 0) {
            require(width > 0 && height > 0);
        } else {
            require(status == 1 && width == 0 && height == 0 && pixels == nullptr);
        }
        const size_t count = static_cast<size_t>(width) * static_cast<size_t>(height);
        require(count * 3 <= size);
        // The sanitizer sees a buffer that is too short, and volatile keeps the reads.
        const volatile uint8_t* const all = pixels;
        for (size_t i = 0; i < count * 4; ++i)
            static_cast<void>(all[i]);
        free(pixels);
    }
    return 0;
}
