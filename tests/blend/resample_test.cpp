// SPDX-License-Identifier: Apache-2.0
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

void check_rectangle(extent_2d size, const pixel_box& box) {
    model::frame frame = {size.width, size.height, naive::data(4, 4 * pixels(size), 31)};
    const extent_2d part = {box.width, box.height};
    const bytes packed = model::read_rectangle(frame, box.x, box.y, box.width, box.height);
    guarded_bytes in(frame.data, 0, 0);
    guarded_bytes out(bytes(pixels(part) * 3, UNTOUCHED), 64, 64);
    const blend_image from = {size.width, size.height, in.data()};
    crop_to_rgb(&from, &box, out.data());
    const bytes patch = naive::data(4, 3 * pixels(part), 33);
    guarded_bytes target(frame.data, 64, 64);
    const blend_image to = {size.width, size.height, target.data()};
    write_region_argb(&to, &box, patch.data());
    model::write_rectangle(frame, box.x, box.y, box.width, box.height, patch);
    ASSERT_TRUE(out.holds(packed) && target.holds(frame.data))
        << box.width << "x" << box.height << " at " << box.x << "," << box.y << " of " << size.width
        << "x" << size.height;
}

TEST(Rectangle, InsideAcrossAndBeyondItsFrame) {
    support::dice dice(41);
    for (int round = 0; round < 1500; ++round) {
        const extent_2d frame = {dice.between(1, 40), dice.between(1, 30)};
        const int32_t x = dice.between(-60, 60), y = dice.between(-40, 40);
        check_rectangle(frame, {x, y, dice.between(1, 50), dice.between(1, 40)});
        ASSERT_FALSE(HasFatalFailure());
    }
    const int32_t far = INT32_MAX - 20;  // the far rows and columns are beyond 32 bits
    for (const int32_t x : {-far, 0, far}) {
        for (const int32_t y : {-far, 3, far})
            check_rectangle({10, 6}, {x, y, 25, 30});
    }
}

TEST(Rectangle, EmptyOnes) {
    bytes src(400, 9);
    guarded_bytes out(bytes(400, UNTOUCHED), 32, 32);
    const blend_image frame = {10, 10, src.data()}, target = {10, 10, out.data()};
    for (const extent_2d none : {extent_2d{5, 0}, {0, 5}, {5, -2}, {-2, 5}}) {
        const pixel_box box = {1, 1, none.width, none.height};
        crop_to_rgb(&frame, &box, out.data());
        write_region_argb(&target, &box, src.data());
    }
    const pixel_box box = {0, 0, 2, 2};
    const blend_image flat = {10, 0, out.data()}, narrow = {0, 10, src.data()};
    write_region_argb(&flat, &box, src.data());
    EXPECT_EQ(out.content(), bytes(400, UNTOUCHED));
    // A frame without pixels reads as 0.
    crop_to_rgb(&narrow, &box, out.data());
    bytes zeros(12);
    zeros.resize(400, UNTOUCHED);
    EXPECT_TRUE(out.holds(zeros));
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
