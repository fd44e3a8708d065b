// SPDX-License-Identifier: Apache-2.0
// The band filters: bands of a level give what the whole level gives, reading their rows only.
#include <gtest/gtest.h>

#include <algorithm>

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
using naive::plane_bytes;
using naive::UNTOUCHED;
using support::guarded_bytes;
using kernel = int32_t (*)(const band_task*);

int32_t channels_of(kernel run) {
    return run == ImageReduce_BandC1 ? 1 : 3;
}

// Rows of one band: `src` of its input level and `dst` of its output level.
struct band {
    int32_t pos, src_start, src_rows, dst_start, dst_rows;
};

// A record for one call, with planes of its own.
struct band_call {
    guarded_bytes src, dst, scratch;
    pixel_layout layout;
    band_task task = band_task();

    band_call(kernel run, const bytes& plane, extent from, extent to, const band& b)
        : src(plane, 0, 0),
          dst(bytes(plane_bytes({to.width, b.dst_rows}, channels_of(run)), UNTOUCHED), 64, 64),
          scratch(
              bytes(plane_bytes({to.width, std::max(b.src_rows, 0)}, channels_of(run)), UNTOUCHED),
              64, 64),
          layout{0, channels_of(run)} {
        task.src = src.data();
        task.src_width = from.width;
        task.src_height = from.height;
        task.src_rows = b.src_rows;
        task.dst = dst.data();
        task.dst_width = to.width;
        task.dst_height = to.height;
        task.dst_rows = b.dst_rows;
        task.band_pos = b.pos;
        task.src_geom = task.dst_geom = &layout;
        task.scratch = scratch.data();
    }
};

// The band with rows [begin, end) of the coarser level and those of the finer one that a reduction
// reaches or an expansion makes.
band band_of(kernel run, int32_t fine, int32_t coarse, int32_t begin, int32_t end) {
    const bool first = begin == 0, last = end == coarse;
    const int32_t pos = first ? BAND_FIRST : last ? BAND_LAST : BAND_MIDDLE;
    const int32_t above = first ? 0 : 1, below = last ? 0 : 1;
    if (run == ImageExpand_BandC3) {
        const int32_t fine_rows = (last ? fine : 2 * end) - 2 * begin;
        return {pos, begin - above, end - begin + above + below, 2 * begin, fine_rows};
    }
    const int32_t fine_begin = 2 * (begin - above), fine_end = last ? fine : 2 * end + 1;
    return {pos, fine_begin, fine_end - fine_begin, begin, end - begin};
}

// Bands of `unit` coarser rows give their rows of `whole`, whatever the rows are that they may not
// read.
void check_bands(kernel run, const bytes& plane, extent from, const bytes& whole, extent to,
                 int32_t unit) {
    const size_t src_row = plane_bytes({from.width, 1}, channels_of(run));
    const size_t dst_row = plane_bytes({to.width, 1}, channels_of(run));
    const auto [coarse, fine] = std::minmax({from.height, to.height});
    for (int32_t begin = 0; begin < coarse; begin += unit) {
        const band b = band_of(run, fine, coarse, begin, std::min(begin + unit, coarse));
        bytes source = naive::data(4, plane.size(), 77);
        const bytes read = naive::rows_of(plane, src_row, b.src_start, b.src_rows);
        const auto start = static_cast<ptrdiff_t>(src_row) * b.src_start;
        std::copy(read.begin(), read.end(), source.begin() + start);
        band_call call(run, source, from, to, b);
        call.layout.offset = static_cast<int32_t>(start);
        if (run == ImageExpand_BandC3) {
            call.task.src += start;
            call.layout.offset = 1 << 20;  // not added
            call.task.dst_rows = -7;       // not read
        }
        ASSERT_EQ(run(&call.task), 0);
        ASSERT_EQ(call.dst.content(), naive::rows_of(whole, dst_row, b.dst_start, b.dst_rows))
            << from.width << "x" << from.height << " to " << to.width << "x" << to.height
            << ", row " << b.dst_start << " in bands of " << unit;
        ASSERT_TRUE(call.dst.intact() && call.scratch.intact());
    }
}

TEST(BandFilters, BandsMakeUpALevel) {
    support::clear_log();
    support::dice dice(11);
    for (int32_t height = 4; height <= 200; height += height < 50 ? 1 : 9) {
        const int32_t width = dice.between(4, 70), coarse = height / 2, kind = dice.between(2, 5);
        const extent fine = {width, height}, half = {width / 2, coarse};
        const bytes c1 = naive::data(kind, plane_bytes(fine, 1), 1);
        const bytes c3 = naive::data(kind, plane_bytes(fine, 3), 1);
        bytes half1(plane_bytes(half, 1)), half3(plane_bytes(half, 3)), up3(plane_bytes(fine, 3));
        ImageDown_ByteNC(c1.data(), width, height, half1.data(), half.width, coarse);
        ImageDown_ByteC3(c3.data(), width, height, half3.data(), half.width, coarse);
        ImageUp_ByteC3(half3.data(), half.width, coarse, up3.data(), width, height);
        for (const int32_t unit : {1, 2, 3, 8, coarse / 4}) {
            if (unit < 1 || unit >= coarse) continue;
            check_bands(ImageReduce_BandC1, c1, fine, half1, half, unit);
            check_bands(ImageReduce_BandC3, c3, fine, half3, half, unit);
            check_bands(ImageExpand_BandC3, half3, half, up3, fine, unit);
            ASSERT_FALSE(HasFatalFailure());
        }
    }
    EXPECT_TRUE(support::same_log({}, support::take_log()));
}

// Pixels that lie apart give what packed ones give, and what is between them stays.
TEST(BandFilters, PixelsApart) {
    const extent fine = {23, 40}, coarse = {11, 20};
    const auto spread = [](const bytes& packed, size_t step) {
        bytes apart(packed.size() / 3 * step, UNTOUCHED);
        for (size_t i = 0; i < packed.size(); ++i)
            apart[i / 3 * step + i % 3] = packed[i];
        return apart;
    };
    for (const kernel run : {ImageReduce_BandC3, ImageExpand_BandC3}) {
        const bool expands = run == ImageExpand_BandC3;
        const extent from = expands ? coarse : fine, to = expands ? fine : coarse;
        for (const auto& [begin, end] : {std::pair(0, 5), std::pair(5, 12), std::pair(12, 20)}) {
            const band b = band_of(run, fine.height, coarse.height, begin, end);
            const bytes plane = naive::data(4, plane_bytes({from.width, b.src_rows}, 3), 8);
            band_call packed(run, plane, from, to, b);
            run(&packed.task);
            for (const int32_t step : {4, 5}) {
                const auto wide = static_cast<size_t>(step);
                const bytes source = spread(plane, wide);
                bytes out(plane_bytes({to.width, b.dst_rows}, step), UNTOUCHED);
                bytes scratch(plane_bytes({to.width, b.src_rows}, step), UNTOUCHED);
                const pixel_layout layout = {0, step};
                band_task task = packed.task;
                task.src = source.data();
                task.dst = out.data();
                task.scratch = scratch.data();
                task.src_geom = task.dst_geom = &layout;
                EXPECT_EQ(run(&task), 0);
                EXPECT_EQ(out, spread(packed.dst.content(), wide)) << begin << ", step " << step;
            }
        }
    }
}

// Row 0 of a first band is there in any case.
TEST(BandFilters, FirstBandWithoutRows) {
    const extent fine = {12, 40}, coarse = {6, 20};
    const bytes plane = naive::data(4, plane_bytes({12, 8}, 3), 9);
    band_call whole(ImageReduce_BandC3, plane, fine, coarse, {BAND_FIRST, 0, 8, 0, 1});
    EXPECT_EQ(ImageReduce_BandC3(&whole.task), 0);
    const bytes row = whole.dst.content();
    for (const int32_t rows : {0, -2}) {
        band_call none(ImageReduce_BandC3, plane, fine, coarse, {BAND_FIRST, 0, 8, 0, 1});
        none.task.dst_rows = rows;
        EXPECT_EQ(ImageReduce_BandC3(&none.task), 0);
        EXPECT_TRUE(none.dst.holds(row));
    }
}

// The call writes nothing, but for the scratch where that is said, and logs these lines.
void expect_kept(kernel run, extent from, extent to, const band& b, bool may_fill_scratch = false,
                 const model::log_lines& log = {}) {
    const bytes plane(8192, 200);
    const model::log_line null_line = {6, "Input pointer is NULL.\n"};
    band_call call(run, plane, from, to, b);
    support::clear_log();
    EXPECT_EQ(run(&call.task), 0);
    EXPECT_TRUE(support::same_log(log, support::take_log()));
    // A null plane is reported instead, before anything else is looked at.
    call.task.src = nullptr;
    EXPECT_EQ(run(&call.task), 0);
    call.task.src = call.src.data();
    call.task.dst = nullptr;
    EXPECT_EQ(run(&call.task), 0);
    EXPECT_TRUE(support::same_log({null_line, null_line}, support::take_log()));
    const auto kept = [](const guarded_bytes& g) {
        return g.intact() && g.content() == bytes(g.content().size(), UNTOUCHED);
    };
    EXPECT_TRUE(kept(call.dst) && call.scratch.intact());
    EXPECT_TRUE(may_fill_scratch || kept(call.scratch));
}

TEST(BandFilters, WithoutRowsNothingHappens) {
    const extent fine = {12, 40}, coarse = {6, 20};
    for (const kernel run : {ImageReduce_BandC3, ImageReduce_BandC1, ImageExpand_BandC3}) {
        const bool expands = run == ImageExpand_BandC3;
        const extent from = expands ? coarse : fine, to = expands ? fine : coarse;
        for (const int32_t pos : {BAND_FIRST, BAND_MIDDLE, BAND_LAST}) {
            expect_kept(run, from, to, {pos, 0, 0, 0, 2});
            expect_kept(run, from, to, {pos, 0, -3, 0, 2});
        }
        // Any other position of a band fills the scratch at most.
        for (const int32_t pos : {0, 4, -1})
            expect_kept(run, from, to, {pos, 0, 11, 0, expands ? 22 : 4}, true);
    }
    // So does a middle band of context alone; a level too narrow to be filtered is left alone.
    expect_kept(ImageExpand_BandC3, coarse, fine, {BAND_MIDDLE, 0, 1, 0, 4}, true);
    expect_kept(ImageExpand_BandC3, coarse, fine, {BAND_MIDDLE, 0, 2, 0, 4}, true);
    expect_kept(ImageReduce_BandC3, {2, 40}, {1, 20}, {BAND_FIRST, 0, 8, 0, 3});
}

TEST(BandFilters, RefusesBrokenSizes) {
    const auto expect_refused = [](kernel run, extent from, extent to, const char* rule) {
        char sizes[200];
        snprintf(sizes, sizeof sizes,
                 "Input size parameters: src_width/src_height: %d/%d  dst_width/dst_height: %d/%d "
                 "\n",
                 from.width, from.height, to.width, to.height);
        expect_kept(run, from, to, {BAND_FIRST, 0, 8, 0, 3}, false, {{6, rule}, {6, sizes}});
    };
    for (const kernel run : {ImageReduce_BandC3, ImageReduce_BandC1}) {
        for (const extent from : {extent{12, 39}, extent{11, 40}})
            expect_refused(run, from, {6, 20},
                           "It should be guaranteeed that dst_width * 2 <= src_width and "
                           "dst_height * 2 <= src_height\n");
    }
    for (const extent to : {extent{11, 40}, extent{12, 39}})
        expect_refused(ImageExpand_BandC3, {6, 20}, to,
                       "It should be guaranteeed that src_width * 2 <=  dst_width "
                       "and src_height * 2 <= dst_height\n");
}

}  // namespace
