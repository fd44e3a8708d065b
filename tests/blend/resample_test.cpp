// Rectangles of frames and resized planes against the model, with the channels, steps and lack of
// memory that no whole call has.
#include "model/resample.h"

#include <gtest/gtest.h>

#include "api/zoom_plane.h"
#include "blend/rectangle.h"
#include "blend/resize.h"
#include "kernels/naive.h"
#include "model/geometry.h"
#include "pool/faults.h"
#include "support/guarded_bytes.h"
#include "support/scene.h"

namespace {

using model::extent_2d;
using naive::bytes;
using naive::UNTOUCHED;
using support::guarded_bytes;

size_t pixels(extent_2d e) {
    return naive::plane_bytes({e.width, e.height}, 1);
}

std::string between(extent_2d from, extent_2d to) {
    return std::to_string(from.width) + "x" + std::to_string(from.height) + " to " +
           std::to_string(to.width) + "x" + std::to_string(to.height);
}

// Packed pixels of three bytes to or from pixels of `step` bytes, from byte `offset` on.
bytes restepped(const bytes& src, size_t from_step, size_t from_offset, size_t to_step,
                size_t to_offset) {
    bytes out(src.size() / from_step * to_step, UNTOUCHED);
    for (size_t p = 0; p < src.size() / from_step; ++p) {
        for (size_t k = 0; k < 3 && from_offset + k < from_step; ++k)
            out[p * to_step + to_offset + k] = src[p * from_step + from_offset + k];
    }
    return out;
}

void check_rectangle(extent_2d size, int32_t x, int32_t y, extent_2d box, int32_t src_step,
                     int32_t dst_step) {
    SCOPED_TRACE(between(size, box) + " at " + std::to_string(x) + "," + std::to_string(y));
    model::frame frame = {size.width, size.height, naive::data(4, 4 * pixels(size), 31)};
    const bytes packed = model::read_rectangle(frame, x, y, box.width, box.height);
    const auto from_step = static_cast<size_t>(src_step), to_step = static_cast<size_t>(dst_step);
    guarded_bytes in(restepped(frame.data, 4, 1, from_step, 1), 0, 0);
    guarded_bytes out(bytes(pixels(box) * to_step, UNTOUCHED), 64, 64);
    const pixel_layout from = {77, src_step}, to = {0, dst_step};  // the offset is not used
    crop_to_rgb(in.data(), size.width, out.data(), x, y, box.width, box.height, &from, &to,
                size.height);
    ASSERT_TRUE(out.content() == restepped(packed, 3, 0, to_step, 0) && out.intact());

    const bytes patch = naive::data(4, 3 * pixels(box), 33);
    guarded_bytes target(frame.data, 64, 64);
    write_region_argb(target.data(), size.width, patch.data(), x, y, box.width, box.height,
                      size.height);
    model::write_rectangle(frame, x, y, box.width, box.height, patch);
    ASSERT_TRUE(target.content() == frame.data && target.intact());
}

TEST(Rectangle, InsideAcrossAndBeyondItsFrame) {
    support::dice dice(41);
    for (int round = 0; round < 1500; ++round) {
        const extent_2d frame = {dice.between(1, 40), dice.between(1, 30)};
        const bool odd = round % 10 == 0;
        check_rectangle(frame, dice.between(-60, 60), dice.between(-40, 40),
                        {dice.between(1, 50), dice.between(1, 40)}, odd ? 6 : 4, odd ? 5 : 3);
        ASSERT_FALSE(HasFatalFailure());
    }
    const int32_t far = INT32_MAX - 20;
    for (const int32_t x : {-far, 0, far}) {
        for (const int32_t y : {-far, 3, far})
            check_rectangle({10, 6}, x, y, {5, 2}, 4, 3);
    }
}

TEST(Rectangle, EmptyOnes) {
    const bytes src(400, 9);
    guarded_bytes out(bytes(400, UNTOUCHED), 32, 32);
    const pixel_layout four = {0, 4}, three = {0, 3};
    for (const extent_2d none : {extent_2d{5, 0}, {0, 5}, {5, -2}, {-2, 5}}) {
        crop_to_rgb(src.data(), 10, out.data(), 1, 1, none.width, none.height, &four, &three, 10);
        write_region_argb(out.data(), 10, src.data(), 1, 1, none.width, none.height, 10);
    }
    write_region_argb(out.data(), 10, src.data(), 0, 0, 2, 2, 0);
    EXPECT_EQ(out.content(), bytes(400, UNTOUCHED));
    // A frame without pixels reads as 0.
    crop_to_rgb(src.data(), 0, out.data(), 0, 0, 2, 2, &four, &three, 10);
    bytes zeros(12);
    zeros.resize(400, UNTOUCHED);
    EXPECT_TRUE(out.content() == zeros && out.intact());
}

// What `resample` makes of each channel of a picture, put together again.
template <class Resample>
bytes by_channel(const bytes& src, size_t channels, Resample resample) {
    bytes out;
    for (size_t c = 0; c < channels; ++c) {
        bytes plane;
        for (size_t i = c; i < src.size(); i += channels)
            plane.push_back(src[i]);
        const bytes resampled = resample(plane);
        out.resize(resampled.size() * channels);
        for (size_t i = 0; i < resampled.size(); ++i)
            out[i * channels + c] = resampled[i];
    }
    return out;
}

bytes linear(const bytes& src, size_t channels, extent_2d from, extent_2d to) {
    return by_channel(src, channels, [&](const bytes& plane) {
        const bytes grey = model::resample_linear(restepped(plane, 1, 0, 3, 0), from, to);
        return by_channel(grey, 1, [](const bytes& all) {
            bytes first;
            for (size_t i = 0; i < all.size(); i += 3)
                first.push_back(all[i]);
            return first;
        });
    });
}

TEST(Resize, ManySizesAndChannels) {
    support::dice dice(21);
    for (int32_t round = 0; round < 300; ++round) {
        const extent_2d from = {dice.between(1, 60), dice.between(1, 40)};
        // From 128 outputs on the last sample may fall beyond the source's edge.
        const int32_t longest = round % 5 == 1 ? 300 : 90;
        extent_2d to = {dice.between(1, longest), dice.between(1, 60)};
        if (round % 9 == 0) to = from;
        const int32_t channels = 1 + round % 4;
        const auto step = static_cast<size_t>(channels);
        SCOPED_TRACE(between(from, to));
        const bytes src = naive::data(dice.between(2, 5), pixels(from) * step, 9);
        guarded_bytes in(src, 0, 0);
        const auto check = [&](extent_2d size, const bytes& expected, auto call) {
            guarded_bytes out(bytes(pixels(size) * step, UNTOUCHED), 64, 64);
            call(out.data());
            ASSERT_TRUE(out.content() == expected && out.intact());
        };
        check(to, linear(src, step, from, to), [&](uint8_t* out) {
            EXPECT_EQ(resize_plane(in.data(), out, from.width, from.height, to.width, to.height,
                                   channels),
                      0);
        });
        // The passes alone.
        const extent_2d wide = {to.width, from.height}, high = {from.width, to.height};
        check(wide, linear(src, step, from, wide), [&](uint8_t* out) {
            resize_rows(in.data(), from.width, out, to.width, from.height, channels);
        });
        check(high, linear(src, step, from, high), [&](uint8_t* out) {
            resize_cols(in.data(), from.height, out, from.width, to.height, channels);
        });
        const auto nearest = [&](const bytes& plane) {
            return model::resample_nearest(plane, from, to);
        };
        check(to, by_channel(src, step, nearest), [&](uint8_t* out) {
            zoom_plane_nearest(in.data(), from.width, from.height, out, to.width, to.height,
                               channels);
        });
        ASSERT_FALSE(HasFatalFailure());
    }
}

// A rectangle of a frame, which may reach outside, resized in two bands.
TEST(Resize, RectanglesOfFramesWithAndWithoutMemory) {
    support::dice dice(23);
    for (int round = 0; round < 250; ++round) {
        const extent_2d size = {dice.between(1, 60), dice.between(1, 50)};
        const extent_2d from = {dice.between(1, 50), dice.between(1, 40)};
        const extent_2d to =
            round % 8 == 0 ? from : extent_2d{dice.between(1, 90), dice.between(1, 70)};
        const int32_t reach = round % 2 == 0 ? 30 : 0;
        const int32_t x = dice.between(-reach, size.width - 1 + reach);
        const int32_t y = dice.between(-reach, size.height - 1 + reach);
        const model::frame frame = support::noise_picture(size.width, size.height, 6);
        const bytes expected = model::resample_linear(
            model::read_rectangle(frame, x, y, from.width, from.height), from, to);
        guarded_bytes in(frame.data, 0, 0);
        for (int failing = 0; failing < 4; ++failing) {
            const int64_t blocks = faults::live_blocks();
            guarded_bytes out(bytes(expected.size(), UNTOUCHED), 64, 64);
            rectangle_resize resize = {frame_picture(in.data(), size.width, size.height, x, y),
                                       from.width,
                                       from.height,
                                       out.data(),
                                       to.width,
                                       to.height,
                                       nullptr,
                                       nullptr};
            const faults::scope fault(faults::call::allocation, faults::nth(failing));
            const bool opened = open_resize(&resize);
            if (opened) {
                resize_band(&resize, 3, to.height / 3, to.height);
                resize_band(&resize, 0, 0, to.height / 3);
            }
            close_resize(&resize);
            ASSERT_EQ(opened, fault.calls() <= failing);
            ASSERT_TRUE(out.intact() &&
                        out.content() == (opened ? expected : bytes(expected.size(), UNTOUCHED)))
                << between(from, to) << " at " << x << "," << y << " of " << size.width << "x"
                << size.height;
            ASSERT_EQ(faults::live_blocks(), blocks);
        }
    }
}

TEST(Resize, NothingToDoAndNoMemory) {
    const bytes src(256, 3);
    guarded_bytes out(bytes(256, UNTOUCHED), 32, 32);
    for (const extent_2d to : {extent_2d{0, 4}, {4, 0}, {-3, 4}, {4, -3}}) {
        resize_plane(src.data(), out.data(), 8, 8, to.width, to.height, 1);
        zoom_plane_nearest(src.data(), 8, 8, out.data(), to.width, to.height, 1);
    }
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

}  // namespace
