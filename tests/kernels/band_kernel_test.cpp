// The element-wise band kernels: whole bands, pixel steps, empty bands and reported completions.
#include <gtest/gtest.h>
#include <string.h>

#include <algorithm>

#include "kernels/band_kernels.h"
#include "naive.h"
#include "row_cases.h"
#include "support/guarded_bytes.h"
#include "support/scene.h"

namespace {

using naive::bytes;
using naive::bytes_of;
using support::guarded_bytes;
using words = std::vector<int16_t>;

words random_words(size_t count, int limit, uint64_t seed) {
    support::dice dice(seed);
    words out(count);
    for (int16_t& value : out)
        value = static_cast<int16_t>(dice.between(-limit, limit));
    return out;
}

int16_t* words_in(guarded_bytes& buffer) {
    return reinterpret_cast<int16_t*>(buffer.data());
}

// Planes of one band with every kernel's inputs and outputs.
struct planes {
    bytes src, src2;
    words lap, lap2;
    guarded_bytes dst, dst_lap;
    pixel_layout mask{0, 1}, c3{0, 3};
    band_task task;

    planes(int32_t width, int32_t rows, uint64_t seed)
        : src(naive::data(4, 3 * pixels(width, rows), seed)),
          src2(naive::data(5, 3 * pixels(width, rows), seed)),
          lap(random_words(3 * pixels(width, rows), 255, seed)),
          lap2(random_words(3 * pixels(width, rows), 255, seed + 1)),
          dst(bytes(3 * pixels(width, rows), 0xC7), 64, 64),
          dst_lap(bytes(6 * pixels(width, rows), 0xC7), 64, 64),
          task() {
        task.src = src.data();
        task.src2 = src2.data();
        task.lap = lap.data();
        task.lap2 = lap2.data();
        task.src_width = width;
        task.src_height = 99;
        task.src_rows = rows;
        task.dst = dst.data();
        task.dst_lap = words_in(dst_lap);
        task.src_geom = task.src2_geom = task.dst_geom = &c3;
        task.mask_geom = &mask;
    }

    static size_t pixels(int32_t width, int32_t rows) {
        return naive::plane_bytes({width, std::max(rows, 0)}, 1);
    }
    bool intact() const { return dst.intact() && dst_lap.intact(); }
};

int16_t blended(int m, int a, int b) {
    const int sum = m * a + (255 - m) * b + 128;
    return static_cast<int16_t>((sum + 256 * 1024) / 256 - 1024);
}

TEST(BandKernels, WholeBandsOfManySizes) {
    for (const int32_t width : {1, 2, 5, 7, 8, 9, 15, 16, 17, 31, 33, 64, 67}) {
        for (const int32_t rows : {1, 2, 5}) {
            SCOPED_TRACE(std::to_string(width) + "x" + std::to_string(rows));
            planes p(width, rows, static_cast<uint64_t>(width * 8 + rows));
            const size_t count = p.src.size();
            words difference(count), wide(count), mix(count);
            bytes sum(count), low(count);
            for (size_t i = 0; i < count; ++i) {
                difference[i] = static_cast<int16_t>(p.src[i] - p.src2[i]);
                wide[i] = p.src[i];
                mix[i] = blended(p.src[i / 3], p.lap[i], p.lap2[i]);
                sum[i] = static_cast<uint8_t>(std::clamp(p.lap[i] + p.src[i], 0, 255));
                low[i] = static_cast<uint8_t>(p.lap[i] & 255);
            }
            EXPECT_EQ(ImageLaplace_Byte3C(&p.task), 0);
            EXPECT_EQ(p.dst_lap.content(), bytes_of(difference));
            EXPECT_EQ(ImageWiden_Byte3C(&p.task), 0);
            EXPECT_EQ(p.dst_lap.content(), bytes_of(wide));
            EXPECT_EQ(ImageCollapse_Short3C(&p.task), 0);
            EXPECT_EQ(p.dst.content(), sum);
            EXPECT_EQ(ImageNarrow_Short3C(&p.task), nullptr);
            EXPECT_EQ(p.dst.content(), low);
            EXPECT_EQ(ImageBlend_Short3C(&p.task), nullptr);
            EXPECT_EQ(p.dst_lap.content(), bytes_of(mix));
            // As the engine calls it: over the second plane.
            memcpy(p.dst_lap.data(), p.lap2.data(), 2 * count);
            p.task.lap2 = p.task.dst_lap;
            ImageBlend_Short3C(&p.task);
            EXPECT_EQ(p.dst_lap.content(), bytes_of(mix));
            EXPECT_TRUE(p.intact());
        }
    }
}

TEST(BandKernels, BlendHonoursPixelSteps) {
    struct steps {
        int32_t mask, lap, lap2, dst;
    };
    for (const steps s : {steps{2, 4, 5, 3}, steps{1, 3, 3, 4}, steps{3, 3, 4, 5},
                          steps{1, 4, 3, 3}, steps{2, 3, 3, 3}}) {
        constexpr int32_t width = 21, rows = 3;
        constexpr size_t pixels = width * rows;
        const bytes mask = naive::data(4, pixels * static_cast<size_t>(s.mask), 5);
        const words lap = random_words(pixels * static_cast<size_t>(s.lap), 255, 6);
        const words lap2 = random_words(pixels * static_cast<size_t>(s.lap2), 255, 7);
        words expected(pixels * static_cast<size_t>(s.dst), 0x1234);
        guarded_bytes out(bytes_of(expected), 64, 64);
        for (size_t p = 0; p < pixels; ++p) {
            for (size_t c = 0; c < 3; ++c) {
                expected[p * static_cast<size_t>(s.dst) + c] = blended(
                    mask[p * static_cast<size_t>(s.mask)], lap[p * static_cast<size_t>(s.lap) + c],
                    lap2[p * static_cast<size_t>(s.lap2) + c]);
            }
        }
        const pixel_layout mask_layout = {0, s.mask}, lap_layout = {0, s.lap},
                           lap2_layout = {0, s.lap2}, dst_layout = {0, s.dst};
        band_task task = band_task();
        task.src = mask.data();
        task.lap = lap.data();
        task.lap2 = lap2.data();
        task.dst_lap = words_in(out);
        task.src_width = width;
        task.src_rows = rows;
        task.mask_geom = &mask_layout;
        task.src_geom = &lap_layout;
        task.src2_geom = &lap2_layout;
        task.dst_geom = &dst_layout;
        ImageBlend_Short3C(&task);
        EXPECT_EQ(out.content(), bytes_of(expected)) << s.mask << s.lap << s.lap2 << s.dst;
        EXPECT_TRUE(out.intact());
    }
}

TEST(BandKernels, CompletionsAndEmptyBands) {
    thread_pool* pool = nullptr;
    ASSERT_EQ(pool_init(&pool, 1), 0);
    const auto completions = [&](void* (*kernel)(void*), band_task task, bool with_pool) {
        task.pool = with_pool ? pool : nullptr;
        pool_reset_done(pool);
        EXPECT_EQ(kernel(&task), nullptr);
        return pool->pro_count;
    };
    struct size {
        int32_t width, rows;
    };
    for (const size s : {size{9, 2}, size{9, 0}, size{9, -2}, size{0, 2}}) {
        planes p(9, 2, 1);
        p.task.src_width = s.width;
        p.task.src_rows = s.rows;
        for (const auto kernel : {ImageBlend_Short3C, ImageNarrow_Short3C}) {
            EXPECT_EQ(completions(kernel, p.task, true), 1) << s.width << "x" << s.rows;
            EXPECT_EQ(completions(kernel, p.task, false), 0) << s.width << "x" << s.rows;
        }
        if (s.width > 0 && s.rows > 0) continue;
        for (const auto kernel : {ImageLaplace_Byte3C, ImageWiden_Byte3C, ImageCollapse_Short3C}) {
            EXPECT_EQ(kernel(&p.task), 0);
        }
        EXPECT_EQ(p.dst.content(), bytes(p.dst.content().size(), 0xC7));
        EXPECT_EQ(p.dst_lap.content(), bytes(p.dst_lap.content().size(), 0xC7));
        EXPECT_TRUE(p.intact());
    }
    EXPECT_EQ(pool_destroy(pool), 0);
}

}  // namespace
