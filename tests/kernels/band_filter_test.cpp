// The band filters: four bands of a level give what the whole level gives, reading their rows only.
#include <gtest/gtest.h>

#include <functional>

#include "kernels/band_filters.h"
#include "naive.h"
#include "support/compare.h"
#include "support/guarded_bytes.h"
#include "support/log_capture.h"
#include "support/scene.h"

namespace {

using naive::bytes;
using naive::extent;
using support::guarded_bytes;

constexpr uint8_t UNTOUCHED = 0xC7;

// Rows of one band: `src` of its input level and `dst` of its output level.
struct band {
    int32_t pos, src_start, src_rows, dst_start, dst_rows;
};

// A record with valid planes for one call; the tests change single fields of it.
struct band_call {
    bytes src;
    guarded_bytes dst, scratch;
    pixel_layout src_layout, dst_layout;
    band_task task;

    band_call(const bytes& plane, extent from, extent to, const band& b, int32_t channels,
              size_t dst_bytes, uint8_t scratch_fill = UNTOUCHED)
        : src(plane),
          dst(bytes(dst_bytes, UNTOUCHED), 64, 64),
          scratch(bytes(naive::plane_bytes({to.width, std::max(b.src_rows, 0)}, channels),
                        scratch_fill),
                  64, 64),
          src_layout{0, channels},
          dst_layout{0, channels},
          task() {
        task.src = src.data();
        task.src_width = from.width;
        task.src_height = from.height;
        task.src_rows = b.src_rows;
        task.dst = dst.data();
        task.dst_width = to.width;
        task.dst_height = to.height;
        task.dst_rows = b.dst_rows;
        task.band_pos = b.pos;
        task.src_geom = &src_layout;
        task.dst_geom = &dst_layout;
        task.scratch = scratch.data();
    }

    bool guards_kept() const { return dst.intact() && scratch.intact(); }
    bool nothing_written() const {
        return guards_kept() && dst.content() == bytes(dst.content().size(), UNTOUCHED) &&
               scratch.content() == bytes(scratch.content().size(), UNTOUCHED);
    }
};

// The plane with other values in all rows that the band may not read.
bytes poisoned(const bytes& plane, size_t row_bytes, const band& b, uint64_t seed) {
    bytes out = naive::data(4, plane.size(), seed ^ 0x5A5A);
    const auto first = static_cast<ptrdiff_t>(static_cast<size_t>(b.src_start) * row_bytes);
    const auto last = first + static_cast<ptrdiff_t>(static_cast<size_t>(b.src_rows) * row_bytes);
    std::copy(plane.begin() + first, plane.begin() + last, out.begin() + first);
    return out;
}

std::vector<band> build_bands(int32_t height) {
    const int32_t q = height / 4 & ~1, half = q / 2;
    return {{BAND_FIRST, 0, q + 3, 0, half + 1},
            {BAND_MIDDLE, q - 4, q + 7, half - 1, half + 2},
            {BAND_MIDDLE, 2 * q - 4, q + 7, 2 * half - 1, half + 2},
            {BAND_LAST, 3 * q - 4, height - 3 * q + 4, 3 * half - 1, height / 2 - 3 * half + 1}};
}

// Bands of the coarser level for the finer rows [k q, k q + q) and so on.
std::vector<band> expand_bands(int32_t height, int32_t coarse) {
    const int32_t q = height / 4 & ~1, half = q / 2;
    return {{BAND_FIRST, 0, half + 1, 0, q},
            {BAND_MIDDLE, half - 1, half + 2, q, q},
            {BAND_MIDDLE, 2 * half - 1, half + 2, 2 * q, q},
            {BAND_LAST, 3 * half - 1, coarse - 3 * half + 1, 3 * q, height - 3 * q}};
}

// Bands of the coarser level as a collapse cuts it.
std::vector<band> collapse_bands(int32_t height, int32_t coarse) {
    const int32_t q = coarse / 4;
    return {{BAND_FIRST, 0, q + 1, 0, 2 * q},
            {BAND_MIDDLE, q - 1, q + 2, 2 * q, 2 * q},
            {BAND_MIDDLE, 2 * q - 1, q + 2, 4 * q, 2 * q},
            {BAND_LAST, 3 * q - 1, coarse - 3 * q + 1, 6 * q, height - 6 * q}};
}

void check_reduce_bands(extent from, int32_t channels, int kind) {
    const extent to = {from.width / 2, from.height / 2};
    const auto seed = static_cast<uint64_t>(from.width * 1000 + from.height);
    const bytes plane = naive::data(kind, naive::plane_bytes(from, channels), seed);
    const bytes whole = naive::reduce(plane, from, to, channels);
    const size_t src_row = naive::plane_bytes({from.width, 1}, channels);
    const size_t dst_row = naive::plane_bytes({to.width, 1}, channels);
    const auto kernel = channels == 3 ? ImageReduce_BandC3 : ImageReduce_BandC1;
    for (const band& b : build_bands(from.height)) {
        band_call call(poisoned(plane, src_row, b, seed), from, to, b, channels,
                       dst_row * static_cast<size_t>(b.dst_rows));
        call.src_layout.offset = static_cast<int32_t>(src_row) * b.src_start;
        ASSERT_EQ(kernel(&call.task), 0);
        ASSERT_EQ(call.dst.content(), naive::rows_of(whole, dst_row, b.dst_start, b.dst_rows))
            << from.width << "x" << from.height << ", row " << b.dst_start;
        ASSERT_TRUE(call.guards_kept()) << from.width << "x" << from.height;
    }
}

TEST(BandFilters, FourBandsReduceALevel) {
    support::clear_log();
    support::dice dice(11);
    for (int32_t height = 16; height <= 200; height += height < 50 ? 1 : 9) {
        for (const int32_t channels : {1, 3}) {
            check_reduce_bands({dice.between(4, 70), height}, channels, 4);
            check_reduce_bands({dice.between(4, 20), height}, channels, dice.between(0, 5));
            ASSERT_FALSE(HasFatalFailure());
        }
    }
    EXPECT_TRUE(support::same_log({}, support::take_log()));
}

void check_expand_bands(const std::vector<band>& bands, extent from, extent to, int kind) {
    constexpr uint8_t fill = 0x5E;  // of the scratch: what no column of the source reaches keeps
    const auto seed = static_cast<uint64_t>(to.width * 1000 + to.height);
    const bytes plane = naive::data(kind, naive::plane_bytes(from, 3), seed);
    const bytes whole =
        naive::expand(plane, from, to, fill, bytes(naive::plane_bytes(to, 3), UNTOUCHED));
    const size_t src_row = naive::plane_bytes({from.width, 1}, 3);
    const size_t dst_row = naive::plane_bytes({to.width, 1}, 3);
    for (const band& b : bands) {
        band_call call(poisoned(plane, src_row, b, seed), from, to, b, 3,
                       dst_row * static_cast<size_t>(b.dst_rows), fill);
        call.task.src += src_row * static_cast<size_t>(b.src_start);
        call.src_layout.offset = 1 << 20;  // not added
        call.task.dst_rows = -7;           // not read
        ASSERT_EQ(ImageExpand_BandC3(&call.task), 0);
        ASSERT_EQ(call.dst.content(), naive::rows_of(whole, dst_row, b.dst_start, b.dst_rows))
            << to.width << "x" << to.height << ", row " << b.dst_start;
        ASSERT_TRUE(call.guards_kept()) << to.width << "x" << to.height;
    }
}

TEST(BandFilters, FourBandsExpandALevel) {
    support::clear_log();
    support::dice dice(12);
    for (int32_t height = 16; height <= 200; height += height < 50 ? 1 : 9) {
        const int32_t width = dice.between(4, 70), coarse = height / 2;
        const extent from = {width / 2, coarse};
        check_expand_bands(expand_bands(height, coarse), from, {width, height}, 4);
        check_expand_bands(collapse_bands(height, coarse), from, {width, height}, 5);
        check_expand_bands(expand_bands(height, coarse), from, {width + 5, height},
                           dice.between(0, 5));
        ASSERT_FALSE(HasFatalFailure());
    }
    EXPECT_TRUE(support::same_log({}, support::take_log()));
}

TEST(BandFilters, BandsOfOneRow) {
    const extent from = {10, 40}, odd = {10, 41}, to = {5, 20};
    const bytes rows = naive::data(4, naive::plane_bytes({10, 6}, 3), 3);
    const bytes row_bytes = naive::reduce_rows(rows, {10, 6}, 5, 3);
    const auto reduced = [&](int32_t count, int32_t row) {
        const bytes part = naive::rows_of(row_bytes, 15, 0, count);
        return naive::rows_of(naive::reduce_columns(part, {5, count}, row + 1, 3), 15, row, 1);
    };
    band_call first(rows, from, to, {BAND_FIRST, 0, 3, 0, 1}, 3, 15);
    EXPECT_EQ(ImageReduce_BandC3(&first.task), 0);
    EXPECT_EQ(first.dst.content(), reduced(3, 0));
    // The last row closes on four rows where the level is twice as high, else it has five.
    band_call last(rows, from, to, {BAND_LAST, 0, 4, 0, 1}, 3, 15);
    EXPECT_EQ(ImageReduce_BandC3(&last.task), 0);
    EXPECT_EQ(last.dst.content(), reduced(4, 1));
    band_call open(rows, odd, to, {BAND_LAST, 0, 5, 0, 1}, 3, 15);
    EXPECT_EQ(ImageReduce_BandC3(&open.task), 0);
    EXPECT_EQ(open.dst.content(), reduced(5, 1));
    EXPECT_TRUE(first.guards_kept() && last.guards_kept() && open.guards_kept());

    // An expansion of the last two rows closes both, with a third row for an odd level.
    for (const extent finer : {from, odd}) {
        const int32_t count = finer.height - 38;
        const bytes coarse = naive::data(4, 30, 4);
        band_call call(coarse, to, finer, {BAND_LAST, 0, 2, 0, 0}, 3,
                       naive::plane_bytes({10, count}, 3));
        EXPECT_EQ(ImageExpand_BandC3(&call.task), 0);
        const bytes wide = naive::expand_rows(coarse, {5, 2}, 10, bytes(60));
        const bytes both = naive::expand_columns(wide, {10, 2}, count + 2, bytes(150));
        EXPECT_EQ(call.dst.content(), naive::rows_of(both, 30, 2, count));
        EXPECT_TRUE(call.guards_kept());
    }
}

TEST(BandFilters, WithoutRowsNothingHappens) {
    support::clear_log();
    const extent fine = {12, 40}, coarse = {6, 20};
    const bytes plane(naive::plane_bytes(fine, 3), 200);
    for (const int32_t pos : {BAND_FIRST, BAND_MIDDLE, BAND_LAST}) {
        for (const int32_t rows : {0, -3}) {
            const band none = {pos, 0, rows, 0, 2};
            band_call reduce3(plane, fine, coarse, none, 3, 256);
            band_call reduce1(plane, fine, coarse, none, 1, 256);
            band_call expand(plane, coarse, fine, none, 3, 256);
            EXPECT_EQ(ImageReduce_BandC3(&reduce3.task), 0);
            EXPECT_EQ(ImageReduce_BandC1(&reduce1.task), 0);
            EXPECT_EQ(ImageExpand_BandC3(&expand.task), 0);
            EXPECT_TRUE(reduce3.nothing_written() && reduce1.nothing_written() &&
                        expand.nothing_written())
                << pos << " with " << rows;
        }
    }
    // A level that is too narrow to be filtered is left alone.
    band_call narrow(plane, {2, 40}, {1, 20}, {BAND_FIRST, 0, 8, 0, 3}, 3, 256);
    EXPECT_EQ(ImageReduce_BandC3(&narrow.task), 0);
    EXPECT_TRUE(narrow.nothing_written());
    // Any other position of a band, and a middle band of context alone, fill the scratch at most.
    for (const int32_t pos : {0, 4, -1}) {
        band_call reduce(plane, fine, coarse, {pos, 0, 11, 0, 4}, 3, 256);
        band_call expand(plane, coarse, fine, {pos, 0, 5, 0, 0}, 3, 2048);
        EXPECT_EQ(ImageReduce_BandC3(&reduce.task), 0);
        EXPECT_EQ(ImageExpand_BandC3(&expand.task), 0);
        EXPECT_EQ(reduce.dst.content(), bytes(256, UNTOUCHED)) << pos;
        EXPECT_EQ(expand.dst.content(), bytes(2048, UNTOUCHED)) << pos;
        EXPECT_TRUE(reduce.guards_kept() && expand.guards_kept());
    }
    for (const int32_t rows : {1, 2}) {
        band_call context(plane, coarse, fine, {BAND_MIDDLE, 0, rows, 0, 0}, 3, 256);
        EXPECT_EQ(ImageExpand_BandC3(&context.task), 0);
        EXPECT_EQ(context.dst.content(), bytes(256, UNTOUCHED));
    }
    EXPECT_TRUE(support::same_log({}, support::take_log()));
}

TEST(BandFilters, RefusalsAreLogged) {
    using kernel = int32_t (*)(const band_task*);
    const bytes plane(8192, 200);
    const model::log_line null_line = {6, "Input pointer is NULL.\n"};
    const auto refused = [&](kernel run, extent from, extent to, bool expands) {
        band_call call(plane, from, to, {BAND_FIRST, 0, 8, 0, 3}, run == ImageReduce_BandC1 ? 1 : 3,
                       1024);
        char sizes[200];
        snprintf(sizes, sizeof sizes,
                 "Input size parameters: src_width/src_height: %d/%d  dst_width/dst_height: %d/%d "
                 "\n",
                 from.width, from.height, to.width, to.height);
        const char* rule = expands ? "It should be guaranteeed that src_width * 2 <=  dst_width "
                                     "and src_height * 2 <= dst_height\n"
                                   : "It should be guaranteeed that dst_width * 2 <= src_width and "
                                     "dst_height * 2 <= src_height\n";
        support::clear_log();
        EXPECT_EQ(run(&call.task), 0);
        EXPECT_TRUE(support::same_log({{6, rule}, {6, sizes}}, support::take_log()));
        // A null plane is reported instead, before the sizes are looked at.
        band_task no_src = call.task, no_dst = call.task;
        no_src.src = nullptr;
        no_dst.dst = nullptr;
        EXPECT_EQ(run(&no_src), 0);
        EXPECT_EQ(run(&no_dst), 0);
        EXPECT_TRUE(support::same_log({null_line, null_line}, support::take_log()));
        EXPECT_TRUE(call.nothing_written());
    };
    for (const kernel run : {ImageReduce_BandC3, ImageReduce_BandC1}) {
        refused(run, {12, 40}, {7, 20}, false);
        refused(run, {12, 39}, {6, 20}, false);
    }
    refused(ImageExpand_BandC3, {6, 20}, {11, 40}, true);
    refused(ImageExpand_BandC3, {6, 20}, {12, 39}, true);
}

}  // namespace
