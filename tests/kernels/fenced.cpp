#include "fenced.h"

#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>

namespace naive {
namespace {

enum { PATTERN = 0x3B };

}  // namespace

fenced::fenced(size_t capacity) : page_(static_cast<size_t>(sysconf(_SC_PAGESIZE))) {
    capacity_ = (capacity + page_ - 1) / page_ * page_;
    void* map = mmap(nullptr, capacity_ + 2 * page_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (map == MAP_FAILED) abort();
    map_ = static_cast<uint8_t*>(map);
    data_ = map_ + page_;
    if (mprotect(data_, capacity_, PROT_READ | PROT_WRITE) != 0) abort();
}

fenced::~fenced() {
    munmap(map_, capacity_ + 2 * page_);
}

uint8_t* fenced::place(const bytes& content, side at) {
    if (content.size() > capacity_) abort();
    size_ = content.size();
    begin_ = at == side::start ? 0 : capacity_ - size_;
    memset(data_, PATTERN, capacity_);
    std::copy(content.begin(), content.end(), data_ + begin_);
    return data_ + begin_;
}

bytes fenced::content() const {
    return bytes(data_ + begin_, data_ + begin_ + size_);
}

bool fenced::intact() const {
    const auto untouched = [](uint8_t value) { return value == PATTERN; };
    return std::all_of(data_, data_ + begin_, untouched) &&
           std::all_of(data_ + begin_ + size_, data_ + capacity_, untouched);
}

}  // namespace naive
