// SPDX-License-Identifier: Apache-2.0
#include "guarded_bytes.h"

#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>

namespace support {
namespace {

uint8_t pattern(size_t index) {
    return static_cast<uint8_t>(0xA5 ^ (index * 29));
}

}  // namespace

guarded_bytes::guarded_bytes(const model::bytes& content, size_t before, size_t after, side at)
    : before_(before), size_(content.size()), total_(before + content.size() + after) {
    const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t inner = (total_ + page - 1) / page * page;
    mapped_ = inner + 2 * page;
    map_ = mmap(nullptr, mapped_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (map_ == MAP_FAILED) abort();
    uint8_t* const first = static_cast<uint8_t*>(map_) + page;
    if (inner > 0 && mprotect(first, inner, PROT_READ | PROT_WRITE) != 0) abort();
    storage_ = at == side::start ? first : first + (inner - total_);
    for (size_t i = 0; i < total_; ++i)
        storage_[i] = pattern(i);
    std::copy(content.begin(), content.end(), data());
}

guarded_bytes::~guarded_bytes() {
    munmap(map_, mapped_);
}

bool guarded_bytes::intact() const {
    for (size_t i = 0; i < total_; ++i) {
        const bool guard = i < before_ || i >= before_ + size_;
        if (guard && storage_[i] != pattern(i)) return false;
    }
    return true;
}

bool guarded_bytes::holds(const model::bytes& expected) const {
    return intact() && content() == expected;
}

}  // namespace support
