// Runs one row operation between fences and compares its whole output.
#ifndef IMAGEBLEND_TESTS_KERNELS_ROW_CASES_H
#define IMAGEBLEND_TESTS_KERNELS_ROW_CASES_H

#include <gtest/gtest.h>
#include <stdint.h>
#include <string.h>

#include <functional>
#include <string>
#include <vector>

#include "fenced.h"
#include "kernels/row_ops.h"

namespace naive {

// Every test of a row operation runs on each of these tables; both may be the same one.
inline std::vector<const row_ops*> tables_under_test() {
    return {&plain_rows, active_rows()};
}

inline std::string table_name(const ::testing::TestParamInfo<const row_ops*>& info) {
    return std::string(info.param->name) + "_" + std::to_string(info.index);
}

// What the output holds before the call, so that `expected` can name elements that stay.
enum { UNTOUCHED = 0xC7 };

using row_call = std::function<void(const std::vector<const uint8_t*>& in, uint8_t* out)>;

// `in` are the places of `inputs`. The call must give `expected`, keep its inputs and stay inside
// its buffers, with all of them against the page before and against the page behind.
::testing::AssertionResult row_gives(const std::vector<bytes>& inputs, const bytes& expected,
                                     const row_call& call);

template <class T>
bytes bytes_of(const std::vector<T>& values) {
    bytes out(values.size() * sizeof(T));
    memcpy(out.data(), values.data(), out.size());
    return out;
}

}  // namespace naive

#endif  // IMAGEBLEND_TESTS_KERNELS_ROW_CASES_H
