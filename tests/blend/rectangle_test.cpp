// Rectangles inside, across and beyond their frame.
#include "blend/rectangle.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "kernels/naive.h"
#include "support/guarded_bytes.h"
#include "support/scene.h"

namespace {

using naive::bytes;
using naive::extent;
using support::guarded_bytes;

struct area {
    int32_t x, y, width, height;
};

// The pixel of the frame that (x, y) reads: by its linear index, or the nearest one where that is
// outside.
size_t pixel_read(extent frame, int64_t x, int64_t y) {
    const int64_t index = y * frame.width + x;
    if (index >= 0 && index < int64_t{frame.width} * frame.height)
        return static_cast<size_t>(index);
    return static_cast<size_t>(std::clamp<int64_t>(y, 0, frame.height - 1) * frame.width +
                               std::clamp<int64_t>(x, 0, frame.width - 1));
}

void check_crop(extent frame, area a, pixel_layout from, pixel_layout to) {
    const bytes src = naive::data(4, naive::plane_bytes(frame, from.step), 31);
    const size_t count = naive::plane_bytes({a.width, a.height}, 1);
    bytes expected(count * static_cast<size_t>(to.step), 0xC7);
    for (size_t p = 0; p < count; ++p) {
        const auto at = static_cast<int64_t>(p);
        const size_t pixel =
            pixel_read(frame, int64_t{a.x} + at % a.width, int64_t{a.y} + at / a.width);
        for (size_t k = 0; k < 3; ++k)
            expected[p * static_cast<size_t>(to.step) + k] =
                src[pixel * static_cast<size_t>(from.step) + 1 + k];
    }
    guarded_bytes in(src, 0, 0), out(bytes(expected.size(), 0xC7), 64, 64);
    from.offset = 77;  // not used
    crop_to_rgb(in.data(), frame.width, out.data(), a.x, a.y, a.width, a.height, &from, &to,
                frame.height);
    ASSERT_TRUE(out.content() == expected && out.intact())
        << a.width << "x" << a.height << " at " << a.x << "," << a.y << " of " << frame.width << "x"
        << frame.height;
}

void check_write(extent frame, area a) {
    const bytes before = naive::data(4, naive::plane_bytes(frame, 4), 32);
    const bytes patch = naive::data(4, naive::plane_bytes({a.width, a.height}, 3), 33);
    bytes expected = before;
    for (size_t p = 0; p < patch.size() / 3; ++p) {
        const auto at = static_cast<int64_t>(p);
        const int64_t index =
            (int64_t{a.y} + at / a.width) * frame.width + int64_t{a.x} + at % a.width;
        if (index < 0 || index >= int64_t{frame.width} * frame.height) continue;
        uint8_t* pixel = expected.data() + 4 * index;
        pixel[0] = 255;
        std::copy_n(patch.data() + 3 * p, 3, pixel + 1);
    }
    guarded_bytes out(before, 64, 64);
    write_region_argb(out.data(), frame.width, patch.data(), a.x, a.y, a.width, a.height,
                      frame.height);
    ASSERT_TRUE(out.content() == expected && out.intact())
        << a.width << "x" << a.height << " at " << a.x << "," << a.y << " of " << frame.width << "x"
        << frame.height;
}

TEST(Rectangle, RandomPlaces) {
    support::dice dice(41);
    for (int round = 0; round < 1500; ++round) {
        const extent frame = {dice.between(1, 40), dice.between(1, 30)};
        const bool inside = round % 2 == 0;
        area a = {0, 0, dice.between(1, inside ? frame.width : 50),
                  dice.between(1, inside ? frame.height : 40)};
        a.x = inside ? dice.between(0, frame.width - a.width) : dice.between(-60, 60);
        a.y = inside ? dice.between(0, frame.height - a.height) : dice.between(-40, 40);
        check_crop(frame, a, {0, 4}, {0, 3});
        check_write(frame, a);
        if (round % 10 == 0) check_crop(frame, a, {0, 6}, {0, 5});
        ASSERT_FALSE(HasFatalFailure());
    }
}

TEST(Rectangle, CornersAndExtremes) {
    const extent frame = {10, 6};
    const int32_t far = INT32_MAX - 20;
    for (const area a :
         {area{-1, 0, 3, 2}, area{-1, 2, 3, 2}, area{9, 5, 3, 2}, area{-4, -4, 20, 20},
          area{far, 0, 5, 2}, area{0, far, 5, 2}, area{-far, 3, 5, 2}, area{far, far, 9, 9},
          area{-far, -far, 9, 9}, area{0, 0, 10, 6}}) {
        check_crop(frame, a, {0, 4}, {0, 3});
        check_write(frame, a);
    }
    // A column left of the frame is the end of the row above; before the first pixel it is that.
    bytes src(naive::plane_bytes(frame, 4));
    for (size_t i = 0; i < src.size(); ++i)
        src[i] = static_cast<uint8_t>(i / 4);
    const pixel_layout four = {0, 4}, three = {0, 3};
    uint8_t pixel[3];
    crop_to_rgb(src.data(), 10, pixel, -1, 3, 1, 1, &four, &three, 6);
    EXPECT_EQ(pixel[0], 29);
    crop_to_rgb(src.data(), 10, pixel, -1, 0, 1, 1, &four, &three, 6);
    EXPECT_EQ(pixel[0], 0);
    crop_to_rgb(src.data(), 10, pixel, 4, 6, 1, 1, &four, &three, 6);
    EXPECT_EQ(pixel[0], 54);
}

TEST(Rectangle, EmptyOnes) {
    const bytes src(400, 9);
    guarded_bytes out(bytes(400, 0xC7), 32, 32);
    const pixel_layout four = {0, 4}, three = {0, 3};
    for (const extent none : {extent{5, 0}, extent{0, 5}, extent{5, -2}, extent{-2, 5}}) {
        crop_to_rgb(src.data(), 10, out.data(), 1, 1, none.width, none.height, &four, &three, 10);
        write_region_argb(out.data(), 10, src.data(), 1, 1, none.width, none.height, 10);
    }
    write_region_argb(out.data(), 10, src.data(), 0, 0, 2, 2, 0);
    EXPECT_EQ(out.content(), bytes(400, 0xC7));
    crop_to_rgb(src.data(), 0, out.data(), 0, 0, 2, 2, &four, &three, 10);
    EXPECT_EQ(naive::rows_of(out.content(), 1, 0, 13),
              (bytes{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xC7}));
    EXPECT_TRUE(out.intact());
}

}  // namespace
