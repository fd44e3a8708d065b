// Files that no writer made: each is either refused, with nothing allocated, or read as what it is.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "bmp/bmp_read.h"
#include "bmp_files.h"

namespace {

using namespace bmp_files;

// Reads the file and compares with what it holds. Returns whether it was refused.
bool refused(const folder& where, const bytes& file, const std::string& what) {
    const std::string path = where.file("some.bmp");
    store(path, file);
    picture expected;
    const bool readable = expected_picture(file, &expected);
    const read_outcome result = read_file(path, bmp_read);
    EXPECT_EQ(result.status, readable ? 0 : 1) << what;
    EXPECT_EQ(result.printed,
              readable ? "" : "\nBMP_READ: Fatal error!\n  BMP_READ_HEADER failed.\n");
    EXPECT_EQ(result.allocations, readable ? 2 : 0) << what;
    EXPECT_EQ(result.read.width, expected.width) << what;
    EXPECT_EQ(result.read.height, expected.height) << what;
    EXPECT_EQ(result.read.pixels, expected.pixels) << what;
    return result.status != 0;
}

TEST(BmpHostile, EveryLengthOfAFile) {
    const folder where;
    bytes file = random_file(3, 4, 1);
    // A larger header, bytes behind the rows, fields that are read past, bytes in the padding.
    bytes other = file;
    other.insert(other.begin() + 54, 84, 99);
    set_field(&other, 2, 8, UINT64_MAX);
    set_field(&other, 10, 4, 138);
    set_field(&other, 14, 4, 124);
    set_field(&other, 26, 4, 0x00200007);
    set_field(&other, 30, 8, UINT64_MAX);
    set_field(&other, 138 + 9, 2, 0x0909);
    other.push_back(1);
    EXPECT_FALSE(refused(where, other, "a file that differs"));
    // The last three bytes are padding.
    for (size_t size = file.size(); size > 0; --size) {
        EXPECT_EQ(refused(where, file, std::to_string(size)), size < 54 + 4 * 12 - 3);
        file.pop_back();
    }
}

TEST(BmpHostile, SizesThatCannotBe) {
    const folder where;
    const uint32_t most = INT32_MAX, least = 0x80000000, minus = ~0U;
    const uint32_t headers[][3] = {
        {0, 4, 54},          {4, 0, 54},          {0, 0, 54},          {least, 4, 54},
        {4, least, 54},      {minus, minus, 54},  {4, minus - 3, 54},  {most, most, 54},
        {most, 1, 54},       {1, most, 54},       {most, 4, 54},       {65536, 65536, 54},
        {0x40000000, 4, 54}, {0x55555556, 1, 54}, {0x2aaaaaab, 2, 54}, {0x20000000, 8, 54},
        {4, 5, 54},          {5, 4, 54},          {4, 4, 55},          {4, 4, 103},
        {4, 4, 0},           {4, 4, 53},          {1, 1, 102},         {4, 4, least},
        {4, 4, minus},       {1, 1, most},        {most, most, minus}};
    for (const auto& [width, height, offset] : headers) {
        bytes file = random_file(4, 4, 2);
        set_field(&file, 18, 4, width);
        set_field(&file, 22, 4, height);
        set_field(&file, 10, 4, offset);
        EXPECT_TRUE(refused(where, file, std::to_string(width) + "x" + std::to_string(height)));
    }
}

TEST(BmpHostile, MutatedFiles) {
    const folder where;
    std::mt19937 random(20);
    const auto below = [&](size_t limit) { return static_cast<size_t>(random() % limit); };
    const uint64_t extremes[] = {0,          1,          2,          54,
                                 0xff,       0xffff,     0x10000,    0x7fffffff,
                                 0x80000000, 0xfffffffe, 0xffffffff, UINT64_MAX};
    const size_t places[] = {10, 18, 22};
    int count = 0;
    const int files = 6000;
    for (int i = 0; i < files && !testing::Test::HasFailure(); ++i) {
        bytes file = random_file(static_cast<int32_t>(1 + below(9)),
                                 static_cast<int32_t>(1 + below(9)), static_cast<uint32_t>(i));
        for (size_t changes = 1 + below(3); changes > 0 && !file.empty(); --changes) {
            const size_t kind = below(6), at = below(file.size());
            if (kind == 0 || kind > 3)
                file[at % (i % 2 == 0 ? 30 : file.size())] = static_cast<uint8_t>(random());
            if (kind == 1) file.resize(at);
            if (kind == 2)
                set_field(&file, 2 + 2 * below(26), 2 + 2 * below(4), extremes[below(12)]);
            // The data offset, the width or the height near to what fits.
            if (kind == 3) set_field(&file, places[below(3)], 4, below(140));
        }
        if (refused(where, file, "file " + std::to_string(i))) ++count;
    }
    // Both kinds are there in numbers.
    EXPECT_GT(count, files / 5);
    EXPECT_LT(count, files - files / 5);
}

}  // namespace
