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

// Pixels of `from_step` bytes cut or padded to `to_step` bytes.
bytes restepped(const bytes& src, size_t from_step, size_t to_step) {
    bytes out(src.size() / from_step * to_step, UNTOUCHED);
    for (size_t i = 0; i < out.size(); ++i) {
        if (i % to_step < from_step) out[i] = src[i / to_step * from_step + i % to_step];
    }
    return out;
}

// Every byte `times` times.
bytes repeated(const bytes& src, size_t times) {
    bytes out;
    for (const uint8_t value : src)
        out.insert(out.end(), times, value);
    return out;
}

void check_rectangle(extent_2d size, int32_t x, int32_t y, extent_2d box, int32_t src_step,
                     int32_t dst_step) {
    model::frame frame = {size.width, size.height, naive::data(4, 4 * pixels(size), 31)};
    const bytes packed = model::read_rectangle(frame, x, y, box.width, box.height);
    const auto from_step = static_cast<size_t>(src_step), to_step = static_cast<size_t>(dst_step);
    guarded_bytes in(restepped(frame.data, 4, from_step), 0, 0);
    guarded_bytes out(bytes(pixels(box) * to_step, UNTOUCHED), 64, 64);
    const pixel_layout from = {77, src_step}, to = {0, dst_step};  // the offset is not used
    crop_to_rgb(in.data(), size.width, out.data(), x, y, box.width, box.height, &from, &to,
                size.height);
    const bytes patch = naive::data(4, 3 * pixels(box), 33);
    guarded_bytes target(frame.data, 64, 64);
    write_region_argb(target.data(), size.width, patch.data(), x, y, box.width, box.height,
                      size.height);
    model::write_rectangle(frame, x, y, box.width, box.height, patch);
    ASSERT_TRUE(out.content() == restepped(packed, 3, to_step) && out.intact() &&
                target.content() == frame.data && target.intact())
        << box.width << "x" << box.height << " at " << x << "," << y << " of " << size.width << "x"
        << size.height;
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
    const int32_t far = INT32_MAX - 20;  // the far rows and columns are beyond 32 bits
    for (const int32_t x : {-far, 0, far}) {
        for (const int32_t y : {-far, 3, far})
            check_rectangle({10, 6}, x, y, {25, 30}, 4, 3);
    }
    check_rectangle({10, 6}, 2, 2, {5, 2}, 4, 5);
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

// The linear resize and the nearest samples.
void check_sizes(extent_2d from, extent_2d to, int32_t channels, int kind) {
    const auto step = static_cast<size_t>(channels);
    const bytes colours = naive::data(kind, 3 * pixels(from), 9), grey = restepped(colours, 3, 1);
    guarded_bytes in(restepped(colours, 3, step), 0, 0), grey_in(repeated(grey, step), 0, 0);
    guarded_bytes linear(bytes(pixels(to) * step, UNTOUCHED), 64, 64);
    guarded_bytes nearest(bytes(pixels(to) * step, UNTOUCHED), 64, 64);
    EXPECT_EQ(resize_plane(in.data(), linear.data(), from.width, from.height, to.width, to.height,
                           channels),
              0);
    zoom_plane_nearest(grey_in.data(), from.width, from.height, nearest.data(), to.width, to.height,
                       channels);
    ASSERT_TRUE(linear.content() == restepped(model::resample_linear(colours, from, to), 3, step) &&
                nearest.content() == repeated(model::resample_nearest(grey, from, to), step) &&
                linear.intact() && nearest.intact())
        << from.width << "x" << from.height << " to " << to.width << "x" << to.height;
}

TEST(Resize, ManySizesAndChannels) {
    support::dice dice(21);
    for (int32_t round = 0; round < 300; ++round) {
        const extent_2d from = {dice.between(1, 60), dice.between(1, 40)};
        // From 128 outputs on the last sample may fall beyond the source's edge.
        const int32_t longest = round % 5 == 1 ? 300 : 90;
        extent_2d to = {dice.between(1, longest), dice.between(1, 60)};
        if (round % 9 == 0) to = from;
        check_sizes(from, to, 1 + round % 3, dice.between(2, 5));
        ASSERT_FALSE(HasFatalFailure());
    }
}

TEST(Resize, NothingToDoAndNoMemory) {
    const int64_t blocks = faults::live_blocks();
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
    const faults::scope no_memory(faults::call::allocation, faults::every());
    EXPECT_EQ(resize_plane(src.data(), out.data(), 8, 8, 4, 4, 1), -1);
    EXPECT_EQ(faults::live_blocks(), blocks);
    EXPECT_TRUE(out.intact() && out.content() == bytes(256, UNTOUCHED));
}

}  // namespace
