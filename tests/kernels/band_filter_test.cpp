// The band filters: bands of a level give what the whole level gives, reading their rows only.
#include <gtest/gtest.h>

#include "kernels/band_filters.h"
#include "kernels/whole_plane.h"
#include "naive.h"
#include "support/compare.h"
#include "support/guarded_bytes.h"
#include "support/log_capture.h"
#include "support/scene.h"

namespace {

using naive::bytes;
using naive::extent;
using naive::UNTOUCHED;
using support::guarded_bytes;
using kernel = int32_t (*)(const band_task*);

// Rows of one band: `src` of its input level and `dst` of its output level.
struct band {
    int32_t pos, src_start, src_rows, dst_start, dst_rows;
};

// A record with valid planes for one call; the tests change single fields of it.
struct band_call {
    guarded_bytes src, dst, scratch;
    pixel_layout src_layout, dst_layout;
    band_task task;

    band_call(const bytes& plane, extent from, extent to, const band& b, int32_t channels,
              size_t dst_bytes, uint8_t scratch_fill = UNTOUCHED)
        : src(plane, 0, 0),
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
    bool dst_kept() const {
        return guards_kept() && dst.content() == bytes(dst.content().size(), UNTOUCHED);
    }
    bool nothing_written() const {
        return dst_kept() && scratch.content() == bytes(scratch.content().size(), UNTOUCHED);
    }
};

// Cuts a step between a level and its coarser one into bands of `unit` coarser rows: those that a
// reduction reaches, or those that an expansion does.
std::vector<band> bands_of(int32_t fine, int32_t coarse, int32_t unit, bool expands) {
    std::vector<band> bands;
    for (int32_t begin = 0; begin < coarse; begin += unit) {
        const int32_t end = std::min(begin + unit, coarse);
        const bool first = begin == 0, last = end == coarse;
        const int32_t pos = first ? BAND_FIRST : last ? BAND_LAST : BAND_MIDDLE;
        const int32_t above = first ? 0 : 1, below = last ? 0 : 1;
        const int32_t fine_end = last ? fine : 2 * end + (expands ? 0 : 1);
        const int32_t fine_begin = 2 * begin - (expands ? 0 : 2 * above);
        const int32_t fine_rows = fine_end - fine_begin;
        if (expands) {
            bands.push_back(
                {pos, begin - above, end - begin + above + below, fine_begin, fine_rows});
        } else {
            bands.push_back({pos, fine_begin, fine_rows, begin, end - begin});
        }
    }
    return bands;
}

// The kernel gives each band's rows of `whole`, whatever the rows are that it may not read.
void check_bands(kernel run, const std::vector<band>& bands, const bytes& plane, extent from,
                 const bytes& whole, extent to, int32_t channels) {
    const size_t src_row = naive::plane_bytes({from.width, 1}, channels);
    const size_t dst_row = naive::plane_bytes({to.width, 1}, channels);
    for (const band& b : bands) {
        bytes source = naive::data(4, plane.size(), 77);
        const auto start = static_cast<ptrdiff_t>(src_row) * b.src_start;
        const bytes read = naive::rows_of(plane, src_row, b.src_start, b.src_rows);
        std::copy(read.begin(), read.end(), source.begin() + start);
        band_call call(source, from, to, b, channels, dst_row * static_cast<size_t>(b.dst_rows), 0);
        if (run == ImageExpand_BandC3) {
            call.task.src += start;
            call.src_layout.offset = 1 << 20;  // not added
            call.task.dst_rows = -7;           // not read
        } else {
            call.src_layout.offset = static_cast<int32_t>(start);
        }
        ASSERT_EQ(run(&call.task), 0);
        ASSERT_EQ(call.dst.content(), naive::rows_of(whole, dst_row, b.dst_start, b.dst_rows))
            << from.width << "x" << from.height << " to " << to.width << "x" << to.height
            << ", row " << b.dst_start << " of " << bands.size() << " bands";
        ASSERT_TRUE(call.guards_kept());
    }
}

TEST(BandFilters, BandsMakeUpALevel) {
    support::clear_log();
    support::dice dice(11);
    for (int32_t height = 4; height <= 200; height += height < 50 ? 1 : 9) {
        const int32_t width = dice.between(4, 70), coarse = height / 2, kind = dice.between(2, 5);
        const extent fine = {width, height}, half = {width / 2, coarse};
        // What no column of the source reaches keeps what the scratch holds: here 0, as in a plane.
        const extent wider = {width + dice.between(0, 5), height};
        const bytes c1 = naive::data(kind, naive::plane_bytes(fine, 1), 1);
        const bytes c3 = naive::data(kind, naive::plane_bytes(fine, 3), 1);
        bytes half1(naive::plane_bytes(half, 1)), half3(3 * half1.size());
        bytes wide3(naive::plane_bytes(wider, 3));
        ImageDown_ByteNC(c1.data(), width, height, half1.data(), half.width, coarse);
        ImageDown_ByteC3(c3.data(), width, height, half3.data(), half.width, coarse);
        ImageUp_ByteC3(half3.data(), half.width, coarse, wide3.data(), wider.width, height);
        for (const int32_t unit : {1, 2, 3, 8, coarse / 4}) {
            if (unit < 1 || unit >= coarse) continue;
            const auto down = bands_of(height, coarse, unit, false);
            check_bands(ImageReduce_BandC1, down, c1, fine, half1, half, 1);
            check_bands(ImageReduce_BandC3, down, c3, fine, half3, half, 3);
            check_bands(ImageExpand_BandC3, bands_of(height, coarse, unit, true), half3, half,
                        wide3, wider, 3);
            ASSERT_FALSE(HasFatalFailure());
        }
    }
    EXPECT_TRUE(support::same_log({}, support::take_log()));
}

TEST(BandFilters, WithoutRowsNothingHappens) {
    support::clear_log();
    const extent fine = {12, 40}, coarse = {6, 20};
    const bytes plane(naive::plane_bytes(fine, 3), 200);
    const auto run = [&](kernel filter, const band& b, bool narrow = false) {
        const bool expands = filter == ImageExpand_BandC3;
        const extent from = narrow ? extent{2, 40} : expands ? coarse : fine;
        const extent to = narrow ? extent{1, 20} : expands ? fine : coarse;
        auto call = std::make_unique<band_call>(plane, from, to, b,
                                                filter == ImageReduce_BandC1 ? 1 : 3, 2048);
        EXPECT_EQ(filter(&call->task), 0);
        return call;
    };
    for (const kernel filter : {ImageReduce_BandC3, ImageReduce_BandC1, ImageExpand_BandC3}) {
        for (const int32_t pos : {BAND_FIRST, BAND_MIDDLE, BAND_LAST}) {
            EXPECT_TRUE(run(filter, {pos, 0, 0, 0, 2})->nothing_written()) << pos;
            EXPECT_TRUE(run(filter, {pos, 0, -3, 0, 2})->nothing_written()) << pos;
        }
        // Any other position of a band fills the scratch at most.
        for (const int32_t pos : {0, 4, -1})
            EXPECT_TRUE(run(filter, {pos, 0, 11, 0, 4})->dst_kept()) << pos;
    }
    // So does a middle band of context alone; a level too narrow to be filtered is left alone.
    EXPECT_TRUE(run(ImageExpand_BandC3, {BAND_MIDDLE, 0, 1, 0, 0})->dst_kept());
    EXPECT_TRUE(run(ImageExpand_BandC3, {BAND_MIDDLE, 0, 2, 0, 0})->dst_kept());
    EXPECT_TRUE(run(ImageReduce_BandC3, {BAND_FIRST, 0, 8, 0, 3}, true)->nothing_written());
    EXPECT_TRUE(support::same_log({}, support::take_log()));
}

TEST(BandFilters, RefusalsAreLogged) {
    const bytes plane(8192, 200);
    const model::log_line null_line = {6, "Input pointer is NULL.\n"};
    const auto refused = [&](kernel run, extent from, extent to) {
        band_call call(plane, from, to, {BAND_FIRST, 0, 8, 0, 3}, run == ImageReduce_BandC1 ? 1 : 3,
                       1024);
        char sizes[200];
        snprintf(sizes, sizeof sizes,
                 "Input size parameters: src_width/src_height: %d/%d  dst_width/dst_height: %d/%d "
                 "\n",
                 from.width, from.height, to.width, to.height);
        const char* rule = run == ImageExpand_BandC3
                               ? "It should be guaranteeed that src_width * 2 <=  dst_width "
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
        refused(run, {12, 40}, {7, 20});
        refused(run, {12, 39}, {6, 20});
    }
    refused(ImageExpand_BandC3, {6, 20}, {11, 40});
    refused(ImageExpand_BandC3, {6, 20}, {12, 39});
}

}  // namespace
