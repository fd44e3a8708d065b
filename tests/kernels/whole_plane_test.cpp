// SPDX-License-Identifier: Apache-2.0
// The whole-plane filters: sizes, what stays untouched, and every refusal with its log line.
#include "kernels/whole_plane.h"

#include <gtest/gtest.h>

#include "naive.h"
#include "pool/faults.h"
#include "support/compare.h"
#include "support/guarded_bytes.h"
#include "support/log_capture.h"

namespace {

using naive::bytes;
using naive::extent;
using naive::UNTOUCHED;
using support::guarded_bytes;

using plane_filter = int32_t (*)(const uint8_t*, int32_t, int32_t, uint8_t*, int32_t, int32_t);
constexpr plane_filter NC = ImageDown_ByteNC, C3 = ImageDown_ByteC3, UP = ImageUp_ByteC3;

bytes filtered(plane_filter filter, const bytes& src, extent from, extent to) {
    guarded_bytes in(src, 5, 0),
        out(bytes(naive::plane_bytes(to, filter == NC ? 1 : 3), UNTOUCHED), 64, 64);
    EXPECT_EQ(filter(in.data(), from.width, from.height, out.data(), to.width, to.height), 0);
    EXPECT_TRUE(out.intact() && in.intact() && in.content() == src);
    return out.content();
}

// A smaller reduction is the corner of the full one. A larger expansion has it in its corner, next
// to columns of 0 and above rows that stay.
void check_corner(plane_filter filter, extent from, extent full, extent other) {
    const size_t step = filter == NC ? 1 : 3;
    const bytes src = naive::data(4, naive::plane_bytes(from, static_cast<int32_t>(step)), 3);
    const bytes whole = filtered(filter, src, from, full),
                part = filtered(filter, src, from, other);
    const auto full_row = static_cast<size_t>(full.width) * step,
               row = static_cast<size_t>(other.width) * step;
    for (size_t i = 0; i < part.size(); ++i) {
        const size_t x = i % row, y = i / row;
        const uint8_t expected = y >= static_cast<size_t>(full.height) ? UNTOUCHED
                                 : x >= full_row                       ? 0
                                                                       : whole[y * full_row + x];
        ASSERT_EQ(part[i], expected) << from.width << "x" << from.height << " to " << other.width
                                     << "x" << other.height << ", byte " << i;
    }
}

// Halves and doubles are what the blends of all sizes are made of; here are the other sizes.
TEST(WholePlane, OtherSizesThanHalfAndTwice) {
    support::clear_log();
    for (int32_t width = 4; width <= 40; width += width < 20 ? 1 : 5) {
        for (int32_t height = 4; height <= 40; height += height < 14 ? 1 : 7) {
            const int32_t w = width / 2, h = height / 2;
            for (const plane_filter down : {NC, C3}) {
                for (const extent to : {extent{2, 2}, {2, h}, {w, 2 + (height - 4) / 4}})
                    check_corner(down, {width, height}, {w, h}, to);
            }
            for (const int32_t more : {1, 2, 9}) {
                check_corner(UP, {w, h}, {2 * w + 1, 2 * h}, {2 * w + more, 2 * h});
                check_corner(UP, {w, h}, {2 * w + 1, 2 * h + 1}, {2 * w + 1, 2 * h + more});
            }
            ASSERT_FALSE(HasFatalFailure());
        }
    }
    EXPECT_TRUE(support::same_log({}, support::take_log()));
}

// A call that writes nothing: it is refused with one line, or has nothing to do and logs none.
void expect_kept(plane_filter filter, extent from, extent to, const model::log_lines& log,
                 bool null_src = false, bool null_dst = false) {
    SCOPED_TRACE(log.empty() ? "nothing to do" : log[0].text);
    const bytes src(8192, 9);
    guarded_bytes out(bytes(8192, UNTOUCHED), 64, 64);
    const int64_t blocks = faults::live_blocks();
    support::clear_log();
    EXPECT_EQ(filter(null_src ? nullptr : src.data(), from.width, from.height,
                     null_dst ? nullptr : out.data(), to.width, to.height),
              log.empty() ? 0 : -1);
    EXPECT_EQ(faults::live_blocks(), blocks);
    EXPECT_TRUE(support::same_log(log, support::take_log()));
    EXPECT_TRUE(out.intact() && out.content() == bytes(8192, UNTOUCHED));
}

const model::log_line NC_NULL = {6, "function:ImageDown_ByteNC input pointer is null"};
const model::log_line C3_NULL = {6, "Input pointer is NULL."};
const extent fine = {8, 8}, half = {4, 4};

model::log_line size_line(plane_filter filter, extent from, extent to) {
    char text[200];
    snprintf(text, sizeof text,
             "%sInput size parameters: src_width/src_height: %d/%d  dst_width/dst_height: %d/%d",
             filter == NC ? "function:ImageDown_ByteNC , " : "", from.width, from.height, to.width,
             to.height);
    return {6, text};
}

TEST(WholePlane, RefusesNullPlanesAndBrokenSizes) {
    // The pointers are looked at before the sizes.
    for (const bool second : {false, true}) {
        for (const extent to : {half, extent{5, 5}}) {
            expect_kept(NC, fine, to, {NC_NULL}, !second, second);
            expect_kept(C3, fine, to, {C3_NULL}, !second, second);
        }
        expect_kept(UP, half, fine, {C3_NULL}, !second, second);
        expect_kept(UP, half, {7, 8}, {C3_NULL}, !second, second);
    }
    struct sizes {
        extent from, to;
    };
    for (const auto& [from, to] : {sizes{fine, {5, 4}}, sizes{fine, {4, 5}}, sizes{{9, 7}, half},
                                   sizes{{2, 8}, {1, 4}}, sizes{{8, 3}, {4, 1}}}) {
        expect_kept(NC, from, to, {size_line(NC, from, to)});
        expect_kept(C3, from, to, {size_line(C3, from, to)});
    }
    for (const auto& [from, to] :
         {sizes{half, {7, 8}}, sizes{half, {8, 7}}, sizes{{1, 4}, fine}, sizes{{4, 1}, fine}}) {
        expect_kept(UP, from, to, {size_line(UP, from, to)});
    }
}

TEST(WholePlane, ReportsMissingMemory) {
    // A negative product is no size of a buffer.
    const extent tall = {8, 10}, below = {-4, 5};
    expect_kept(NC, tall, below, {{6, "function:ImageDown_ByteNC , malloc error size:ffffffd8"}});
    expect_kept(C3, tall, below, {{3, "malloc error size:ffffff88"}});
    const faults::scope no_memory(faults::call::allocation, faults::every());
    // The one-channel reducer allocates before it looks at its arguments.
    const model::log_lines nc = {{6, "function:ImageDown_ByteNC , malloc error size:28"}};
    expect_kept(NC, tall, {4, 5}, nc);
    expect_kept(NC, tall, {4, 5}, nc, true, true);
    expect_kept(NC, tall, {4, 9}, nc);
    expect_kept(C3, tall, {4, 5}, {{3, "malloc error size:78"}});
    expect_kept(C3, tall, {4, 5}, {C3_NULL}, true);
    expect_kept(UP, {4, 5}, tall, {{6, "malloc error size:78"}});
    expect_kept(UP, half, {7, 8}, {size_line(UP, half, {7, 8})});
}

TEST(WholePlane, SidesOfZeroHaveNothingToDo) {
    for (const extent to : {extent{0, 4}, extent{4, 0}, extent{0, 0}}) {
        expect_kept(NC, fine, to, {});
        expect_kept(C3, fine, to, {});
    }
    expect_kept(UP, {4, 0}, fine, {});
}

}  // namespace
