// The bilinear resize and the nearest-neighbour one: known answers and a sample-wise reference.
#include "blend/resize.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>

#include "api/zoom_plane.h"
#include "kernels/naive.h"
#include "model/geometry.h"
#include "pool/faults.h"
#include "support/guarded_bytes.h"
#include "support/scene.h"

namespace {

// A rectangle resized in two bands.
int32_t resize_rectangle(const picture* from, int32_t src_width, int32_t src_height, uint8_t* dst,
                         int32_t dst_width, int32_t dst_height) {
    rectangle_resize resize = {*from,     src_width,  src_height, dst,
                               dst_width, dst_height, nullptr,    nullptr};
    const bool opened = open_resize(&resize);
    if (opened) {
        resize_band(&resize, 3, dst_height / 3, dst_height);
        resize_band(&resize, 0, 0, dst_height / 3);
    }
    close_resize(&resize);
    return opened ? 0 : -1;
}

using naive::bytes;
using naive::extent;
using support::guarded_bytes;

constexpr uint8_t UNTOUCHED = 0xC7;

int64_t step_of(int64_t from, int64_t to) {
    return to == 1 ? 0 : (from * 128 + to / 2 - 128) / (to - 1);
}

// Sample i of a line of `to` samples, read with at(k).
template <class At>
uint8_t linear_sample(const At& at, int32_t from, int32_t to, int32_t i) {
    const int64_t pos = i * step_of(from, to), nearest = (pos + 64) >> 7;
    const int64_t a = nearest * 128 < pos ? nearest : nearest - 1, b = a + 1;
    const int64_t weight_a = 128 - std::abs(pos - a * 128),
                  weight_b = 128 - std::abs(b * 128 - pos);
    const int64_t last = from - 1;
    const int64_t sum = at(std::clamp(a, int64_t{0}, last)) * weight_a +
                        at(std::clamp(b, int64_t{0}, last)) * weight_b;
    return static_cast<uint8_t>((sum + 64) >> 7);
}

bytes linear_rows(const bytes& src, extent from, int32_t width, int32_t channels) {
    bytes out(naive::plane_bytes({width, from.height}, channels));
    for (size_t i = 0; i < out.size(); ++i) {
        const auto step = static_cast<size_t>(channels);
        const size_t c = i % step, pixel = i / step, y = pixel / static_cast<size_t>(width);
        const auto at = [&](int64_t k) -> int64_t {
            return src[(y * static_cast<size_t>(from.width) + static_cast<size_t>(k)) * step + c];
        };
        out[i] = linear_sample(at, from.width, width,
                               static_cast<int32_t>(pixel % static_cast<size_t>(width)));
    }
    return out;
}

bytes linear_columns(const bytes& src, extent from, int32_t height, int32_t channels) {
    bytes out(naive::plane_bytes({from.width, height}, channels));
    const size_t row = naive::plane_bytes({from.width, 1}, channels);
    for (size_t i = 0; i < out.size(); ++i) {
        const auto at = [&](int64_t k) -> int64_t {
            return src[static_cast<size_t>(k) * row + i % row];
        };
        out[i] = linear_sample(at, from.height, height, static_cast<int32_t>(i / row));
    }
    return out;
}

void check_resize(extent from, extent to, int32_t channels, int kind) {
    SCOPED_TRACE(std::to_string(from.width) + "x" + std::to_string(from.height) + " to " +
                 std::to_string(to.width) + "x" + std::to_string(to.height));
    const bytes src = naive::data(kind, naive::plane_bytes(from, channels), 9);
    guarded_bytes in(src, 0, 0);
    guarded_bytes out(bytes(naive::plane_bytes(to, channels), UNTOUCHED), 64, 64);
    ASSERT_EQ(
        resize_plane(in.data(), out.data(), from.width, from.height, to.width, to.height, channels),
        0);
    const bytes rows = linear_rows(src, from, to.width, channels);
    ASSERT_EQ(out.content(), linear_columns(rows, {to.width, from.height}, to.height, channels));
    ASSERT_TRUE(out.intact());
    if (from.width == to.width && from.height == to.height) {
        ASSERT_EQ(out.content(), src);
    }
    // The passes alone.
    guarded_bytes wide(bytes(rows.size(), UNTOUCHED), 64, 64);
    resize_rows(in.data(), from.width, wide.data(), to.width, from.height, channels);
    ASSERT_TRUE(wide.intact() && wide.content() == rows);
    guarded_bytes high(bytes(naive::plane_bytes({from.width, to.height}, channels), UNTOUCHED), 64,
                       64);
    resize_cols(in.data(), from.height, high.data(), from.width, to.height, channels);
    ASSERT_TRUE(high.intact() && high.content() == linear_columns(src, from, to.height, channels));
}

TEST(Resize, ManySizesAndChannels) {
    support::dice dice(21);
    for (int round = 0; round < 250; ++round) {
        const extent from = {dice.between(1, 60), dice.between(1, 40)};
        const extent to = {dice.between(1, 90), dice.between(1, 60)};
        check_resize(from, to, 1 + round % 4, dice.between(0, 5));
        ASSERT_FALSE(HasFatalFailure());
    }
    for (int32_t side = 1; side <= 40; ++side)
        check_resize({side, 41 - side}, {side, 41 - side}, 3, 4);
    check_resize({700, 3}, {1500, 5}, 1, 4);
    check_resize({3, 700}, {2, 33}, 3, 4);
}

// The same from a rectangle of a frame, which may reach outside.
TEST(Resize, RectanglesOfFrames) {
    support::dice dice(23);
    for (int round = 0; round < 250; ++round) {
        const extent frame = {dice.between(1, 60), dice.between(1, 50)};
        const extent from = {dice.between(1, 50), dice.between(1, 40)};
        const extent to = round % 8 == 0 ? from : extent{dice.between(1, 90), dice.between(1, 70)};
        const int32_t reach = round % 2 == 0 ? 30 : 0;
        const int32_t x = dice.between(-reach, frame.width - 1 + reach);
        const int32_t y = dice.between(-reach, frame.height - 1 + reach);
        model::frame pixels = {frame.width, frame.height,
                               naive::data(4, naive::plane_bytes(frame, 4), 6)};
        const bytes packed = model::read_rectangle(pixels, x, y, from.width, from.height);
        const bytes rows = linear_rows(packed, from, to.width, 3);
        const bytes expected = linear_columns(rows, {to.width, from.height}, to.height, 3);
        guarded_bytes in(pixels.data, 0, 0), out(bytes(expected.size(), UNTOUCHED), 64, 64);
        const picture rectangle = frame_picture(in.data(), frame.width, frame.height, x, y);
        ASSERT_EQ(
            resize_rectangle(&rectangle, from.width, from.height, out.data(), to.width, to.height),
            0);
        ASSERT_TRUE(out.content() == expected && out.intact())
            << from.width << "x" << from.height << " at " << x << "," << y << " of " << frame.width
            << "x" << frame.height << " to " << to.width << "x" << to.height;
        for (int n = 0; n < 8; ++n) {
            const int64_t blocks = faults::live_blocks();
            guarded_bytes target(bytes(expected.size(), UNTOUCHED), 64, 64);
            const faults::scope fault(faults::call::allocation, faults::nth(n));
            const int32_t status = resize_rectangle(&rectangle, from.width, from.height,
                                                    target.data(), to.width, to.height);
            ASSERT_EQ(status, fault.calls() > n ? -1 : 0);
            ASSERT_TRUE(target.content() ==
                        (status == 0 ? expected : bytes(expected.size(), UNTOUCHED)));
            ASSERT_EQ(faults::live_blocks(), blocks);
        }
    }
}

TEST(Resize, KnownAnswers) {
    const uint8_t two[2] = {0, 128}, three[3] = {7, 99, 200};
    uint8_t four[4], one[1];
    resize_rows(two, 2, four, 4, 1, 1);
    EXPECT_EQ(std::vector<uint8_t>(four, four + 4), (std::vector<uint8_t>{0, 43, 86, 128}));
    resize_cols(two, 2, four, 1, 4, 1);
    EXPECT_EQ(std::vector<uint8_t>(four, four + 4), (std::vector<uint8_t>{0, 43, 86, 128}));
    resize_rows(three, 3, one, 1, 1, 1);
    EXPECT_EQ(one[0], 7);
}

TEST(Resize, NothingToDoAndNoMemory) {
    const bytes src(256, 3);
    guarded_bytes out(bytes(256, UNTOUCHED), 32, 32);
    for (const extent to : {extent{0, 4}, extent{4, 0}, extent{-3, 4}, extent{4, -3}})
        resize_plane(src.data(), out.data(), 8, 8, to.width, to.height, 1);
    resize_rows(src.data(), 8, out.data(), 4, 0, 1);
    resize_rows(src.data(), 8, out.data(), 0, 4, 1);
    resize_cols(src.data(), 8, out.data(), 0, 4, 1);
    resize_cols(src.data(), 8, out.data(), 4, 0, 1);
    const int64_t blocks = faults::live_blocks();
    const faults::scope no_memory(faults::call::allocation, faults::every());
    EXPECT_EQ(resize_plane(src.data(), out.data(), 8, 8, 4, 4, 1), -1);
    EXPECT_EQ(faults::live_blocks(), blocks);
    EXPECT_TRUE(out.intact() && out.content() == bytes(256, UNTOUCHED));
}

TEST(ZoomPlane, NearestSamples) {
    const uint8_t two[2] = {10, 20};
    uint8_t four[4];
    zoom_plane_nearest(two, 2, 1, four, 4, 1, 1);
    EXPECT_EQ(std::vector<uint8_t>(four, four + 4), (std::vector<uint8_t>{10, 10, 20, 20}));
    support::dice dice(22);
    for (int round = 0; round < 300; ++round) {
        const extent from = {dice.between(1, 50), dice.between(1, 50)};
        const extent to = round % 7 == 0 ? from : extent{dice.between(1, 90), dice.between(1, 90)};
        const int32_t channels = 1 + round % 4;
        const auto step = static_cast<size_t>(channels);
        const bytes src = naive::data(4, naive::plane_bytes(from, channels), 5);
        bytes expected(naive::plane_bytes(to, channels));
        for (size_t i = 0; i < expected.size(); ++i) {
            const auto pixel = static_cast<int64_t>(i / step);
            const int64_t x = pixel % to.width, y = pixel / to.width;
            const int64_t sx = (x * step_of(from.width, to.width) + 64) >> 7;
            const int64_t sy = (y * step_of(from.height, to.height) + 64) >> 7;
            const int64_t at = std::min<int64_t>(sy, from.height - 1) * from.width +
                               std::min<int64_t>(sx, from.width - 1);
            expected[i] = src[static_cast<size_t>(at) * step + i % step];
        }
        guarded_bytes in(src, 0, 0), out(bytes(expected.size(), UNTOUCHED), 64, 64);
        zoom_plane_nearest(in.data(), from.width, from.height, out.data(), to.width, to.height,
                           channels);
        ASSERT_TRUE(out.content() == expected && out.intact())
            << from.width << "x" << from.height << " to " << to.width << "x" << to.height;
        if (round % 7 == 0) {
            ASSERT_EQ(expected, src);
        }
    }
    for (const extent to : {extent{0, 2}, extent{2, 0}, extent{-1, -1}})
        zoom_plane_nearest(two, 2, 1, four, to.width, to.height, 1);
    EXPECT_EQ(std::vector<uint8_t>(four, four + 4), (std::vector<uint8_t>{10, 10, 20, 20}));
}

}  // namespace
