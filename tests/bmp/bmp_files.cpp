// SPDX-License-Identifier: Apache-2.0
#include "bmp_files.h"

#include <stdio.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "bmp/bmp_fields.h"
#include "pool/faults.h"

namespace bmp_files {

BmpTest::BmpTest() {
    EXPECT_NE(mkdtemp(folder_.data()), nullptr);
}

BmpTest::~BmpTest() {
    byte_order_flag = 1;
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

bytes load(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    EXPECT_TRUE(stream) << path;
    return bytes(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
}

void store(const std::string& path, const bytes& content) {
    // A new file each time: some file systems wait for the disk when one is overwritten.
    std::filesystem::remove(path);
    std::ofstream stream(path, std::ios::binary);
    stream.write(reinterpret_cast<const char*>(content.data()),
                 static_cast<std::streamsize>(content.size()));
    EXPECT_TRUE(stream.flush()) << path;
}

outcome observe(const std::function<int32_t()>& call) {
    testing::internal::CaptureStdout();
    const int64_t before = faults::live_blocks();
    const int32_t status = call();
    EXPECT_EQ(faults::live_blocks(), before);
    fflush(stdout);
    return {status, testing::internal::GetCapturedStdout()};
}

bool picture::operator==(const picture& other) const {
    return width == other.width && height == other.height && pixels == other.pixels;
}

outcome read_file(const std::string& path, reader routine, picture* read, int failing) {
    uint8_t junk = 0;
    uint8_t* pixels = &junk;
    uint8_t* planes[] = {&junk, &junk, &junk};
    *read = {-77, -77, {}};
    const outcome result = observe([&] {
        const faults::scope allocations(faults::call::allocation, faults::nth(failing));
        const int32_t status = routine(path.c_str(), &read->width, &read->height, &pixels,
                                       &planes[0], &planes[1], &planes[2]);
        EXPECT_EQ(allocations.calls(), status == 0 || failing >= 0 ? 2 : 0);
        if (status != 0) return status;
        read->pixels.assign(pixels, pixels + int64_t{4} * read->width * read->height);
        free(pixels);
        pixels = nullptr;
        return status;
    });
    EXPECT_TRUE(result.first == 0 || *read == picture());
    for (const uint8_t* block : {pixels, planes[0], planes[1], planes[2]})
        EXPECT_EQ(block, nullptr);
    return result;
}

bytes random_bytes(size_t size, uint32_t seed) {
    std::mt19937 random(seed);
    bytes result(size);
    for (uint8_t& value : result)
        value = static_cast<uint8_t>(random());
    return result;
}

void set_field(bytes* file, size_t at, uint32_t value) {
    for (size_t i = 0; i < 4 && at + i < file->size(); ++i)
        (*file)[at + i] = static_cast<uint8_t>(value >> 8 * i);
}

bytes random_file(int32_t width, int32_t height, uint32_t seed) {
    const auto columns = static_cast<uint32_t>(width), rows = static_cast<uint32_t>(height);
    const uint32_t offset = 54 + seed % 3 * 42;
    bytes file = random_bytes(offset + (columns * 3 + 3) / 4 * 4 * rows, seed);
    set_field(&file, 0, 0x4D42);
    set_field(&file, 10, offset);
    set_field(&file, 18, columns);
    set_field(&file, 22, rows);
    return file;
}

picture expected_picture(const bytes& file) {
    if (file.size() < 54 || file[0] != 'B' || file[1] != 'M') return {};
    const auto field = [&](size_t at) {
        return file[at] | file[at + 1] << 8 | file[at + 2] << 16 |
               static_cast<int32_t>(static_cast<uint32_t>(file[at + 3]) << 24);
    };
    picture result = {field(18), field(22), {}};
    const int64_t offset = static_cast<uint32_t>(field(10));
    if (result.width < 1 || result.height < 1 || offset < 54) return {};
    // In floating point nothing overflows, and what fits a file is exact.
    const int64_t row_bytes = (int64_t{3} * result.width + 3) / 4 * 4;
    const double end = static_cast<double>(row_bytes) * (result.height - 1) + result.width * 3.0;
    if (end > static_cast<double>(file.size()) - static_cast<double>(offset)) return {};
    for (int32_t y = result.height - 1; y >= 0; --y) {
        for (int32_t x = 0; x < result.width; ++x) {
            const uint8_t* const bgr = file.data() + offset + row_bytes * y + x * 3;
            result.pixels.insert(result.pixels.end(), {255, bgr[2], bgr[1], bgr[0]});
        }
    }
    return result;
}

}  // namespace bmp_files
