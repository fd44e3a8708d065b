#include "bmp_files.h"

#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

#include "pool/faults.h"

namespace bmp_files {

folder::folder() {
    std::string name = testing::TempDir() + "/bmp_tests_XXXXXX";
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no folder " + name);
    path_ = name;
}

folder::~folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

bytes load(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream) throw std::runtime_error("cannot read " + path);
    return bytes(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
}

void store(const std::string& path, const bytes& content) {
    // A new file each time: some file systems wait for the disk when one is overwritten.
    std::filesystem::remove(path);
    std::ofstream stream(path, std::ios::binary);
    stream.write(reinterpret_cast<const char*>(content.data()),
                 static_cast<std::streamsize>(content.size()));
    if (!stream.flush()) throw std::runtime_error("cannot write " + path);
}

outcome observe(const std::function<int32_t()>& call) {
    outcome result;
    testing::internal::CaptureStdout();
    const int64_t before = faults::live_blocks();
    result.status = call();
    EXPECT_EQ(faults::live_blocks(), before);
    fflush(stdout);
    result.printed = testing::internal::GetCapturedStdout();
    return result;
}

read_outcome read_file(const std::string& path, reader routine) {
    uint8_t junk = 0;
    uint8_t* pixels = &junk;
    uint8_t* planes[] = {&junk, &junk, &junk};
    picture read = {-77, -77, {}};
    int allocations = 0;
    const outcome seen = observe([&] {
        const faults::scope count(faults::call::allocation, [](int) { return false; });
        const int32_t status = routine(path.c_str(), &read.width, &read.height, &pixels, &planes[0],
                                       &planes[1], &planes[2]);
        allocations = count.calls();
        if (status == 0) {
            const size_t size = static_cast<size_t>(read.width) * static_cast<size_t>(read.height);
            read.pixels.assign(pixels, pixels + size * 4);
            free(pixels);
        } else {
            EXPECT_TRUE(pixels == nullptr && read.width == 0 && read.height == 0);
        }
        return status;
    });
    EXPECT_TRUE(planes[0] == nullptr && planes[1] == nullptr && planes[2] == nullptr);
    return {{seen.status, seen.printed, allocations}, read};
}

void set_field(bytes* file, size_t at, size_t size, uint64_t value) {
    for (size_t i = 0; i < size && at + i < file->size(); ++i)
        (*file)[at + i] = static_cast<uint8_t>(value >> 8 * i);
}

bytes random_bytes(size_t size, uint32_t seed) {
    std::mt19937 random(seed);
    bytes result(size);
    for (uint8_t& value : result)
        value = static_cast<uint8_t>(random());
    return result;
}

bytes random_file(int32_t width, int32_t height, uint32_t seed) {
    const auto used = static_cast<size_t>(width) * 3, row_bytes = (used + 3) / 4 * 4;
    bytes file = random_bytes(54 + row_bytes * static_cast<size_t>(height), seed);
    for (size_t i = 0; i < file.size(); ++i) {
        if (i < 54 || (i - 54) % row_bytes >= used) file[i] = 0;
    }
    const size_t fields[][2] = {{0, 0x4D42},
                                {2, used * static_cast<size_t>(height) + 54},
                                {10, 54},
                                {14, 40},
                                {18, static_cast<size_t>(width)},
                                {22, static_cast<size_t>(height)},
                                {26, 1},
                                {28, 24}};
    for (const auto& [at, value] : fields)
        set_field(&file, at, at == 0 || at > 25 ? 2 : 4, value);
    return file;
}

bool expected_picture(const bytes& file, picture* result) {
    *result = picture();
    if (file.size() < 54 || file[0] != 'B' || file[1] != 'M') return false;
    const auto field = [&](size_t at) {
        return file[at] | file[at + 1] << 8 | file[at + 2] << 16 |
               static_cast<int32_t>(static_cast<uint32_t>(file[at + 3]) << 24);
    };
    const int32_t width = field(18);
    const int32_t height = field(22);
    const int64_t offset = static_cast<uint32_t>(field(10));
    if (width < 1 || height < 1 || offset < 54) return false;
    // In floating point nothing overflows, and what fits a file is exact.
    const int64_t row_bytes = (static_cast<int64_t>(width) * 3 + 3) / 4 * 4;
    const double end =
        static_cast<double>(row_bytes) * (height - 1) + static_cast<double>(offset) + width * 3.0;
    if (end > static_cast<double>(file.size())) return false;
    *result = {width, height, {}};
    for (int32_t y = height - 1; y >= 0; --y) {
        for (int32_t x = 0; x < width; ++x) {
            const size_t at = static_cast<size_t>(offset + row_bytes * y + x * 3);
            result->pixels.insert(result->pixels.end(),
                                  {255, file[at + 2], file[at + 1], file[at]});
        }
    }
    return true;
}

}  // namespace bmp_files
