// The filters of the row tables: every width, between fences, against a sample-wise reference.
#include "naive.h"
#include "row_cases.h"

namespace {

using naive::bytes;
using naive::extent;
using naive::row_gives;
using pointers = std::vector<const uint8_t*>;

class RowFilters : public ::testing::TestWithParam<const row_ops*> {};
INSTANTIATE_TEST_SUITE_P(Tables, RowFilters, ::testing::ValuesIn(naive::tables_under_test()),
                         naive::table_name);

constexpr int32_t MAX_WIDTH = 132;

void check_reduce(const row_ops* table, int32_t channels, int32_t width, int32_t reduced) {
    const auto op = channels == 3 ? table->reduce_row_c3 : table->reduce_row_c1;
    for (int kind = 0; kind < naive::DATA_KINDS; ++kind) {
        const bytes row = naive::data(kind, naive::plane_bytes({width, 1}, channels),
                                      static_cast<uint64_t>(width));
        ASSERT_TRUE(
            row_gives({row}, naive::reduce_rows(row, {width, 1}, reduced, channels),
                      [&](const pointers& in, uint8_t* out) { op(in[0], width, out, reduced); }))
            << channels << " channels, " << width << " to " << reduced << ", data " << kind;
    }
}

TEST_P(RowFilters, ReduceRowsOfEveryWidth) {
    for (int32_t width = 4; width <= MAX_WIDTH; ++width) {
        for (const int32_t channels : {1, 3}) {
            // Half the width, and shorter ones, for which the row goes on behind the last centre.
            check_reduce(GetParam(), channels, width, width / 2);
            check_reduce(GetParam(), channels, width, 2);
            if (width >= 6) check_reduce(GetParam(), channels, width, width / 2 - 1);
            if (width >= 8) check_reduce(GetParam(), channels, width, width / 3 + 1);
            ASSERT_FALSE(HasFatalFailure());
        }
    }
}

TEST_P(RowFilters, ExpandRowsOfEveryWidth) {
    for (int32_t width = 2; width <= MAX_WIDTH; ++width) {
        for (const int32_t beyond : {0, 1, 2, 9}) {
            const int32_t expanded = 2 * width + beyond;
            for (int kind = 0; kind < naive::DATA_KINDS; ++kind) {
                const bytes row = naive::data(kind, naive::plane_bytes({width, 1}, 3),
                                              static_cast<uint64_t>(width));
                const bytes expected = naive::expand_rows(
                    row, {width, 1}, expanded,
                    bytes(naive::plane_bytes({expanded, 1}, 3), uint8_t{naive::UNTOUCHED}));
                ASSERT_TRUE(row_gives({row}, expected,
                                      [&](const pointers& in, uint8_t* out) {
                                          GetParam()->expand_row_c3(in[0], width, out, expanded);
                                      }))
                    << width << " to " << expanded << ", data " << kind;
            }
        }
    }
}

// Rows of one kind of data, or of that and random data in turns.
std::vector<bytes> column_rows(size_t rows, size_t count, int kind) {
    std::vector<bytes> result;
    for (size_t k = 0; k < rows; ++k)
        result.push_back(naive::data(kind < 2 || k % 2 == 0 ? kind : 4, count, 77 * count + k));
    return result;
}

// The taps of one output, which repeat rows where the picture ends.
struct taps {
    std::vector<size_t> rows;
};

bytes weighted(const std::vector<bytes>& rows, const taps& t, const std::vector<int>& weights,
               int divisor) {
    bytes out(rows[0].size());
    for (size_t i = 0; i < out.size(); ++i) {
        int sum = divisor / 2;
        for (size_t k = 0; k < weights.size(); ++k)
            sum += weights[k] * rows[t.rows[k]][i];
        out[i] = static_cast<uint8_t>(sum / divisor);
    }
    return out;
}

TEST_P(RowFilters, ColumnsOfEveryLength) {
    const row_ops* table = GetParam();
    const taps five[] = {{{0, 1, 2, 3, 4}}, {{0, 0, 0, 1, 2}}, {{0, 1, 2, 3, 3}}};
    const taps three[] = {{{0, 1, 2}}, {{0, 0, 1}}, {{0, 1, 1}}};
    for (size_t count = 1; count <= 3 * MAX_WIDTH; count += count < MAX_WIDTH ? 1 : 7) {
        for (int kind = 0; kind < naive::DATA_KINDS; ++kind) {
            const std::vector<bytes> rows = column_rows(5, count, kind);
            for (const taps& t : five) {
                ASSERT_TRUE(row_gives(rows, weighted(rows, t, {1, 4, 6, 4, 1}, 16),
                                      [&](const pointers& in, uint8_t* out) {
                                          const uint8_t* places[5];
                                          for (size_t k = 0; k < 5; ++k)
                                              places[k] = in[t.rows[k]];
                                          table->reduce_column(places, out, count);
                                      }))
                    << "reduce, length " << count << ", data " << kind;
            }
            for (const taps& t : three) {
                ASSERT_TRUE(row_gives(rows, weighted(rows, t, {1, 6, 1}, 8),
                                      [&](const pointers& in, uint8_t* out) {
                                          table->expand_even(in[t.rows[0]], in[t.rows[1]],
                                                             in[t.rows[2]], out, count);
                                      }))
                    << "even rows, length " << count << ", data " << kind;
                ASSERT_TRUE(row_gives(rows, weighted(rows, t, {4, 4}, 8),
                                      [&](const pointers& in, uint8_t* out) {
                                          table->expand_odd(in[t.rows[0]], in[t.rows[1]], out,
                                                            count);
                                      }))
                    << "odd rows, length " << count << ", data " << kind;
            }
        }
    }
}

// Every sum that a filter can meet rounds half up: three taps of one value against two others.
TEST_P(RowFilters, ColumnsRoundEverySum) {
    const row_ops* table = GetParam();
    bytes ramp(256);
    for (size_t i = 0; i < ramp.size(); ++i)
        ramp[i] = static_cast<uint8_t>(i);
    for (int other = 0; other < 256; other += 3) {
        const bytes flat(256, static_cast<uint8_t>(other));
        const std::vector<bytes> rows = {ramp, flat};
        const taps five = {{1, 0, 1, 0, 0}};
        ASSERT_TRUE(row_gives(rows, weighted(rows, five, {1, 4, 6, 4, 1}, 16),
                              [&](const pointers& in, uint8_t* out) {
                                  const uint8_t* places[5] = {in[1], in[0], in[1], in[0], in[0]};
                                  table->reduce_column(places, out, 256);
                              }));
        const taps three = {{0, 1, 0}};
        ASSERT_TRUE(row_gives(rows, weighted(rows, three, {1, 6, 1}, 8),
                              [&](const pointers& in, uint8_t* out) {
                                  table->expand_even(in[0], in[1], in[0], out, 256);
                              }));
        ASSERT_TRUE(row_gives(
            rows, weighted(rows, three, {4, 4}, 8),
            [&](const pointers& in, uint8_t* out) { table->expand_odd(in[0], in[1], out, 256); }));
    }
}

}  // namespace
