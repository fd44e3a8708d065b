// SPDX-License-Identifier: Apache-2.0
// The element-wise band kernels: every value, pixel steps, empty bands and reported completions.
#include <gtest/gtest.h>

#include "kernels/band_kernels.h"
#include "naive.h"

namespace {

using naive::bytes;
using naive::UNTOUCHED;
using naive::words;

constexpr int32_t WIDTH = 21, ROWS = 3;
constexpr size_t PIXELS = size_t{WIDTH} * ROWS;
constexpr size_t ELEMENTS = 5 * PIXELS;  // of a plane, enough for pixels of five

// A task and the planes of all kernels.
struct band {
    bytes src = naive::data(4, ELEMENTS, 1), src2 = naive::data(5, ELEMENTS, 2);
    words lap = naive::signed_data(4, ELEMENTS, 255, 3);
    words lap2 = naive::signed_data(4, ELEMENTS, 255, 4);
    bytes dst = bytes(ELEMENTS, UNTOUCHED);
    words dst_lap = words(ELEMENTS, UNTOUCHED);
    pixel_layout mask_layout{0, 1}, lap_layout{0, 3}, lap2_layout{0, 3}, dst_layout{0, 3};
    band_task task = band_task();

    band(int32_t width, int32_t rows) {
        task.src = src.data();
        task.src2 = src2.data();
        task.lap = lap.data();
        task.lap2 = lap2.data();
        task.src_width = width;
        task.src_rows = rows;
        task.dst = dst.data();
        task.dst_lap = dst_lap.data();
        task.src_geom = &lap_layout;
        task.src2_geom = &lap2_layout;
        task.dst_geom = &dst_layout;
        task.mask_geom = &mask_layout;
    }
};

TEST(BandKernels, BlendHonoursPixelSteps) {
    struct steps {
        size_t mask, lap, lap2, dst;
    };
    for (const steps s :
         {steps{1, 3, 3, 3}, steps{2, 4, 5, 3}, steps{1, 3, 3, 4}, steps{3, 3, 4, 5},
          steps{1, 4, 3, 3}, steps{1, 3, 4, 3}, steps{2, 3, 3, 3}}) {
        band b(WIDTH, ROWS);
        b.mask_layout.step = static_cast<int32_t>(s.mask);
        b.lap_layout.step = static_cast<int32_t>(s.lap);
        b.lap2_layout.step = static_cast<int32_t>(s.lap2);
        b.dst_layout.step = static_cast<int32_t>(s.dst);
        words expected(ELEMENTS, UNTOUCHED), over_lap2 = b.lap2;
        for (size_t i = 0; i < 3 * PIXELS; ++i) {
            const size_t p = i / 3, c = i % 3, out = p * s.dst + c;
            expected[out] =
                naive::blended(b.src[p * s.mask], b.lap[p * s.lap + c], b.lap2[p * s.lap2 + c]);
            over_lap2[out] = expected[out];
        }
        EXPECT_EQ(ImageBlend_Short3C(&b.task), nullptr);
        EXPECT_EQ(b.dst_lap, expected) << s.mask << s.lap << s.lap2 << s.dst;
        if (s.lap2 != s.dst) continue;
        // As the engine calls it: over the second plane.
        b.task.dst_lap = b.lap2.data();
        ImageBlend_Short3C(&b.task);
        EXPECT_EQ(b.lap2, over_lap2);
    }
}

// A band of one row of `width` pixels.
band_task row_of(int32_t width) {
    static const pixel_layout c1{0, 1}, c3{0, 3};
    band_task task = band_task();
    task.src_width = width;
    task.src_rows = 1;
    task.src_geom = task.src2_geom = task.dst_geom = &c3;
    task.mask_geom = &c1;
    return task;
}

// Sums beyond 16 bits are cut, also those of values that no difference of bytes has.
TEST(BandKernels, BlendOfEveryMaskAndAnyValue) {
    const int16_t ends[] = {-32768, -32767, -1025, -257, -256, -255, -128, -1,
                            0,      1,      127,   128,  255,  256,  1024, 32767};
    words lap, lap2;
    for (const int16_t a : ends) {
        for (const int16_t b : ends) {
            lap.insert(lap.end(), 3, a);
            lap2.insert(lap2.end(), 3, b);
        }
    }
    band_task task = row_of(static_cast<int32_t>(lap.size() / 3));
    words out(lap.size());
    task.lap = lap.data();
    task.lap2 = lap2.data();
    task.dst_lap = out.data();
    for (int mask = 0; mask < 256; ++mask) {
        const bytes masks(lap.size() / 3, static_cast<uint8_t>(mask));
        task.src = masks.data();
        ImageBlend_Short3C(&task);
        for (size_t i = 0; i < lap.size(); ++i)
            ASSERT_EQ(out[i], naive::blended(mask, lap[i], lap2[i])) << mask << " at " << i;
    }
}

TEST(BandKernels, DifferencesSumsAndCuts) {
    bytes a(3 * 65536), b(a.size()), sums(a.size()), cut(a.size());
    words all(a.size()), differences(a.size()), wide(a.size());
    for (size_t i = 0; i < a.size(); ++i) {
        a[i] = static_cast<uint8_t>(i / 256);
        b[i] = static_cast<uint8_t>(i);
        all[i] = static_cast<int16_t>(i);
    }
    band_task task = row_of(65536);
    task.src = a.data();
    task.src2 = b.data();
    task.lap = all.data();
    task.dst_lap = differences.data();
    ImageLaplace_Byte3C(&task);
    task.dst_lap = wide.data();
    ImageWiden_Byte3C(&task);
    task.dst = cut.data();
    ImageNarrow_Short3C(&task);
    task.dst = sums.data();
    for (size_t i = 0; i < a.size(); ++i) {
        ASSERT_TRUE(differences[i] == a[i] - b[i] && wide[i] == a[i] && cut[i] == (i & 255)) << i;
    }
    for (int base = 0; base < 256; base += 5) {
        const bytes flat(a.size(), static_cast<uint8_t>(base));
        task.src = flat.data();
        ImageCollapse_Short3C(&task);
        for (size_t i = 0; i < a.size(); ++i)
            ASSERT_EQ(sums[i], naive::collapsed(all[i], base)) << all[i] << ", base " << base;
    }
}

TEST(BandKernels, CompletionsAndEmptyBands) {
    thread_pool* pool = nullptr;
    ASSERT_EQ(pool_init(&pool, 1), 0);
    for (const auto& [width, rows] : {std::pair(WIDTH, ROWS), std::pair(9, 0), std::pair(9, -2),
                                      std::pair(0, 2), std::pair(-3, 2)}) {
        SCOPED_TRACE(std::to_string(width) + "x" + std::to_string(rows));
        const bool empty = width < 1 || rows < 1;
        band b(width, rows);
        for (const auto kernel : {ImageBlend_Short3C, ImageNarrow_Short3C}) {
            for (thread_pool* const reported : {pool, static_cast<thread_pool*>(nullptr)}) {
                b.task.pool = reported;
                pool_reset_done(pool);
                EXPECT_EQ(kernel(&b.task), nullptr);
                EXPECT_EQ(pool->pro_count, reported == pool ? 1 : 0);
            }
        }
        for (size_t i = 0; i < ELEMENTS; ++i) {
            const bool narrowed = !empty && i < 3 * PIXELS;
            EXPECT_EQ(b.dst[i], narrowed ? b.lap[i] & 255 : UNTOUCHED) << i;
        }
        if (!empty) continue;
        for (const auto kernel : {ImageLaplace_Byte3C, ImageWiden_Byte3C, ImageCollapse_Short3C})
            EXPECT_EQ(kernel(&b.task), 0);
        EXPECT_EQ(b.dst, bytes(ELEMENTS, UNTOUCHED));
        EXPECT_EQ(b.dst_lap, words(ELEMENTS, UNTOUCHED));
    }
    EXPECT_EQ(pool_destroy(pool), 0);
}

}  // namespace
