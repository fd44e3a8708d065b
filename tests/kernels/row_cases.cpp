#include "row_cases.h"

#include <stdlib.h>

#include <array>

namespace naive {
namespace {

enum { MAX_INPUTS = 6, MAX_ROW = 4096 };

struct fences {
    std::array<fenced, MAX_INPUTS> inputs{fenced(MAX_ROW), fenced(MAX_ROW), fenced(MAX_ROW),
                                          fenced(MAX_ROW), fenced(MAX_ROW), fenced(MAX_ROW)};
    fenced output{MAX_ROW};
};

::testing::AssertionResult run_at(side at, const std::vector<bytes>& inputs, const bytes& expected,
                                  const row_call& call, fences& places) {
    std::vector<const uint8_t*> in;
    for (size_t k = 0; k < inputs.size(); ++k)
        in.push_back(places.inputs[k].place(inputs[k], at));
    call(in, places.output.place(bytes(expected.size(), UNTOUCHED), at));
    const char* where = at == side::start ? " (fence before)" : " (fence behind)";
    for (size_t k = 0; k < inputs.size(); ++k) {
        if (places.inputs[k].content() != inputs[k] || !places.inputs[k].intact()) {
            return ::testing::AssertionFailure() << "input " << k << " was written" << where;
        }
    }
    if (!places.output.intact()) {
        return ::testing::AssertionFailure() << "written beside the output" << where;
    }
    const bytes actual = places.output.content();
    for (size_t i = 0; i < expected.size(); ++i) {
        if (actual[i] == expected[i]) continue;
        return ::testing::AssertionFailure()
               << "byte " << i << " is " << int{actual[i]} << ", not " << int{expected[i]} << where;
    }
    return ::testing::AssertionSuccess();
}

}  // namespace

::testing::AssertionResult row_gives(const std::vector<bytes>& inputs, const bytes& expected,
                                     const row_call& call) {
    static fences places;
    if (inputs.size() > MAX_INPUTS) abort();
    const ::testing::AssertionResult first = run_at(side::start, inputs, expected, call, places);
    return first ? run_at(side::end, inputs, expected, call, places) : first;
}

}  // namespace naive
