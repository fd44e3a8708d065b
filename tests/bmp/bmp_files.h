// SPDX-License-Identifier: Apache-2.0
// Bitmap files for the tests: built and understood byte by byte, and read through the library.
#ifndef IMAGEBLEND_TESTS_BMP_FILES_H
#define IMAGEBLEND_TESTS_BMP_FILES_H

#include <gtest/gtest.h>
#include <stdint.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace bmp_files {

using bytes = std::vector<uint8_t>;

// A test with a folder of its own, which starts with the usual byte order.
class BmpTest : public testing::Test {
  protected:
    BmpTest();
    ~BmpTest() override;
    std::string path(const std::string& name) const { return folder_ + "/" + name; }

  private:
    std::string folder_ = testing::TempDir() + "/bmp_tests_XXXXXX";
};

bytes load(const std::string& path);
void store(const std::string& path, const bytes& content);

// The status that a call returns and what it prints; that it leaks nothing is expected.
using outcome = std::pair<int32_t, std::string>;
outcome observe(const std::function<int32_t()>& call);

struct picture {
    int32_t width = 0;
    int32_t height = 0;
    bytes pixels;  // 4 bytes each
    bool operator==(const picture& other) const;
};

using reader = int32_t (*)(const char*, int32_t*, int32_t*, uint8_t**, uint8_t**, uint8_t**,
                           uint8_t**);

// Reads a file while allocation number `failing`, if any, fails. It is expected that a failure
// leaves zeros and null pointers, and that a file that is refused has cost no memory.
outcome read_file(const std::string& path, reader routine, picture* read, int failing = -1);

bytes random_bytes(size_t size, uint32_t seed);

// A bitmap file whose rows begin behind 54, 96 or 138 bytes, as the seed has it. Everything that is
// read past is random: other fields of the header, the rest of a larger one, padding.
bytes random_file(int32_t width, int32_t height, uint32_t seed);

// Overwrites four bytes of the file, as far as it reaches, least significant byte first.
void set_field(bytes* file, size_t at, uint32_t value);

// What a file holds; no pixels where it must be refused.
picture expected_picture(const bytes& file);

}  // namespace bmp_files

#endif
