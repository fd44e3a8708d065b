// Files that no writer made: each is either refused, with nothing allocated, or read as what it is.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "bmp/bmp_read.h"
#include "bmp_files.h"

namespace {

using namespace bmp_files;

// Reads the file and compares with what it holds. Returns whether it was refused.
bool check(const std::string& path, const bytes& file, const std::string& what) {
    store(path, file);
    picture expected;
    const bool readable = expected_picture(file, &expected);
    const read_outcome result = read_file(path, bmp_read);
    EXPECT_EQ(result.status, readable ? 0 : 1) << what;
    EXPECT_EQ(result.printed, readable ? "" : BAD_HEADER) << what;
    EXPECT_EQ(result.allocations, readable ? 2 : 0) << what;
    EXPECT_EQ(result.leaked, 0) << what;
    EXPECT_TRUE(result.cleared) << what;
    EXPECT_EQ(result.read.width, expected.width) << what;
    EXPECT_EQ(result.read.height, expected.height) << what;
    EXPECT_EQ(result.read.pixels, expected.pixels) << what;
    return result.status != 0;
}

TEST(BmpHostile, EveryLengthOfAFile) {
    const folder where;
    const bytes whole = random_file(3, 4, true, 1);
    for (size_t size = 0; size <= whole.size(); ++size) {
        const bytes file(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        // The last three bytes are padding.
        EXPECT_EQ(check(where.file("cut.bmp"), file, std::to_string(size)),
                  size < whole.size() - 3);
    }
}

TEST(BmpHostile, SizesThatCannotBe) {
    const folder where;
    const uint32_t most = INT32_MAX;
    const uint32_t least = 0x80000000;
    const struct {
        uint32_t width, height, offset;
    } headers[] = {
        {0, 4, 54},
        {4, 0, 54},
        {0, 0, 54},
        {least, 4, 54},
        {4, least, 54},
        {~0U, ~0U, 54},
        {4, static_cast<uint32_t>(-4), 54},  // a top-down picture
        {most, most, 54},
        {most, 1, 54},
        {1, most, 54},
        {most, 4, 54},
        {65536, 65536, 54},
        {0x40000000, 4, 54},
        {0x55555556, 1, 54},
        {0x2aaaaaab, 2, 54},
        {0x20000000, 8, 54},
        {4, 5, 54},
        {5, 4, 54},
        {4, 4, 55},
        {4, 4, 103},
        {4, 4, 0},
        {4, 4, 53},
        {1, 1, 102},
        {4, 4, least},
        {4, 4, ~0U},
        {1, 1, most},
        {most, most, ~0U},
    };
    for (const auto& header : headers) {
        bytes file = random_file(4, 4, true, 2);
        set_field(&file, 18, 4, header.width);
        set_field(&file, 22, 4, header.height);
        set_field(&file, 10, 4, header.offset);
        const std::string what = std::to_string(header.width) + "x" +
                                 std::to_string(header.height) + " at " +
                                 std::to_string(header.offset);
        EXPECT_TRUE(check(where.file("size.bmp"), file, what)) << what;
    }
}

TEST(BmpHostile, MutatedFiles) {
    const folder where;
    std::mt19937 random(20);
    const auto below = [&](size_t limit) { return static_cast<size_t>(random() % limit); };
    const uint64_t extremes[] = {0,          1,          2,          54,          0x7f,
                                 0xff,       0x7fff,     0xffff,     0x10000,     0x7fffffff,
                                 0x80000000, 0xfffffffe, 0xffffffff, 0x100000001, UINT64_MAX};
    const size_t places[] = {10, 18, 22};  // data offset, width, height
    int refused = 0;
    const int files = 12000;
    for (int i = 0; i < files && !testing::Test::HasFailure(); ++i) {
        bytes file =
            random_file(static_cast<int32_t>(1 + below(9)), static_cast<int32_t>(1 + below(9)),
                        true, static_cast<uint32_t>(i));
        for (size_t changes = 1 + below(3); changes > 0 && !file.empty(); --changes) {
            switch (below(5)) {
                case 0:
                    file[below(file.size())] ^= static_cast<uint8_t>(1U << below(8));
                    break;
                case 1:
                    file[below(file.size() < 30 ? file.size() : 30)] =
                        static_cast<uint8_t>(random());
                    break;
                case 2:
                    file.resize(below(file.size() + 1));
                    break;
                case 3:
                    set_field(&file, 2 + 2 * below(26), 2 + 2 * below(4),
                              extremes[below(std::size(extremes))]);
                    break;
                default:
                    // Near to what fits.
                    set_field(&file, places[below(3)], 4, below(140));
            }
        }
        if (check(where.file("mutant.bmp"), file, "file " + std::to_string(i))) ++refused;
    }
    // Both kinds are there in numbers.
    EXPECT_GT(refused, files / 5);
    EXPECT_LT(refused, files - files / 5);
}

}  // namespace
