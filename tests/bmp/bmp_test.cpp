// SPDX-License-Identifier: Apache-2.0
// Bitmap dumps: the bytes of the files, reading them back, and what is said when that fails.
#include <stdio.h>
#include <sys/stat.h>

#include <algorithm>
#include <random>
#include <string>

#include "bmp/bmp_fields.h"
#include "bmp/bmp_read.h"
#include "bmp/bmp_write.h"
#include "bmp_files.h"
#include "pool/faults.h"

namespace {

using namespace bmp_files;

class BmpWrite : public BmpTest {};
class BmpRead : public BmpTest {};

const std::string WRITE_ENTER = "bmp_write enter\n";
const std::string WRITE_STORAGE =
    "\nBMP_WRITE - Fatal error!\n  Could not allocate data storage.\n";
const std::string NOT_WRITTEN = "\nBMP_WRITE - Fatal error!\n  Could not open the output file ";
const std::string NOT_OPENED = "\nBMP_READ - Fatal error!\n  Could not open the input file.\n";
const std::string NO_STORAGE = "\nBMP_READ: Fatal error!\n  Could not allocate data storage.\n";

outcome write_pixels(const std::string& path, int32_t width, int32_t height, const uint8_t* pixels,
                     int32_t step = 4, int32_t skip = 1) {
    return observe([&] {
        return bmp_write(path.c_str(), width, height, pixels, nullptr, nullptr, nullptr, step,
                         skip);
    });
}

TEST_F(BmpWrite, BytesOfAFile) {
    const bytes red = {1, 2}, green = {3, 4}, blue = {5, 6};
    const bytes least_first = {66, 77, 60, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0,  0, 40, 0,  // 16
                               0,  0,  1,  0, 0, 0, 2, 0, 0, 0, 1,  0, 24, 0, 0,  0,  // 32
                               0,  0,  0,  0, 0, 0, 0, 0, 0, 0, 0,  0, 0,  0, 0,  0,  // 48
                               0,  0,  0,  0, 0, 0, 6, 4, 2, 0, 5,  3, 1,  0};
    const bytes most_first = {66, 77, 0, 0, 0, 60, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0,  // 16
                              0,  40, 0, 0, 0, 1,  0, 0, 0, 2, 0, 1, 0, 24, 0, 0,  // 32
                              0,  0,  0, 0, 0, 0,  0, 0, 0, 0, 0, 0, 0, 0,  0, 0,  // 48
                              0,  0,  0, 0, 0, 0,  6, 4, 2, 0, 5, 3, 1, 0};
    for (const int32_t flag : {1, 0, 2}) {
        byte_order_flag = flag;
        const outcome result = observe([&] {
            return bmp_write(path("planes.bmp").c_str(), 1, 2, nullptr, red.data(), green.data(),
                             blue.data(), 0, 0);
        });
        EXPECT_EQ(result, outcome(0, WRITE_ENTER));
        EXPECT_EQ(load(path("planes.bmp")), flag == 1 ? least_first : most_first) << flag;
    }
}

TEST_F(BmpWrite, SizesWithoutPixels) {
    // Where no pixel is there to be read.
    const auto* const pixel = reinterpret_cast<const uint8_t*>(uintptr_t{1});
    for (const auto& [width, height] : {std::pair(0, 3), std::pair(3, 0), std::pair(-2, -3)}) {
        for (const uint8_t* const pixels : {pixel, static_cast<const uint8_t*>(nullptr)}) {
            EXPECT_EQ(write_pixels(path("empty.bmp"), width, height, pixels).first, 0) << width;
            EXPECT_EQ(load(path("empty.bmp")).size(), 54U);
        }
    }
    EXPECT_EQ(write_pixels(path("empty.bmp"), -2, 3, pixel),
              outcome(1, WRITE_ENTER + WRITE_STORAGE));
}

TEST_F(BmpWrite, RawPlanesAndFailures) {
    const bytes pixels = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    const std::string good = path("plane.raw"), bad = path("missing/file");
    const auto write = [&](const std::string& file, int32_t width, int32_t height, int32_t offset,
                           int32_t step) {
        return observe([&] {
            return raw_plane_write(file.c_str(), width, height, pixels.data(), offset, step);
        });
    };
    EXPECT_EQ(write(good, 2, 2, 1, 3), outcome(0, ""));
    EXPECT_EQ(load(good), (bytes{1, 4, 7, 10}));
    EXPECT_EQ(write(good, 3, 1, 12, -4), outcome(0, ""));
    EXPECT_EQ(load(good), (bytes{12, 8, 4}));
    EXPECT_EQ(write(good, 0, 3, 0, 1), outcome(0, ""));
    EXPECT_EQ(load(good), bytes());

    EXPECT_EQ(write(bad, 1, 1, 0, 1), outcome(1, NOT_WRITTEN + "name:" + bad + ".\n"));
    EXPECT_EQ(write_pixels(bad, 1, 1, pixels.data()),
              outcome(1, WRITE_ENTER + NOT_WRITTEN + "filename:" + bad + ".\n"));
    const faults::scope no_memory(faults::call::allocation, faults::every());
    EXPECT_EQ(write_pixels(good, 1, 1, pixels.data()), outcome(1, WRITE_ENTER + WRITE_STORAGE));
    EXPECT_EQ(write(good, 1, 1, 0, 1), outcome(1, WRITE_STORAGE));
}

// In both byte orders, from pixels of any step.
TEST_F(BmpRead, RoundTrips) {
    std::mt19937 random(5);
    for (uint32_t trial = 0; trial < 120; ++trial) {
        byte_order_flag = trial % 3 == 0 ? 0 : 1;
        const auto width = static_cast<int32_t>(1 + random() % (trial < 40 ? 9 : 70));
        const auto height = static_cast<int32_t>(1 + random() % 40);
        const auto step = static_cast<int32_t>(3 + trial % 5);
        const int32_t skip = step == 3 ? 0 : static_cast<int32_t>(trial % 3) - 1;
        const size_t count = static_cast<size_t>(width * height);
        const bytes source = random_bytes(count * static_cast<size_t>(step), trial);
        EXPECT_EQ(write_pixels(path("round.bmp"), width, height, source.data(), step, skip).first,
                  0);
        picture colours = {width, height, bytes(4 * count, 255)};
        picture mask = {width, height, bytes(4 * count)};
        for (size_t i = 0; i < count; ++i) {
            const uint8_t* const red =
                source.data() + i * static_cast<size_t>(step) + (skip != 0 ? 1 : 0);
            std::copy_n(red, 3, colours.pixels.data() + 4 * i + 1);
            mask.pixels[i] = *red;
        }
        for (const reader routine : {bmp_read, bmp_read_mask}) {
            picture read;
            EXPECT_EQ(read_file(path("round.bmp"), routine, &read), outcome(0, ""));
            EXPECT_TRUE(read == (routine == bmp_read ? colours : mask)) << trial;
        }
    }
}

// What is cut short changes no field.
TEST_F(BmpRead, StreamRoutines) {
    bytes file = random_file(3, 2, 3);
    int32_t width = 1;
    int32_t height = 2;
    uint32_t offset = 3, four = 4;
    uint16_t two = 5;
    for (size_t size = 1; size <= 54; ++size) {
        FILE* const stream = fmemopen(file.data(), size, "rb");
        EXPECT_EQ(bmp_read_header(stream, &width, &height, &offset), size == 54 ? 0 : 1) << size;
        EXPECT_EQ(offset, size == 54 ? 54U : 3U) << size;
        EXPECT_EQ(ftell(stream), static_cast<long>(size));
        // The end of the header is the beginning of nothing.
        EXPECT_TRUE(fseek(stream, -1, SEEK_END) == 0 && read_u16(&two, stream) == 1);
        EXPECT_TRUE(fseek(stream, -1, SEEK_END) == 0 && read_u32(&four, stream) == 1);
        fclose(stream);
    }
    EXPECT_TRUE(width == 3 && height == 2 && four == 4 && two == 5);
    bytes plane(6);
    for (size_t size = 1; size <= 24; ++size) {
        FILE* const stream = fmemopen(file.data() + 54, size, "rb");
        EXPECT_EQ(bmp_read_data(stream, 3, 2, plane.data(), plane.data(), plane.data()),
                  size < 21 ? 1 : 0)
            << size;
        fclose(stream);
    }
    // Nothing of a picture without pixels, whichever side it lacks.
    for (const int32_t side : {-1, 0}) {
        FILE* const stream = fmemopen(file.data(), 1, "rb");
        EXPECT_EQ(bmp_read_data(stream, side, 1, nullptr, nullptr, nullptr), 0) << side;
        EXPECT_EQ(bmp_read_data(stream, 1, side, nullptr, nullptr, nullptr), 0) << side;
        EXPECT_EQ(ftell(stream), 0);
        fclose(stream);
    }
}

TEST_F(BmpRead, Failures) {
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    store(path("some.bmp"), random_file(2, 2, 1));
    picture read;
    int32_t size = 0;
    uint8_t* block = nullptr;
    for (const reader routine : {bmp_read, bmp_read_mask}) {
        for (const char* const name : {"missing", "", "pipe"})
            EXPECT_EQ(read_file(path(name), routine, &read), outcome(1, NOT_OPENED)) << name;
        for (const int failing : {0, 1}) {
            EXPECT_EQ(read_file(path("some.bmp"), routine, &read, failing), outcome(1, NO_STORAGE));
        }
        for (int missing = 0; missing < 7; ++missing) {
            const std::string file = path("some.bmp");
            const auto given = [&](int i) { return i == missing ? nullptr : &block; };
            const outcome result = observe([&] {
                return routine(missing == 6 ? nullptr : file.c_str(),
                               missing == 0 ? nullptr : &size, missing == 1 ? nullptr : &size,
                               given(2), given(3), given(4), given(5));
            });
            EXPECT_EQ(result, outcome(1, missing == 6 ? NOT_OPENED : NO_STORAGE)) << missing;
        }
    }
}

TEST_F(BmpRead, PrintsTheSizeOfAFile) {
    const std::string file = path("some.bmp");
    const auto print = [&] { return observe([&] { return BMP_READ_TEST(file.c_str()); }); };
    store(file, random_file(12, 7, 1));
    EXPECT_EQ(print(), outcome(0, "BMP_READ_TEST:\n  XSIZE = 12.\n  YSIZE = 7.\n"));
    store(file, {'B', 'A'});
    EXPECT_EQ(print(), outcome(1,
                               "\nBMP_READ: Fatal error!\n  BMP_READ_HEADER failed.\n"
                               "BMP_READ_TEST:\n  XSIZE = 0.\n  YSIZE = 0.\n"
                               "\nBMP_READ_TEST: Fatal error!\n  BMP_READ failed.\n"));
}

}  // namespace
