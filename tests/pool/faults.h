// SPDX-License-Identifier: Apache-2.0
// Makes chosen calls of the C library fail and counts blocks of memory.
//
// internal_tests is linked so that the calls that its objects make, the library's among them, go
// through here; those of shared libraries do not. Everything else is forwarded.
#ifndef IMAGEBLEND_TESTS_POOL_FAULTS_H
#define IMAGEBLEND_TESTS_POOL_FAULTS_H

#include <errno.h>
#include <stdint.h>

#include <atomic>
#include <functional>
#include <utility>

namespace faults {

enum class call { allocation, thread_create, thread_join, mutex_init, cond_init };

// What a failing call returns; a failing allocation is a null pointer. A failing join has joined.
enum { CODE = EAGAIN };

// While it lives, calls of one kind are numbered from 0 on, and those fail for which `fails` is
// true. One at a time for each kind.
class scope {
  public:
    scope(call kind, std::function<bool(int)> fails);
    ~scope();
    scope(const scope&) = delete;
    scope& operator=(const scope&) = delete;

    int calls() const { return calls_; }
    bool next_fails() { return fails_(calls_++); }

  private:
    call kind_;
    std::function<bool(int)> fails_;
    std::atomic<int> calls_{0};
};

inline std::function<bool(int)> every() {
    return [](int) { return true; };
}
inline std::function<bool(int)> nth(int n) {
    return [n](int i) { return i == n; };
}
inline std::function<bool(int)> from(int n) {
    return [n](int i) { return i >= n; };
}
// The calls whose bit is set.
inline std::function<bool(int)> those_of(unsigned mask) {
    return [mask](int i) { return i < 32 && (mask >> i & 1U) != 0; };
}

// Blocks of malloc and calloc that free has not got back.
int64_t live_blocks();

}  // namespace faults

#endif  // IMAGEBLEND_TESTS_POOL_FAULTS_H
