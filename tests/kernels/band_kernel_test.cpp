// The element-wise band kernels beyond what a blend does with them: pixel steps, empty bands and
// reported completions.
#include <gtest/gtest.h>

#include "kernels/band_kernels.h"
#include "naive.h"
#include "support/guarded_bytes.h"

namespace {

using naive::bytes;
using naive::bytes_of;
using naive::UNTOUCHED;
using naive::words;
using support::guarded_bytes;

// The input planes of all kernels, with the steps of the blend's pixels.
struct steps {
    size_t mask = 1, lap = 3, lap2 = 3, dst = 3;
};

struct planes {
    size_t pixels;
    bytes src, src2;
    words lap, lap2;
    guarded_bytes dst, dst_lap;
    pixel_layout mask_layout, lap_layout, lap2_layout, dst_layout;
    band_task task = band_task();

    planes(int32_t width, int32_t rows, const steps& s = {})
        : pixels(naive::plane_bytes({width, rows}, 1)),
          src(naive::data(4, 3 * pixels, pixels)),
          src2(naive::data(5, 3 * pixels, pixels)),
          lap(naive::signed_data(4, s.lap * pixels, 255, pixels)),
          lap2(naive::signed_data(4, s.lap2 * pixels, 255, pixels + 1)),
          dst(bytes(3 * pixels, UNTOUCHED), 64, 64),
          dst_lap(bytes(2 * s.dst * pixels, UNTOUCHED), 64, 64),
          mask_layout{0, static_cast<int32_t>(s.mask)},
          lap_layout{0, static_cast<int32_t>(s.lap)},
          lap2_layout{0, static_cast<int32_t>(s.lap2)},
          dst_layout{0, static_cast<int32_t>(s.dst)} {
        task.src = src.data();
        task.src2 = src2.data();
        task.lap = lap.data();
        task.lap2 = lap2.data();
        task.src_width = width;
        task.src_height = 99;
        task.src_rows = rows;
        task.dst = dst.data();
        task.dst_lap = reinterpret_cast<int16_t*>(dst_lap.data());
        task.src_geom = &lap_layout;
        task.src2_geom = &lap2_layout;
        task.dst_geom = &dst_layout;
        task.mask_geom = &mask_layout;
    }
};

TEST(BandKernels, BlendHonoursPixelSteps) {
    for (const steps& s : {steps{}, steps{2, 4, 5, 3}, steps{1, 3, 3, 4}, steps{3, 3, 4, 5},
                           steps{1, 4, 3, 3}, steps{2, 3, 3, 3}}) {
        planes p(21, 3, s);
        words expected(s.dst * p.pixels);
        std::fill(expected.begin(), expected.end(), static_cast<int16_t>(UNTOUCHED * 257));
        for (size_t i = 0; i < 3 * p.pixels; ++i) {
            const size_t at = i / 3, c = i % 3;
            expected[at * s.dst + c] =
                naive::blended(p.src[at * s.mask], p.lap[at * s.lap + c], p.lap2[at * s.lap2 + c]);
        }
        EXPECT_EQ(ImageBlend_Short3C(&p.task), nullptr);
        EXPECT_EQ(p.dst_lap.content(), bytes_of(expected)) << s.mask << s.lap << s.lap2 << s.dst;
        EXPECT_TRUE(p.dst_lap.intact());
        if (s.lap2 != s.dst) continue;
        // As the engine calls it: over the second plane.
        p.task.dst_lap = p.lap2.data();
        ImageBlend_Short3C(&p.task);
        EXPECT_EQ(p.lap2, expected);
    }
}

TEST(BandKernels, CompletionsAndEmptyBands) {
    thread_pool* pool = nullptr;
    ASSERT_EQ(pool_init(&pool, 1), 0);
    struct size {
        int32_t width, rows;
    };
    for (const size s : {size{9, 2}, size{9, 0}, size{9, -2}, size{0, 2}, size{-3, 2}}) {
        planes p(9, 2);
        p.task.src_width = s.width;
        p.task.src_rows = s.rows;
        for (const auto kernel : {ImageBlend_Short3C, ImageNarrow_Short3C}) {
            for (thread_pool* const reported : {pool, static_cast<thread_pool*>(nullptr)}) {
                p.task.pool = reported;
                pool_reset_done(pool);
                EXPECT_EQ(kernel(&p.task), nullptr);
                EXPECT_EQ(pool->pro_count, reported == pool ? 1 : 0) << s.width << "x" << s.rows;
            }
        }
        if (s.width > 0 && s.rows > 0) {
            bytes low;
            for (const int16_t value : p.lap)
                low.push_back(static_cast<uint8_t>(value & 255));
            EXPECT_EQ(p.dst.content(), low);
            continue;
        }
        for (const auto kernel : {ImageLaplace_Byte3C, ImageWiden_Byte3C, ImageCollapse_Short3C})
            EXPECT_EQ(kernel(&p.task), 0);
        EXPECT_EQ(p.dst.content(), bytes(p.dst.content().size(), UNTOUCHED));
        EXPECT_EQ(p.dst_lap.content(), bytes(p.dst_lap.content().size(), UNTOUCHED));
        EXPECT_TRUE(p.dst.intact() && p.dst_lap.intact());
    }
    EXPECT_EQ(pool_destroy(pool), 0);
}

}  // namespace
