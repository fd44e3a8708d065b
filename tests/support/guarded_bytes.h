// SPDX-License-Identifier: Apache-2.0
// A byte buffer at any alignment, with a pattern before and after it that must survive a call.
#ifndef IMAGEBLEND_TESTS_GUARDED_BYTES_H
#define IMAGEBLEND_TESTS_GUARDED_BYTES_H

#include <stddef.h>
#include <stdint.h>

#include "model/model.h"

namespace support {

class guarded_bytes {
  public:
    // `before` bytes of pattern, the content, `after` bytes of pattern, and then a page that cannot
    // be touched: with no byte after it a read behind the content is a crash. There is such a page
    // before the buffer's first page too, which with side::start the pattern follows at once.
    enum class side { start, end };
    guarded_bytes(const model::bytes& content, size_t before, size_t after, side at = side::end);
    ~guarded_bytes();
    guarded_bytes(const guarded_bytes&) = delete;
    guarded_bytes& operator=(const guarded_bytes&) = delete;

    uint8_t* data() { return storage_ + before_; }
    model::bytes content() const {
        return model::bytes(storage_ + before_, storage_ + before_ + size_);
    }
    bool intact() const;
    bool holds(const model::bytes& expected) const;  // and is intact

  private:
    size_t before_;
    size_t size_;
    size_t total_;
    size_t mapped_ = 0;
    void* map_ = nullptr;
    uint8_t* storage_ = nullptr;
};

}  // namespace support

#endif  // IMAGEBLEND_TESTS_GUARDED_BYTES_H
