// Bitmap dumps: the bytes of the files, reading them back, and what is said when that fails.
#include <gtest/gtest.h>
#include <stdio.h>
#include <sys/stat.h>

#include <functional>
#include <random>
#include <string>

#include "bmp/bmp_fields.h"
#include "bmp/bmp_read.h"
#include "bmp/bmp_write.h"
#include "bmp_files.h"
#include "pool/faults.h"

namespace {

using namespace bmp_files;

const char* const NOT_OPENED = "\nBMP_READ - Fatal error!\n  Could not open the input file.\n";
const char* const BAD_HEADER = "\nBMP_READ: Fatal error!\n  BMP_READ_HEADER failed.\n";
const char* const NO_STORAGE = "\nBMP_READ: Fatal error!\n  Could not allocate data storage.\n";
const char* const WRITE_ENTER = "bmp_write enter\n";
const char* const WRITE_STORAGE =
    "\nBMP_WRITE - Fatal error!\n  Could not allocate data storage.\n";

// Sets the byte order of the fields while it lives.
struct byte_order {
    explicit byte_order(int32_t flag) { byte_order_flag = flag; }
    ~byte_order() { byte_order_flag = 1; }
    byte_order(const byte_order&) = delete;
    byte_order& operator=(const byte_order&) = delete;
};

outcome write_pixels(const std::string& path, int32_t width, int32_t height, const uint8_t* pixels,
                     int32_t step = 4, int32_t skip = 1) {
    return observe([&] {
        return bmp_write(path.c_str(), width, height, pixels, nullptr, nullptr, nullptr, step,
                         skip);
    });
}

TEST(BmpWrite, BytesOfAFile) {
    const folder where;
    const std::string path = where.file("planes.bmp");
    const auto written = [&](int32_t width, int32_t height, const bytes& red, const bytes& green,
                             const bytes& blue) {
        const outcome result = observe([&] {
            return bmp_write(path.c_str(), width, height, nullptr, red.data(), green.data(),
                             blue.data(), 0, 0);
        });
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.printed, WRITE_ENTER);
        return load(path);
    };
    EXPECT_EQ(written(1, 2, {1, 2}, {3, 4}, {5, 6}),
              (bytes{66, 77, 60, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0,  0, 40, 0,  // 16
                     0,  0,  1,  0, 0, 0, 2, 0, 0, 0, 1,  0, 24, 0, 0,  0,  // 32
                     0,  0,  0,  0, 0, 0, 0, 0, 0, 0, 0,  0, 0,  0, 0,  0,  // 48
                     0,  0,  0,  0, 0, 0, 6, 4, 2, 0, 5,  3, 1,  0}));
    const byte_order most_significant_first(0);
    EXPECT_EQ(written(1, 2, {1, 2}, {3, 4}, {5, 6}),
              (bytes{66, 77, 0, 0, 0, 60, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0,  // 16
                     0,  40, 0, 0, 0, 1,  0, 0, 0, 2, 0, 1, 0, 24, 0, 0,  // 32
                     0,  0,  0, 0, 0, 0,  0, 0, 0, 0, 0, 0, 0, 0,  0, 0,  // 48
                     0,  0,  0, 0, 0, 0,  6, 4, 2, 0, 5, 3, 1, 0}));
}

TEST(BmpWrite, SizesWithoutPixels) {
    const folder where;
    const std::string path = where.file("empty.bmp");
    // Where no pixel is there to be read.
    const auto* const pixel = reinterpret_cast<const uint8_t*>(uintptr_t{1});
    for (const auto& [width, height] : {std::pair(0, 3), std::pair(3, 0), std::pair(-2, -3)}) {
        EXPECT_EQ(write_pixels(path, width, height, nullptr).status, 0);
        EXPECT_EQ(write_pixels(path, width, height, pixel).status, 0) << width;
        EXPECT_EQ(load(path).size(), 54U);
    }
    const outcome negative = write_pixels(path, -2, 3, pixel);
    EXPECT_EQ(negative.status, 1);
    EXPECT_EQ(negative.printed, std::string(WRITE_ENTER) + WRITE_STORAGE);
}

TEST(BmpWrite, RawPlanesAndFailures) {
    const folder where;
    const bytes pixels = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    const auto write = [&](const std::string& path, int32_t width, int32_t height, int32_t offset,
                           int32_t step) {
        return observe([&] {
            return raw_plane_write(path.c_str(), width, height, pixels.data(), offset, step);
        });
    };
    const std::string good = where.file("plane.raw"), bad = where.file("missing/file");
    const auto written = [&](int32_t width, int32_t height, int32_t offset, int32_t step) {
        const outcome result = write(good, width, height, offset, step);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.printed, "");
        return load(good);
    };
    EXPECT_EQ(written(2, 2, 1, 3), (bytes{1, 4, 7, 10}));
    EXPECT_EQ(written(3, 1, 12, -4), (bytes{12, 8, 4}));
    EXPECT_EQ(written(0, 3, 0, 1), bytes());

    const outcome plane = write(bad, 1, 1, 0, 1);
    const outcome picture = write_pixels(bad, 1, 1, pixels.data());
    EXPECT_TRUE(plane.status == 1 && picture.status == 1);
    const std::string failed = "\nBMP_WRITE - Fatal error!\n  Could not open the output file ";
    EXPECT_EQ(plane.printed, failed + "name:" + bad + ".\n");
    EXPECT_EQ(picture.printed, WRITE_ENTER + failed + "filename:" + bad + ".\n");
    const faults::scope no_memory(faults::call::allocation, faults::every());
    EXPECT_EQ(write_pixels(good, 1, 1, pixels.data()).status, 1);
    const outcome starved = write(good, 1, 1, 0, 1);
    EXPECT_EQ(starved.status, 1);
    EXPECT_EQ(starved.printed, WRITE_STORAGE);
}

TEST(BmpFields, BothOrders) {
    bytes memory(7);  // the stream ends what is written with a zero
    uint32_t four = 7;
    uint16_t two = 7;
    for (const int32_t flag : {1, 0, 2}) {
        const byte_order order(flag);
        FILE* stream = fmemopen(memory.data(), memory.size(), "wb");
        EXPECT_EQ(write_u32(0x81726354, stream), 4);
        EXPECT_EQ(write_u16(0xf1e2, stream), 2);
        fclose(stream);
        EXPECT_EQ(memory, flag == 1 ? (bytes{0x54, 0x63, 0x72, 0x81, 0xe2, 0xf1, 0})
                                    : (bytes{0x81, 0x72, 0x63, 0x54, 0xf1, 0xe2, 0}));
        stream = fmemopen(memory.data(), 6, "rb");
        EXPECT_TRUE(read_u32(&four, stream) == 0 && read_u16(&two, stream) == 0);
        // Too short a field changes nothing.
        EXPECT_TRUE(fseek(stream, 5, SEEK_SET) == 0 && read_u16(&two, stream) == 1);
        EXPECT_TRUE(fseek(stream, 3, SEEK_SET) == 0 && read_u32(&four, stream) == 1);
        EXPECT_TRUE(four == 0x81726354 && two == 0xf1e2);
        fclose(stream);
    }
}

// In both byte orders, from pixels of any step.
TEST(BmpRead, RoundTrips) {
    const folder where;
    const std::string path = where.file("round.bmp");
    std::mt19937 random(5);
    for (uint32_t trial = 0; trial < 120; ++trial) {
        const byte_order order(trial % 3 == 0 ? 0 : 1);
        const auto width = static_cast<int32_t>(1 + random() % (trial < 40 ? 9 : 70));
        const auto height = static_cast<int32_t>(1 + random() % 40);
        const auto step = static_cast<int32_t>(3 + trial % 5);
        const int32_t skip = step == 3 ? 0 : static_cast<int32_t>(trial % 3) - 1;
        const size_t first = skip != 0 ? 1 : 0, count = static_cast<size_t>(width * height);
        const bytes source = random_bytes(count * static_cast<size_t>(step), trial);
        EXPECT_EQ(write_pixels(path, width, height, source.data(), step, skip).status, 0);
        bytes colours(4 * count, 255), mask(4 * count);
        for (size_t p = 0; p < count; ++p) {
            const uint8_t* const pixel = source.data() + p * static_cast<size_t>(step) + first;
            std::copy_n(pixel, 3, colours.data() + 4 * p + 1);
            mask[p] = pixel[0];
        }
        for (const reader routine : {bmp_read, bmp_read_mask}) {
            const read_outcome result = read_file(path, routine);
            ASSERT_EQ(result.status, 0);
            EXPECT_EQ(result.printed, "");
            EXPECT_TRUE(result.read.width == width && result.read.height == height);
            EXPECT_EQ(result.read.pixels, routine == bmp_read ? colours : mask) << trial;
        }
    }
}

TEST(BmpRead, StreamRoutines) {
    bytes file = random_file(3, 2, 4);
    int32_t width = 1;
    int32_t height = 2;
    uint32_t offset = 3;
    for (size_t size = 1; size <= 54; ++size) {
        FILE* stream = fmemopen(file.data(), size, "rb");
        const int32_t status = bmp_read_header(stream, &width, &height, &offset);
        EXPECT_EQ(status, size == 54 ? 0 : 1) << size;
        EXPECT_EQ(offset, size == 54 ? 54U : 3U) << size;
        EXPECT_EQ(ftell(stream), static_cast<long>(size));
        fclose(stream);
    }
    EXPECT_TRUE(width == 3 && height == 2);
    bytes plane(6);
    for (size_t size = 1; size <= 24; ++size) {
        FILE* stream = fmemopen(file.data() + 54, size, "rb");
        const auto status = bmp_read_data(stream, 3, 2, plane.data(), plane.data(), plane.data());
        EXPECT_EQ(status, size < 21 ? 1 : 0) << size;
        fclose(stream);
    }
}

TEST(BmpRead, Failures) {
    const folder where;
    const std::string path = where.file("some.bmp"), pipe = where.file("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    store(path, random_file(2, 2, 1));
    int32_t size = 0;
    uint8_t* block = nullptr;
    for (const reader routine : {bmp_read, bmp_read_mask}) {
        const auto expect = [&](const char* printed, const std::function<int32_t()>& call) {
            const outcome result = observe(call);
            EXPECT_EQ(result.status, 1);
            EXPECT_EQ(result.printed, printed);
        };
        for (const std::string& name : {where.file("missing"), where.file(""), pipe})
            EXPECT_EQ(read_file(name, routine).printed, NOT_OPENED) << name;
        expect(NOT_OPENED,
               [&] { return routine(nullptr, &size, &size, &block, &block, &block, &block); });
        for (int missing = 0; missing < 6; ++missing) {
            int32_t* const sizes[] = {missing == 0 ? nullptr : &size,
                                      missing == 1 ? nullptr : &size};
            const auto given = [&](int i) { return i == missing ? nullptr : &block; };
            expect(NO_STORAGE, [&] {
                return routine(path.c_str(), sizes[0], sizes[1], given(2), given(3), given(4),
                               given(5));
            });
        }
        for (int failing = 0; failing < 2; ++failing) {
            const faults::scope no_memory(faults::call::allocation, faults::nth(failing));
            expect(NO_STORAGE, [&] {
                return routine(path.c_str(), &size, &size, &block, &block, &block, &block);
            });
            EXPECT_EQ(block, nullptr);
        }
    }
}

TEST(BmpRead, PrintsTheSizeOfAFile) {
    const folder where;
    const std::string path = where.file("some.bmp");
    store(path, random_file(12, 7, 1));
    const outcome good = observe([&] { return BMP_READ_TEST(path.c_str()); });
    EXPECT_EQ(good.status, 0);
    EXPECT_EQ(good.printed, "BMP_READ_TEST:\n  XSIZE = 12.\n  YSIZE = 7.\n");
    store(path, {'B', 'A'});
    const outcome bad = observe([&] { return BMP_READ_TEST(path.c_str()); });
    EXPECT_EQ(bad.status, 1);
    EXPECT_EQ(bad.printed, std::string(BAD_HEADER) +
                               "BMP_READ_TEST:\n  XSIZE = 0.\n  YSIZE = 0.\n"
                               "\nBMP_READ_TEST: Fatal error!\n  BMP_READ failed.\n");
}

}  // namespace
