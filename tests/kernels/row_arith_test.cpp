// The element-wise operations of the row tables: every length between fences, and every value.
#include <algorithm>
#include <random>

#include "naive.h"
#include "row_cases.h"

namespace {

using naive::bytes;
using naive::bytes_of;
using naive::row_gives;
using pointers = std::vector<const uint8_t*>;
using words = std::vector<int16_t>;

class RowArithmetic : public ::testing::TestWithParam<const row_ops*> {};
INSTANTIATE_TEST_SUITE_P(Tables, RowArithmetic, ::testing::ValuesIn(naive::tables_under_test()),
                         naive::table_name);

constexpr size_t MAX_COUNT = 200;

const int16_t* words_at(const uint8_t* place) {
    return reinterpret_cast<const int16_t*>(place);
}
int16_t* words_at(uint8_t* place) {
    return reinterpret_cast<int16_t*>(place);
}

// Data of the byte kinds, spread over -limit .. limit.
words signed_data(int kind, size_t count, int limit, uint64_t seed) {
    const bytes low = naive::data(kind, count, seed);
    std::mt19937_64 engine(seed);
    words out(count);
    for (size_t i = 0; i < count; ++i) {
        const int random = static_cast<int>(engine() % static_cast<uint64_t>(2 * limit + 1));
        const int value = kind == 4 ? random - limit : (low[i] == 0 ? -limit : limit);
        out[i] = static_cast<int16_t>(value);
    }
    return out;
}

uint8_t collapsed(int lap, int base) {
    const int sum = static_cast<int16_t>(static_cast<uint16_t>(lap + base));
    return static_cast<uint8_t>(std::clamp(sum, 0, 255));
}

// Quotients round towards minus infinity, being those of non-negative dividends.
uint8_t merged(int m, int a, int b, int base) {
    const int sum = (m * a + (255 - m) * b + 128 + 256 * 1024) / 256 - 1024 + base;
    return static_cast<uint8_t>(std::clamp(sum, 0, 255));
}

int16_t blended(int m, int a, int b) {
    const int sum = m * a + (255 - m) * b + 128;
    return static_cast<int16_t>((sum + 256 * 1024) / 256 - 1024);
}

TEST_P(RowArithmetic, EveryLengthAndKindOfData) {
    const row_ops* table = GetParam();
    for (size_t n = 1; n <= MAX_COUNT; ++n) {
        for (int kind = 0; kind < naive::DATA_KINDS; ++kind) {
            SCOPED_TRACE("length " + std::to_string(n) + ", data " + std::to_string(kind));
            const bytes a = naive::data(kind, n, n), b = naive::data(5 - kind, n, n + 1);
            const words lap = signed_data(kind, n, 255, n + 2);
            const words full = signed_data(kind, n, 32767, n + 3);
            words difference(n), wide(n);
            bytes sum(n), low(n);
            for (size_t i = 0; i < n; ++i) {
                difference[i] = static_cast<int16_t>(a[i] - b[i]);
                wide[i] = a[i];
                sum[i] = collapsed(lap[i], a[i]);
                low[i] = static_cast<uint8_t>(full[i] & 255);
            }
            ASSERT_TRUE(
                row_gives({a, b}, bytes_of(difference), [&](const pointers& in, uint8_t* out) {
                    table->subtract(in[0], in[1], words_at(out), n);
                }));
            ASSERT_TRUE(row_gives({a}, bytes_of(wide), [&](const pointers& in, uint8_t* out) {
                table->widen(in[0], words_at(out), n);
            }));
            ASSERT_TRUE(row_gives({bytes_of(lap), a}, sum, [&](const pointers& in, uint8_t* out) {
                table->collapse(words_at(in[0]), in[1], out, n);
            }));
            ASSERT_TRUE(row_gives({bytes_of(full)}, low, [&](const pointers& in, uint8_t* out) {
                table->narrow(words_at(in[0]), out, n);
            }));
        }
    }
}

TEST_P(RowArithmetic, BlendEveryLengthApartAndInPlace) {
    const row_ops* table = GetParam();
    for (size_t n = 1; n <= 132; ++n) {
        for (int kind = 0; kind < naive::DATA_KINDS; ++kind) {
            SCOPED_TRACE("pixels " + std::to_string(n) + ", data " + std::to_string(kind));
            const bytes mask = naive::data(n % 3 == 0 ? kind : 4, n, n);
            const words a = signed_data(kind, 3 * n, 255, n), b = signed_data(4, 3 * n, 255, n + 1);
            words expected(3 * n);
            for (size_t i = 0; i < expected.size(); ++i)
                expected[i] = blended(mask[i / 3], a[i], b[i]);
            const std::vector<bytes> inputs = {mask, bytes_of(a), bytes_of(b)};
            const bytes result = bytes_of(expected);
            ASSERT_TRUE(row_gives(inputs, result, [&](const pointers& in, uint8_t* out) {
                table->blend(in[0], words_at(in[1]), words_at(in[2]), words_at(out), n);
            }));
            ASSERT_TRUE(row_gives(inputs, result, [&](const pointers& in, uint8_t* out) {
                memcpy(out, in[1], 6 * n);
                table->blend(in[0], words_at(out), words_at(in[2]), words_at(out), n);
            })) << "over a";
            ASSERT_TRUE(row_gives(inputs, result, [&](const pointers& in, uint8_t* out) {
                memcpy(out, in[2], 6 * n);
                table->blend(in[0], words_at(in[1]), words_at(out), words_at(out), n);
            })) << "over b";
        }
    }
}

TEST_P(RowArithmetic, BlendOfEveryMaskAndValue) {
    constexpr int values = 511;  // -255 .. 255
    words a(3 * values), b(3 * values), out(3 * values);
    for (int mask = 0; mask < 256; ++mask) {
        const bytes row(values, static_cast<uint8_t>(mask));
        // Every a meets every seventh b, from a start that differs from mask to mask, and the ends.
        for (int step = -2; step < values; step += 7) {
            for (int i = 0; i < 3 * values; ++i) {
                const int third = i % 3, at = i / 3;
                const int other = step < 0 ? (at % 2 == 0 ? 0 : 510) : at + step + mask + third;
                a[static_cast<size_t>(i)] = static_cast<int16_t>(at - 255);
                b[static_cast<size_t>(i)] = static_cast<int16_t>(other % values - 255);
            }
            GetParam()->blend(row.data(), a.data(), b.data(), out.data(), values);
            for (size_t i = 0; i < out.size(); ++i) {
                ASSERT_EQ(out[i], blended(mask, a[i], b[i]))
                    << "mask " << mask << ", a " << a[i] << ", b " << b[i];
            }
        }
    }
    const uint8_t ends[2] = {255, 0};
    const int16_t one[6] = {255, -255, 100, 7, 7, 7}, two[6] = {7, 7, 7, 255, -255, -100};
    int16_t shrunk[6];
    GetParam()->blend(ends, one, two, shrunk, 2);
    const int16_t expected[6] = {254, -254, 100, 254, -254, -100};
    EXPECT_TRUE(std::equal(shrunk, shrunk + 6, expected));
}

// Mask, both pictures, their expanded coarser levels and the expanded result, as merge takes them.
struct merge_inputs {
    std::vector<bytes> rows;

    merge_inputs(size_t pixels, int kind, uint64_t seed) {
        rows.push_back(naive::data(kind == 5 ? 5 : 4, pixels, seed));
        for (int k = 0; k < 5; ++k)
            rows.push_back(naive::data(k % 2 == 0 ? kind : 4, 3 * pixels, seed + rows.size()));
    }

    bytes expected() const {
        bytes out(rows[1].size());
        for (size_t i = 0; i < out.size(); ++i) {
            out[i] = merged(rows[0][i / 3], rows[1][i] - rows[3][i], rows[2][i] - rows[4][i],
                            rows[5][i]);
        }
        return out;
    }
};

TEST_P(RowArithmetic, MergeEveryLengthAndManyValues) {
    const row_ops* table = GetParam();
    const auto call = [&](size_t pixels) {
        return [table, pixels](const pointers& in, uint8_t* out) {
            const merge_rows rows = {in[0], in[1], in[2], in[3], in[4], in[5]};
            table->merge(&rows, out, pixels);
        };
    };
    for (size_t n = 1; n <= 132; ++n) {
        for (int kind = 0; kind < naive::DATA_KINDS; ++kind) {
            const merge_inputs inputs(n, kind, n);
            ASSERT_TRUE(row_gives(inputs.rows, inputs.expected(), call(n)))
                << "pixels " << n << ", data " << kind;
        }
    }
    for (uint64_t seed = 0; seed < 400; ++seed) {
        const merge_inputs inputs(1300, seed % 2 == 0 ? 4 : 5, seed);
        ASSERT_TRUE(row_gives(inputs.rows, inputs.expected(), call(1300)));
    }
}

TEST_P(RowArithmetic, PackAndUnpackEveryLength) {
    const row_ops* table = GetParam();
    for (size_t n = 1; n <= 300; ++n) {
        const bytes argb = naive::data(4, 4 * n, n), rgb = naive::data(4, 3 * n, n + 1);
        bytes packed, unpacked;
        for (size_t i = 0; i < 4 * n; ++i) {
            if (i % 4 != 0) packed.push_back(argb[i]);
            unpacked.push_back(i % 4 == 0 ? 255 : rgb[i / 4 * 3 + i % 4 - 1]);
        }
        ASSERT_TRUE(row_gives({argb}, packed, [&](const pointers& in, uint8_t* out) {
            table->pack_rgb(in[0], out, n);
        })) << n;
        ASSERT_TRUE(row_gives({rgb}, unpacked, [&](const pointers& in, uint8_t* out) {
            table->unpack_rgb(in[0], out, n);
        })) << n;
    }
}

TEST_P(RowArithmetic, MixRowsOfEveryLengthAndWeight) {
    const row_ops* table = GetParam();
    const auto check = [table](size_t n, int weight, int kind) {
        const bytes first = naive::data(kind, n, n), second = naive::data(4, n, n + 1);
        bytes expected(n);
        for (size_t i = 0; i < n; ++i) {
            expected[i] =
                static_cast<uint8_t>(((128 - weight) * first[i] + weight * second[i] + 64) / 128);
        }
        ASSERT_TRUE(row_gives({first, second}, expected,
                              [&](const pointers& in, uint8_t* out) {
                                  table->mix_rows(in[0], in[1], weight, out, n);
                              }))
            << n << " of weight " << weight;
    };
    for (size_t n = 1; n <= MAX_COUNT; ++n) {
        for (int kind = 0; kind < naive::DATA_KINDS; ++kind)
            check(n, static_cast<int>(n * 37) % 129, kind);
        check(n, 0, 4);
        check(n, 128, 4);
    }
    for (int weight = 0; weight <= 128; ++weight)
        check(2000, weight, 5);
}

TEST_P(RowArithmetic, ResampleRowsOfEveryLength) {
    const row_ops* table = GetParam();
    for (int32_t n = 1; n <= 132; ++n) {
        for (const int32_t width : {2, 3, 7, n + 1, 2 * n + 5}) {
            const bytes row = naive::data(n % 3 == 0 ? 3 : 4, naive::plane_bytes({width, 1}, 3), 8);
            std::vector<row_tap> taps;
            bytes expected;
            for (int32_t i = 0; i < n; ++i) {
                const row_tap tap = {i * (width - 2) / std::max(n - 1, 1),
                                     i % 5 == 0 ? i % 2 * 128 : i * 53 % 129};
                taps.push_back(tap);
                for (int32_t c = 0; c < 3; ++c) {
                    const auto at = static_cast<size_t>(3 * tap.sample + c);
                    expected.push_back(static_cast<uint8_t>(
                        ((128 - tap.weight) * row[at] + tap.weight * row[at + 3] + 64) / 128));
                }
            }
            bytes padded = row;
            padded.resize(row.size() + 2, 0xEE);  // two bytes may be read
            ASSERT_TRUE(row_gives({padded}, expected,
                                  [&](const pointers& in, uint8_t* out) {
                                      table->resample_row_c3(in[0], taps.data(), out, taps.size());
                                  }))
                << width << " to " << n;
        }
    }
}

TEST_P(RowArithmetic, CollapseAndNarrowOfEveryWord) {
    words all(65536);
    for (int i = 0; i < 65536; ++i)
        all[static_cast<size_t>(i)] = static_cast<int16_t>(i - 32768);
    bytes out(all.size());
    for (int base = 0; base < 256; ++base) {
        GetParam()->collapse(all.data(), bytes(all.size(), static_cast<uint8_t>(base)).data(),
                             out.data(), all.size());
        for (size_t i = 0; i < all.size(); ++i) {
            ASSERT_EQ(out[i], collapsed(all[i], base)) << "lap " << all[i] << ", base " << base;
        }
    }
    GetParam()->narrow(all.data(), out.data(), all.size());
    for (size_t i = 0; i < all.size(); ++i)
        ASSERT_EQ(out[i], static_cast<uint8_t>(all[i] & 255)) << all[i];
}

}  // namespace
