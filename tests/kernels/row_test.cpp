// SPDX-License-Identifier: Apache-2.0
// The operations of the row tables. Every table gives what the plain rows give, at every length and
// between pages that cannot be touched; the plain rows, and the others, round every value rightly.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <list>

#include "kernels/vector_rows.h"
#include "naive.h"
#include "support/guarded_bytes.h"

namespace {

using naive::bytes;
using naive::words;
using support::guarded_bytes;
using pointers = std::vector<const uint8_t*>;

class Rows : public ::testing::TestWithParam<const row_ops*> {};

std::vector<const row_ops*> tables_of_this_machine() {
    std::vector<const row_ops*> tables = {&plain_rows};
    while (const row_ops* table = machine_row_ops(static_cast<int32_t>(tables.size()) - 1))
        tables.push_back(table);
    return tables;
}
INSTANTIATE_TEST_SUITE_P(Tables, Rows, ::testing::ValuesIn(tables_of_this_machine()),
                         [](const auto& table) { return table.param->name; });

// One operation: its input rows, the size of its output, and the call.
struct row_case {
    const char* name;
    std::vector<bytes> inputs;
    size_t output_bytes;
    std::function<void(const row_ops& t, const pointers& in, uint8_t* out)> call;
};

void check(const row_ops& table, const row_case& c) {
    bytes expected(c.output_bytes, naive::UNTOUCHED);
    pointers plain;
    for (const bytes& input : c.inputs)
        plain.push_back(input.data());
    c.call(plain_rows, plain, expected.data());
    for (const auto side : {guarded_bytes::side::start, guarded_bytes::side::end}) {
        const size_t before = side == guarded_bytes::side::start ? 0 : 64, after = 64 - before;
        std::list<guarded_bytes> inputs;
        pointers in;
        for (const bytes& input : c.inputs)
            in.push_back(inputs.emplace_back(input, 0, 0, side).data());
        guarded_bytes out(bytes(c.output_bytes, naive::UNTOUCHED), before, after, side);
        c.call(table, in, out.data());
        ASSERT_TRUE(out.content() == expected && out.intact()) << c.name;
    }
}

// Operations on n elements, and on n pixels with a mask of n bytes.
std::vector<row_case> element_cases(size_t n, int kind) {
    const auto data = [&](size_t count) { return naive::data(kind, count, count + n); };
    const auto other = [&](size_t count) { return naive::data(4, count, count); };
    const bytes c3 = data(3 * n), d3 = other(3 * n), e3 = naive::data(5, 3 * n, n),
                mask = n % 3 == 0 ? data(n) : other(n);
    const int weight = static_cast<int>(n * 37) % 129;
    std::vector<row_case> cases;
    const auto add = [&](const char* name, const std::vector<bytes>& inputs, size_t output_bytes,
                         auto call) {
        cases.push_back({name, inputs, output_bytes, call});
    };
    add("mix_rows", {data(n), other(n)}, n,
        [=](auto& t, auto& in, auto* out) { t.mix_rows(in[0], in[1], weight, out, n); });
    for (const auto merge : {&row_ops::merge_even, &row_ops::merge_odd})
        add("merge", {mask, c3, d3, d3, c3, c3, e3}, 3 * n, [=](auto& t, auto& in, auto* out) {
            const merge_rows rows = {in[0],
                                     in[1],
                                     in[2],
                                     {in[3], in[6], in[4]},
                                     {in[5], in[4], in[6]},
                                     {in[6], in[5], in[3]}};
            (t.*merge)(&rows, out, n);
        });
    add("pack_rgb", {other(4 * n)}, 3 * n,
        [=](auto& t, auto& in, auto* out) { t.pack_rgb(in[0], out, n); });
    add("unpack_rgb", {other(3 * n)}, 4 * n,
        [=](auto& t, auto& in, auto* out) { t.unpack_rgb(in[0], out, n); });
    add("reduce_column", {data(n), other(n), c3, d3, data(n)}, n,
        [=](auto& t, auto& in, auto* out) { t.reduce_column(in.data(), out, n); });
    return cases;
}

// Rows of n pixels made narrower and wider, and rows of several widths resampled to n.
std::vector<row_case> filter_cases(int32_t n, int kind) {
    std::vector<row_case> cases;
    const auto row = [&](int32_t width, int32_t channels, size_t more = 0) {
        return naive::data(kind, naive::plane_bytes({width, 1}, channels) + more, 5);
    };
    // Half the width, and shorter ones, for which the row goes on behind the last centre.
    for (const int32_t narrow : {n / 2, n / 2 - 1, n / 3 + 1, 2}) {
        if (narrow < 2 || 2 * narrow > n) continue;
        const auto size = static_cast<size_t>(narrow);
        cases.push_back({"reduce_row_c3", {row(n, 3)}, 3 * size, [=](auto& t, auto& in, auto* out) {
                             t.reduce_row_c3(in[0], n, out, narrow);
                         }});
        cases.push_back({"reduce_row_c1", {row(n, 1)}, size, [=](auto& t, auto& in, auto* out) {
                             t.reduce_row_c1(in[0], n, out, narrow);
                         }});
    }
    for (int32_t wide = 2 * n; n >= 2 && wide <= 2 * n + 9; wide += wide > 2 * n ? 4 : 1) {
        cases.push_back(
            {"expand_row_c3",
             {row(n, 3)},
             3 * static_cast<size_t>(wide),
             [=](auto& t, auto& in, auto* out) { t.expand_row_c3(in[0], n, out, wide); }});
    }
    for (const int32_t width : {2, 3, 7, n + 1, 2 * n + 5}) {
        std::vector<row_tap> taps;
        for (int32_t i = 0; i < n; ++i)
            taps.push_back(
                {i * (width - 2) / std::max(n - 1, 1), i % 5 == 0 ? i % 2 * 128 : i * 53 % 129});
        // Two bytes behind the last named pixel may be read.
        cases.push_back({"resample_row_c3",
                         {row(width, 3, 2)},
                         3 * taps.size(),
                         [taps](auto& t, auto& in, auto* out) {
                             t.resample_row_c3(in[0], taps.data(), out, taps.size());
                         }});
    }
    return cases;
}

// A coarser row of three pairs of finer ones: by tables with an operation for that, and in two
// steps.
void reduce_three_pairs(const row_ops& t, int32_t channels, int32_t n, int32_t narrow,
                        const pointers& in, uint8_t* out) {
    const auto two = channels == 3 ? t.reduce_two_c3 : t.reduce_two_c1;
    if (two != nullptr) {
        guarded_bytes sums(bytes(reduce_two_bytes(narrow, channels), naive::UNTOUCHED), 0, 0);
        for (size_t k = 0; k < 6; k += 2)
            two(in[k], in[k + 1], n, sums.data(), k == 4 ? out : nullptr, narrow);
        return;
    }
    const auto size = static_cast<size_t>(narrow * channels);
    bytes rows[5];
    pointers taps;
    for (size_t k = 0; k < 5; ++k) {
        rows[k].resize(size);
        taps.push_back(rows[k].data());
        (channels == 3 ? t.reduce_row_c3 : t.reduce_row_c1)(in[k], n, rows[k].data(), narrow);
    }
    t.reduce_column(taps.data(), out, size);
}

TEST_P(Rows, TwoAtATime) {
    for (int32_t n = 2 * LEAST_REDUCED_TWO; n <= 330; ++n) {
        for (const int32_t channels : {1, 3}) {
            for (const int kind : {4, 5}) {
                std::vector<bytes> rows;
                for (uint64_t k = 0; k < 6; ++k)
                    rows.push_back(naive::data(kind, static_cast<size_t>(n * channels), k));
                for (const int32_t narrow :
                     {n / 2, std::max(n / 2 - 1, static_cast<int>(LEAST_REDUCED_TWO))}) {
                    SCOPED_TRACE("from " + std::to_string(n) + " to " + std::to_string(narrow));
                    const auto call = [=](auto& t, auto& in, auto* out) {
                        reduce_three_pairs(t, channels, n, narrow, in, out);
                    };
                    check(*GetParam(), {channels == 3 ? "reduce_two_c3" : "reduce_two_c1", rows,
                                        static_cast<size_t>(narrow * channels), call});
                    ASSERT_FALSE(HasFatalFailure());
                }
            }
        }
    }
}

// Rows of n pixels through frames that they touch at the edges: forwards and backwards, along a
// row, along a column and between. The first pixel is that of a column left of 0 too.
std::vector<row_case> turn_cases(int32_t n, int kind) {
    const std::pair<float, float> steps[] = {{1, 0},        {-1, 0},          {0, 1},
                                             {0, -1},       {0.866F, 0.5F},   {-0.26F, 0.97F},
                                             {0.7F, -0.7F}, {-0.999F, -1e-3F}};
    std::vector<row_case> cases;
    const auto count = static_cast<size_t>(n);
    for (const auto& [column_step, row_step] : steps) {
        const auto last = [&](float step) { return std::abs(step) * static_cast<float>(n - 1); };
        const auto start = [&](float step) { return (step < 0 ? last(step) : 0) + 0.25F; };
        // As many columns as pixels where all of them lie in few rows.
        const int32_t height = static_cast<int32_t>(last(row_step) + 0.25F) + 1;
        const int32_t width =
            std::max(static_cast<int32_t>(last(column_step) + 0.25F) + 1, (n - 1) / height + 1);
        const float aside = column_step < 0 ? static_cast<float>(width) - 1 - last(column_step) : 0;
        const turned_row row = {start(column_step) + aside,
                                start(row_step),
                                column_step,
                                row_step,
                                -3,
                                width,
                                height,
                                nullptr,
                                2 * width + 1,
                                n % 4};
        const size_t pixels = static_cast<size_t>(width) * static_cast<size_t>(height);
        const auto add = [&](const char* name, turn_row* row_ops::*turn, size_t taken,
                             size_t made) {
            cases.push_back({name,
                             {naive::data(kind, taken * pixels, 7)},
                             made * count,
                             [=](auto& t, auto& in, auto* out) {
                                 turned_row from = row;
                                 from.frame = in[0];
                                 (t.*turn)(&from, -3, out, count);
                             }});
        };
        add("turn_rgb", &row_ops::turn_rgb, 4, 3);
        add("turn_mask", &row_ops::turn_mask, 1, 1);
    }
    return cases;
}

TEST_P(Rows, OfEveryLength) {
    for (int32_t n = 1; n <= 132; ++n) {
        for (const int kind : {1, 2, 3, 4, 5}) {
            SCOPED_TRACE("length " + std::to_string(n) + ", data " + std::to_string(kind));
            for (const auto& cases : {element_cases(static_cast<size_t>(n), kind),
                                      filter_cases(n, kind), turn_cases(n, kind)}) {
                for (const row_case& c : cases) {
                    check(*GetParam(), c);
                    ASSERT_FALSE(HasFatalFailure());
                }
            }
        }
    }
}

// Every pair of bytes: filters in which taps share the two, and the mix by every weight.
TEST_P(Rows, OfEveryPairOfBytes) {
    bytes first(65536), second(65536), out(65536);
    for (size_t i = 0; i < out.size(); ++i) {
        first[i] = static_cast<uint8_t>(i / 256);
        second[i] = static_cast<uint8_t>(i % 256);
    }
    const uint8_t *const a = first.data(), *const b = second.data();
    const auto expect = [&](const char* what, int weight_a, int weight_b, int half, int divisor) {
        for (size_t i = 0; i < out.size(); ++i)
            ASSERT_EQ(out[i], (weight_a * a[i] + weight_b * b[i] + half) / divisor)
                << what << " of " << int{a[i]} << " and " << int{b[i]};
    };
    const uint8_t* const taps[5] = {b, a, b, a, a};
    GetParam()->reduce_column(taps, out.data(), out.size());
    expect("reduce_column", 9, 7, 8, 16);
    for (int weight = 0; weight <= 128; ++weight) {
        GetParam()->mix_rows(a, b, weight, out.data(), out.size());
        expect("mix_rows", 128 - weight, weight, 64, 128);
    }
}

// Coarser rows that are alike expand to themselves.
coarse_rows alike(const bytes& row) {
    return {row.data(), row.data(), row.data()};
}

// Merges of every mask and difference.
TEST_P(Rows, OfEveryMaskAndValue) {
    constexpr int values = 511;  // -255 .. 255
    constexpr size_t count = 3 * values;
    words a(count), b(count);
    bytes src(count), under(count), coarse_src(count), coarse_under(count), base(count);
    bytes merged(count);
    for (int mask = 0; mask < 256; ++mask) {
        const bytes row(values, static_cast<uint8_t>(mask));
        const merge_rows rows = {row.data(),        src.data(),          under.data(),
                                 alike(coarse_src), alike(coarse_under), alike(base)};
        // Every a meets every seventh b, from a start that differs from mask to mask, and the ends.
        for (int step = -2; step < values; step += 7) {
            for (size_t i = 0; i < count; ++i) {
                const int at = static_cast<int>(i / 3), third = static_cast<int>(i % 3);
                const int other = step < 0 ? (at % 2 == 0 ? 0 : 510) : at + step + mask + third;
                const int x = at - 255, y = other % values - 255;
                a[i] = static_cast<int16_t>(x);
                b[i] = static_cast<int16_t>(y);
                src[i] = static_cast<uint8_t>(std::max(x, 0));
                coarse_src[i] = static_cast<uint8_t>(std::max(-x, 0));
                under[i] = static_cast<uint8_t>(std::max(y, 0));
                coarse_under[i] = static_cast<uint8_t>(std::max(-y, 0));
                base[i] = static_cast<uint8_t>(i * 7);
            }
            const auto merge = step % 2 == 0 ? GetParam()->merge_even : GetParam()->merge_odd;
            merge(&rows, merged.data(), values);
            for (size_t i = 0; i < count; ++i) {
                const int16_t expected = naive::blended(mask, a[i], b[i]);
                ASSERT_EQ(merged[i], naive::collapsed(expected, base[i]))
                    << "mask " << mask << ", a " << a[i] << ", b " << b[i];
            }
        }
    }
}

// Every difference, onto several results. Where the mask is all 0 or all 255 one picture is enough;
// with two pictures that are alike every mask gives the same.
TEST_P(Rows, MergeOfOnePicture) {
    constexpr size_t values = 65536 / 3 * 3;
    bytes picture(values), expanded(values), out(values);
    for (size_t i = 0; i < values; ++i) {
        picture[i] = static_cast<uint8_t>(i / 256);
        expanded[i] = static_cast<uint8_t>(i);
    }
    for (const int mask : {0, 100, 255}) {
        const bytes row(values / 3, static_cast<uint8_t>(mask));
        for (const int base : {0, 1, 100, 128, 254, 255}) {
            const bytes result(values, static_cast<uint8_t>(base));
            const merge_rows rows = {row.data(),      picture.data(),  picture.data(),
                                     alike(expanded), alike(expanded), alike(result)};
            for (const auto merge : {GetParam()->merge_even, GetParam()->merge_odd}) {
                merge(&rows, out.data(), values / 3);
                for (size_t i = 0; i < values; ++i) {
                    const int weighted = (255 * (picture[i] - expanded[i]) + 128) >> 8;
                    ASSERT_EQ(out[i], naive::collapsed(weighted, base)) << mask << " at " << i;
                }
            }
        }
    }
}

}  // namespace
