// The whole-plane filters: sizes, what stays untouched, and every refusal with its log line.
#include "kernels/whole_plane.h"

#include <gtest/gtest.h>

#include <random>

#include "naive.h"
#include "pool/faults.h"
#include "support/compare.h"
#include "support/guarded_bytes.h"
#include "support/log_capture.h"

namespace {

using naive::bytes;
using naive::extent;
using support::guarded_bytes;

using plane_filter = int32_t (*)(const uint8_t*, int32_t, int32_t, uint8_t*, int32_t, int32_t);

constexpr uint8_t UNTOUCHED = 0xC7;

std::string between(extent from, extent to) {
    return std::to_string(from.width) + "x" + std::to_string(from.height) + " to " +
           std::to_string(to.width) + "x" + std::to_string(to.height);
}

void check_reduction(extent from, extent to, int kind) {
    for (const int32_t channels : {1, 3}) {
        const plane_filter filter = channels == 1 ? ImageDown_ByteNC : ImageDown_ByteC3;
        const bytes src =
            naive::data(kind, naive::plane_bytes(from, channels), static_cast<uint64_t>(to.width));
        guarded_bytes in(src, 5, 0);
        guarded_bytes out(bytes(naive::plane_bytes(to, channels), UNTOUCHED), 64, 64);
        ASSERT_EQ(filter(in.data(), from.width, from.height, out.data(), to.width, to.height), 0);
        ASSERT_EQ(out.content(), naive::reduce(src, from, to, channels)) << between(from, to);
        ASSERT_TRUE(out.intact() && in.intact() && in.content() == src) << between(from, to);
    }
}

TEST(WholePlane, ReducesToHalfAndToLess) {
    support::clear_log();
    for (int32_t width = 4; width <= 40; width += width < 20 ? 1 : 5) {
        for (int32_t height = 4; height <= 40; height += height < 14 ? 1 : 7) {
            check_reduction({width, height}, {width / 2, height / 2}, 4);
            check_reduction({width, height}, {2, 2}, 4);
            check_reduction({width, height}, {2, height / 2}, 5);
            check_reduction({width, height}, {width / 2, 2 + (height - 4) / 4}, 5);
            ASSERT_FALSE(HasFatalFailure());
        }
    }
    for (int kind = 0; kind < 4; ++kind)
        check_reduction({67, 35}, {33, 17}, kind);
    EXPECT_TRUE(support::same_log({}, support::take_log()));
}

void check_expansion(extent from, extent to, int kind) {
    const bytes src =
        naive::data(kind, naive::plane_bytes(from, 3), static_cast<uint64_t>(to.height));
    const bytes before(naive::plane_bytes(to, 3), UNTOUCHED);
    guarded_bytes in(src, 5, 0);
    guarded_bytes out(before, 64, 64);
    ASSERT_EQ(ImageUp_ByteC3(in.data(), from.width, from.height, out.data(), to.width, to.height),
              0);
    // Columns that no source pixel reaches are 0, rows that none reaches stay.
    ASSERT_EQ(out.content(), naive::expand(src, from, to, 0, before)) << between(from, to);
    ASSERT_TRUE(out.intact() && in.intact() && in.content() == src) << between(from, to);
}

TEST(WholePlane, ExpandsToTwiceAndToMore) {
    support::clear_log();
    for (int32_t width = 2; width <= 24; width += width < 12 ? 1 : 3) {
        for (int32_t height = 2; height <= 18; height += height < 6 ? 1 : 4) {
            for (const int32_t wider : {0, 1, 2, 9}) {
                for (const int32_t higher : {0, 1, 2, 5}) {
                    check_expansion({width, height}, {2 * width + wider, 2 * height + higher}, 4);
                    ASSERT_FALSE(HasFatalFailure());
                }
            }
        }
    }
    for (int kind = 0; kind < naive::DATA_KINDS; ++kind)
        check_expansion({37, 9}, {75, 19}, kind);
    EXPECT_TRUE(support::same_log({}, support::take_log()));
}

struct refusal {
    plane_filter filter;
    bool null_src, null_dst;
    extent from, to;
    model::log_line line;
};

void expect_refused(const refusal& r) {
    const bytes src(8192, 9);
    guarded_bytes out(bytes(8192, UNTOUCHED), 64, 64);
    support::clear_log();
    EXPECT_EQ(r.filter(r.null_src ? nullptr : src.data(), r.from.width, r.from.height,
                       r.null_dst ? nullptr : out.data(), r.to.width, r.to.height),
              -1)
        << r.line.text;
    EXPECT_TRUE(support::same_log({r.line}, support::take_log()));
    EXPECT_TRUE(out.intact() && out.content() == bytes(8192, UNTOUCHED)) << r.line.text;
}

const char* const NC_NULL = "function:ImageDown_ByteNC input pointer is null";
const char* const C3_NULL = "Input pointer is NULL.";

model::log_line size_line(const char* prefix, extent from, extent to) {
    char text[200];
    snprintf(text, sizeof text,
             "%sInput size parameters: src_width/src_height: %d/%d  dst_width/dst_height: %d/%d",
             prefix, from.width, from.height, to.width, to.height);
    return {6, text};
}

TEST(WholePlane, RefusesNullPlanesAndBrokenSizes) {
    const extent fine = {8, 8}, half = {4, 4};
    for (const bool second : {false, true}) {
        expect_refused({ImageDown_ByteNC, !second, second, fine, half, {6, NC_NULL}});
        expect_refused({ImageDown_ByteC3, !second, second, fine, half, {6, C3_NULL}});
        expect_refused({ImageUp_ByteC3, !second, second, half, fine, {6, C3_NULL}});
        // The pointers are looked at before the sizes.
        expect_refused({ImageDown_ByteNC, !second, second, fine, {5, 5}, {6, NC_NULL}});
        expect_refused({ImageUp_ByteC3, !second, second, half, {7, 8}, {6, C3_NULL}});
    }
    const extent too_wide = {5, 4}, too_high = {4, 5}, odd = {9, 7};
    for (const auto& [from, to] :
         {std::pair(fine, too_wide), std::pair(fine, too_high), std::pair(odd, half),
          std::pair(extent{2, 8}, extent{1, 4}), std::pair(extent{8, 3}, extent{4, 1})}) {
        expect_refused({ImageDown_ByteNC, false, false, from, to,
                        size_line("function:ImageDown_ByteNC , ", from, to)});
        expect_refused({ImageDown_ByteC3, false, false, from, to, size_line("", from, to)});
    }
    for (const auto& [from, to] : {std::pair(half, extent{7, 8}), std::pair(half, extent{8, 7}),
                                   std::pair(extent{1, 4}, fine), std::pair(extent{4, 1}, fine)}) {
        expect_refused({ImageUp_ByteC3, false, false, from, to, size_line("", from, to)});
    }
}

TEST(WholePlane, ReportsMissingMemory) {
    const extent fine = {8, 10}, half = {4, 5};
    const faults::scope no_memory(faults::call::allocation, faults::every());
    // The one-channel reducer allocates before it looks at its arguments.
    const model::log_line nc = {6, "function:ImageDown_ByteNC , malloc error size:28"};
    expect_refused({ImageDown_ByteNC, false, false, fine, half, nc});
    expect_refused({ImageDown_ByteNC, true, true, fine, half, nc});
    expect_refused({ImageDown_ByteNC, false, false, fine, {4, 9}, nc});
    expect_refused({ImageDown_ByteC3, false, false, fine, half, {3, "malloc error size:78"}});
    expect_refused({ImageDown_ByteC3, true, false, fine, half, {6, C3_NULL}});
    expect_refused({ImageUp_ByteC3, false, false, half, fine, {6, "malloc error size:78"}});
    expect_refused({ImageUp_ByteC3, false, false, half, {7, 8}, size_line("", half, {7, 8})});
}

TEST(WholePlane, SizesBelowOne) {
    // A negative product is no size of a buffer.
    expect_refused({ImageDown_ByteNC,
                    false,
                    false,
                    {8, 10},
                    {-4, 5},
                    {6, "function:ImageDown_ByteNC , malloc error size:ffffffd8"}});
    expect_refused(
        {ImageDown_ByteC3, false, false, {8, 10}, {-4, 5}, {3, "malloc error size:ffffff88"}});
    const bytes src(1024, 9);
    guarded_bytes out(bytes(1024, UNTOUCHED), 64, 64);
    for (const extent to : {extent{0, 4}, extent{4, 0}, extent{0, 0}}) {
        for (const plane_filter filter : {ImageDown_ByteNC, ImageDown_ByteC3}) {
            EXPECT_EQ(filter(src.data(), 8, 8, out.data(), to.width, to.height), 0);
        }
    }
    EXPECT_TRUE(support::same_log({}, support::take_log()));
    EXPECT_TRUE(out.intact() && out.content() == bytes(1024, UNTOUCHED));
}

TEST(WholePlane, FreesItsScratch) {
    const bytes src(2048, 9);
    bytes out(2048);
    const int64_t before = faults::live_blocks();
    ImageDown_ByteNC(src.data(), 20, 20, out.data(), 10, 10);
    ImageDown_ByteNC(nullptr, 20, 20, out.data(), 10, 10);
    ImageDown_ByteNC(src.data(), 20, 20, out.data(), 11, 10);
    ImageDown_ByteC3(src.data(), 20, 20, out.data(), 10, 10);
    ImageUp_ByteC3(src.data(), 10, 10, out.data(), 20, 20);
    ImageUp_ByteC3(src.data(), 10, 0, out.data(), 20, 20);
    EXPECT_EQ(faults::live_blocks(), before);
}

}  // namespace
