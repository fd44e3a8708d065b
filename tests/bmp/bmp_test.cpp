// Bitmap dumps: the bytes of the files, reading them back, and what is said when that fails.
#include <gtest/gtest.h>
#include <stdio.h>
#include <sys/stat.h>

#include <array>
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

// Sets the byte order of the fields while it lives.
struct byte_order {
    explicit byte_order(int32_t flag) { byte_order_flag = flag; }
    ~byte_order() { byte_order_flag = 1; }
    byte_order(const byte_order&) = delete;
    byte_order& operator=(const byte_order&) = delete;
};

bytes random_bytes(size_t size, uint32_t seed) {
    std::mt19937 random(seed);
    bytes result(size);
    for (uint8_t& value : result)
        value = static_cast<uint8_t>(random());
    return result;
}

struct colour_planes {
    bytes red, green, blue;
};

bytes written_planes(const folder& where, int32_t width, int32_t height,
                     const colour_planes& planes) {
    const std::string path = where.file("planes.bmp");
    const outcome result = observe([&] {
        return bmp_write(path.c_str(), width, height, nullptr, planes.red.data(),
                         planes.green.data(), planes.blue.data(), 0, 0);
    });
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.printed, "bmp_write enter\n");
    EXPECT_EQ(result.leaked, 0);
    return load(path);
}

TEST(BmpWrite, BytesOfAFile) {
    const folder where;
    const bytes narrow = {66, 77, 60, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0,  0, 40, 0,  // 16
                          0,  0,  1,  0, 0, 0, 2, 0, 0, 0, 1,  0, 24, 0, 0,  0,  // 32
                          0,  0,  0,  0, 0, 0, 0, 0, 0, 0, 0,  0, 0,  0, 0,  0,  // 48
                          0,  0,  0,  0, 0, 0, 6, 4, 2, 0, 5,  3, 1,  0};
    EXPECT_EQ(written_planes(where, 1, 2, {{1, 2}, {3, 4}, {5, 6}}), narrow);

    const bytes wide = {66, 77, 66, 0, 0, 0, 0, 0, 0, 0,  54, 0, 0,  0, 40, 0,  // 16
                        0,  0,  4,  0, 0, 0, 1, 0, 0, 0,  1,  0, 24, 0, 0,  0,  // 32
                        0,  0,  0,  0, 0, 0, 0, 0, 0, 0,  0,  0, 0,  0, 0,  0,  // 48
                        0,  0,  0,  0, 0, 0, 9, 5, 1, 10, 6,  2, 11, 7, 3,  12, 8, 4};
    EXPECT_EQ(written_planes(where, 4, 1, {{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}}), wide);

    const byte_order most_significant_first(0);
    const bytes other = {66, 77, 0, 0, 0, 60, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0,  // 16
                         0,  40, 0, 0, 0, 1,  0, 0, 0, 2, 0, 1, 0, 24, 0, 0,  // 32
                         0,  0,  0, 0, 0, 0,  0, 0, 0, 0, 0, 0, 0, 0,  0, 0,  // 48
                         0,  0,  0, 0, 0, 0,  6, 4, 2, 0, 5, 3, 1, 0};
    EXPECT_EQ(written_planes(where, 1, 2, {{1, 2}, {3, 4}, {5, 6}}), other);
}

TEST(BmpWrite, PaddingOfEveryWidth) {
    const folder where;
    for (int32_t width = 1; width <= 9; ++width) {
        const bytes plane(static_cast<size_t>(width * 3), 200);
        const bytes file = written_planes(where, width, 3, {plane, plane, plane});
        const size_t row_bytes = static_cast<size_t>((width * 3 + 3) / 4 * 4);
        ASSERT_EQ(file.size(), 54 + 3 * row_bytes);
        EXPECT_EQ(file[2], width * 9 + 54);
        for (size_t i = 54; i < file.size(); ++i) {
            const bool is_padding = (i - 54) % row_bytes >= static_cast<size_t>(width * 3);
            EXPECT_EQ(file[i], is_padding ? 0 : 200) << width << " " << i;
        }
    }
}

TEST(BmpWrite, InterleavedPixels) {
    const folder where;
    const std::string path = where.file("interleaved.bmp");
    for (const int32_t step : {3, 4, 7}) {
        for (const int32_t skip : {0, 1, -5}) {
            const size_t first = skip != 0 ? 1 : 0;
            if (step == 3 && first == 1) continue;
            const bytes pixels = random_bytes(static_cast<size_t>(5 * 3 * step), 11);
            colour_planes planes;
            for (size_t i = first; i < pixels.size(); i += static_cast<size_t>(step)) {
                planes.red.push_back(pixels[i]);
                planes.green.push_back(pixels[i + 1]);
                planes.blue.push_back(pixels[i + 2]);
            }
            const outcome result = observe([&] {
                return bmp_write(path.c_str(), 5, 3, pixels.data(), nullptr, nullptr, nullptr, step,
                                 skip);
            });
            EXPECT_EQ(result.status, 0);
            EXPECT_EQ(result.leaked, 0);
            EXPECT_EQ(load(path), written_planes(where, 5, 3, planes)) << step << " " << skip;
        }
    }
}

TEST(BmpWrite, SizesWithoutPixels) {
    const folder where;
    const std::string path = where.file("empty.bmp");
    const uint8_t pixel[4] = {};
    const auto write = [&](int32_t width, int32_t height, const uint8_t* pixels) {
        return observe([&] {
            return bmp_write(path.c_str(), width, height, pixels, nullptr, nullptr, nullptr, 4, 1);
        });
    };
    for (const auto& [width, height] : {std::array{0, 3}, {3, 0}, {-2, -3}}) {
        EXPECT_EQ(write(width, height, nullptr).status, 0);
        EXPECT_EQ(write(width, height, pixel).status, 0) << width;
        EXPECT_EQ(load(path).size(), 54U);
    }
    const outcome negative = write(-2, 3, pixel);
    EXPECT_EQ(negative.status, 1);
    EXPECT_EQ(negative.printed,
              "bmp_write enter\n\nBMP_WRITE - Fatal error!\n  Could not allocate data storage.\n");
}

TEST(BmpWrite, RawPlanes) {
    const folder where;
    const std::string path = where.file("plane.raw");
    const bytes pixels = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    const auto write = [&](int32_t width, int32_t height, int32_t offset, int32_t step) {
        const outcome result = observe([&] {
            return raw_plane_write(path.c_str(), width, height, pixels.data(), offset, step);
        });
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.printed, "");
        EXPECT_EQ(result.leaked, 0);
        return load(path);
    };
    EXPECT_EQ(write(2, 2, 1, 3), (bytes{1, 4, 7, 10}));
    EXPECT_EQ(write(3, 1, 12, -4), (bytes{12, 8, 4}));
    EXPECT_EQ(write(0, 3, 0, 1), bytes());
}

TEST(BmpWrite, Failures) {
    const folder where;
    const std::string path = where.file("missing/file");
    const uint8_t pixel[4] = {};
    const outcome picture = observe(
        [&] { return bmp_write(path.c_str(), 1, 1, pixel, nullptr, nullptr, nullptr, 4, 1); });
    EXPECT_EQ(picture.status, 1);
    EXPECT_EQ(picture.printed,
              "bmp_write enter\n\nBMP_WRITE - Fatal error!\n"
              "  Could not open the output file filename:" +
                  path + ".\n");
    const outcome plane = observe([&] { return raw_plane_write(path.c_str(), 1, 1, pixel, 0, 1); });
    EXPECT_EQ(plane.status, 1);
    EXPECT_EQ(plane.printed,
              "\nBMP_WRITE - Fatal error!\n  Could not open the output file name:" + path + ".\n");
    EXPECT_EQ(plane.leaked, 0);

    const std::string good = where.file("good");
    const faults::scope no_memory(faults::call::allocation, faults::every());
    EXPECT_EQ(observe([&] {
                  return bmp_write(good.c_str(), 1, 1, pixel, nullptr, nullptr, nullptr, 4, 1);
              }).status,
              1);
    EXPECT_EQ(observe([&] { return raw_plane_write(good.c_str(), 1, 1, pixel, 0, 1); }).status, 1);
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
        EXPECT_EQ(read_u32(&four, stream), 0);
        EXPECT_EQ(read_u16(&two, stream), 0);
        EXPECT_EQ(four, 0x81726354);
        EXPECT_EQ(two, 0xf1e2);
        EXPECT_EQ(fseek(stream, 5, SEEK_SET), 0);
        EXPECT_EQ(read_u16(&two, stream), 1);
        EXPECT_EQ(fseek(stream, 3, SEEK_SET), 0);
        EXPECT_EQ(read_u32(&four, stream), 1);
        EXPECT_EQ(four, 0x81726354);
        EXPECT_EQ(two, 0xf1e2);
        fclose(stream);
    }
}

TEST(BmpRead, RoundTrips) {
    const folder where;
    const std::string path = where.file("round.bmp");
    std::mt19937 random(5);
    for (uint32_t trial = 0; trial < 120; ++trial) {
        const byte_order order(trial % 3 == 0 ? 0 : 1);
        const int32_t width = static_cast<int32_t>(1 + random() % 70);
        const int32_t height = static_cast<int32_t>(1 + random() % 40);
        bytes pixels = random_bytes(static_cast<size_t>(width * height * 4), trial);
        observe([&] {
            return bmp_write(path.c_str(), width, height, pixels.data(), nullptr, nullptr, nullptr,
                             4, 1);
        });
        const read_outcome colour = read_file(path, bmp_read);
        ASSERT_EQ(colour.status, 0);
        EXPECT_EQ(colour.printed, "");
        EXPECT_EQ(colour.leaked, 0);
        EXPECT_TRUE(colour.cleared);
        EXPECT_EQ(colour.read.width, width);
        EXPECT_EQ(colour.read.height, height);
        bytes mask(pixels.size());
        for (size_t i = 0; i < pixels.size(); i += 4) {
            mask[i / 4] = pixels[i + 1];
            pixels[i] = 255;
        }
        EXPECT_EQ(colour.read.pixels, pixels) << width << "x" << height;
        const read_outcome grey = read_file(path, bmp_read_mask);
        ASSERT_EQ(grey.status, 0);
        EXPECT_EQ(grey.leaked, 0);
        EXPECT_TRUE(grey.cleared);
        EXPECT_EQ(grey.read.pixels, mask) << width << "x" << height;
    }
}

TEST(BmpRead, FilesThatDifferFromTheWritersOwn) {
    const folder where;
    const std::string path = where.file("other.bmp");
    const bytes usual = random_file(5, 4, true, 3);
    store(path, usual);
    const bytes pixels = read_file(path, bmp_read).read.pixels;
    ASSERT_EQ(pixels.size(), 80U);
    const auto expect_same = [&](const char* what, const std::function<void(bytes*)>& change) {
        bytes file = usual;
        change(&file);
        store(path, file);
        const read_outcome result = read_file(path, bmp_read);
        EXPECT_EQ(result.status, 0) << what;
        EXPECT_EQ(result.read.pixels, pixels) << what;
    };
    expect_same("a larger header", [](bytes* file) {
        file->insert(file->begin() + 54, 84, 99);
        set_field(file, 10, 4, 138);
        set_field(file, 14, 4, 124);
    });
    expect_same("bytes behind the rows", [](bytes* file) { file->push_back(1); });
    expect_same("no padding at the end", [](bytes* file) { file->pop_back(); });
    expect_same("fields that are read past", [](bytes* file) {
        set_field(file, 2, 8, UINT64_MAX);
        set_field(file, 26, 4, 0x00200007);
        for (size_t at = 30; at < 54; at += 8)
            set_field(file, at, 8, UINT64_MAX);
    });
    expect_same("bytes in the padding", [](bytes* file) { file->at(54 + 15) = 9; });
}

TEST(BmpRead, StreamRoutines) {
    bytes file = random_file(3, 2, true, 4);
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
    EXPECT_EQ(width, 3);
    EXPECT_EQ(height, 2);
    bytes plane(6);
    for (size_t size = 1; size <= 24; ++size) {
        FILE* stream = fmemopen(file.data() + 54, size, "rb");
        EXPECT_EQ(bmp_read_data(stream, 3, 2, plane.data(), plane.data(), plane.data()),
                  size < 21 ? 1 : 0)
            << size;
        fclose(stream);
    }
}

TEST(BmpRead, Messages) {
    const folder where;
    const std::string path = where.file("some.bmp");
    const std::string pipe = where.file("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    store(path, random_file(2, 2, true, 1));
    int32_t size = 0;
    uint8_t* block = nullptr;
    for (const reader routine : {bmp_read, bmp_read_mask}) {
        for (const std::string& name : {where.file("missing"), where.file(""), pipe}) {
            const read_outcome result = read_file(name, routine);
            EXPECT_EQ(result.status, 1) << name;
            EXPECT_EQ(result.printed, NOT_OPENED) << name;
            EXPECT_TRUE(result.cleared) << name;
        }
        const outcome nameless =
            observe([&] { return routine(nullptr, &size, &size, &block, &block, &block, &block); });
        EXPECT_EQ(nameless.printed, NOT_OPENED);

        for (int missing = 0; missing < 6; ++missing) {
            const auto given = [&](int i) { return i == missing ? nullptr : &block; };
            const outcome result = observe([&] {
                return routine(path.c_str(), missing == 0 ? nullptr : &size,
                               missing == 1 ? nullptr : &size, given(2), given(3), given(4),
                               given(5));
            });
            EXPECT_EQ(result.status, 1) << missing;
            EXPECT_EQ(result.printed, NO_STORAGE) << missing;
            EXPECT_EQ(result.leaked, 0) << missing;
        }
        for (int failing = 0; failing < 2; ++failing) {
            const outcome result = observe([&] {
                const faults::scope no_memory(faults::call::allocation, faults::nth(failing));
                return routine(path.c_str(), &size, &size, &block, &block, &block, &block);
            });
            EXPECT_EQ(result.status, 1);
            EXPECT_EQ(result.printed, NO_STORAGE);
            EXPECT_EQ(result.leaked, 0);
            EXPECT_EQ(block, nullptr);
        }
    }
}

TEST(BmpRead, PrintsTheSizeOfAFile) {
    const folder where;
    const std::string path = where.file("some.bmp");
    store(path, random_file(12, 7, true, 1));
    const outcome good = observe([&] { return BMP_READ_TEST(path.c_str()); });
    EXPECT_EQ(good.status, 0);
    EXPECT_EQ(good.printed, "BMP_READ_TEST:\n  XSIZE = 12.\n  YSIZE = 7.\n");
    EXPECT_EQ(good.leaked, 0);
    store(path, {'B', 'A'});
    const outcome bad = observe([&] { return BMP_READ_TEST(path.c_str()); });
    EXPECT_EQ(bad.status, 1);
    EXPECT_EQ(bad.printed, std::string(BAD_HEADER) +
                               "BMP_READ_TEST:\n  XSIZE = 0.\n  YSIZE = 0.\n"
                               "\nBMP_READ_TEST: Fatal error!\n  BMP_READ failed.\n");
}

}  // namespace
