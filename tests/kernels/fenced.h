// A buffer between two inaccessible pages: reads beyond its ends fault without a sanitizer too.
#ifndef IMAGEBLEND_TESTS_KERNELS_FENCED_H
#define IMAGEBLEND_TESTS_KERNELS_FENCED_H

#include <stddef.h>
#include <stdint.h>

#include "naive.h"

namespace naive {

enum class side { start, end };

class fenced {
  public:
    explicit fenced(size_t capacity);
    ~fenced();
    fenced(const fenced&) = delete;
    fenced& operator=(const fenced&) = delete;

    // Puts `content` against the page before (start) or behind (end) the buffer, and a pattern into
    // the rest of the buffer.
    uint8_t* place(const bytes& content, side at);

    bytes content() const;
    bool intact() const;  // the pattern is unchanged

  private:
    uint8_t* map_ = nullptr;
    uint8_t* data_ = nullptr;
    size_t page_ = 0;
    size_t capacity_ = 0;
    size_t begin_ = 0;
    size_t size_ = 0;
};

}  // namespace naive

#endif  // IMAGEBLEND_TESTS_KERNELS_FENCED_H
