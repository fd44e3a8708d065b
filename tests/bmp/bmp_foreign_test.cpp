// SPDX-License-Identifier: Apache-2.0
// Files that the library did not write: damaged ones are refused, or read as what they are.
#include <stdlib.h>

#include <random>
#include <string>

#include "bmp/bmp_read.h"
#include "bmp/bmp_write.h"
#include "bmp_files.h"

namespace {

using namespace bmp_files;

class BmpForeign : public BmpTest {};

const char* const BAD_HEADER = "\nBMP_READ: Fatal error!\n  BMP_READ_HEADER failed.\n";

TEST_F(BmpForeign, WholeAndDamagedFiles) {
    std::mt19937 random(20);
    const auto below = [&](size_t limit) { return static_cast<size_t>(random() % limit); };
    const uint32_t extremes[] = {0,          1,          2,          53,         54,
                                 0xffff,     0x10000,    0x20000000, 0x2aaaaaab, 0x40000000,
                                 0x55555556, 0x7fffffff, 0x80000000, 0xfffffffd, 0xffffffff};
    const size_t places[] = {10, 18, 22};  // data offset, width, height
    int refused = 0;
    const int files = 6000;
    for (int i = 0; i < files && !HasFailure(); ++i) {
        bytes file = random_file(static_cast<int32_t>(1 + below(9)),
                                 static_cast<int32_t>(1 + below(9)), static_cast<uint32_t>(i));
        for (size_t changes = below(4); changes > 0 && !file.empty(); --changes) {
            const size_t kind = below(5), at = below(file.size()), place = places[below(3)];
            if (kind == 0) file[at] = static_cast<uint8_t>(random());
            if (kind == 1) file.resize(at);
            if (kind == 2) set_field(&file, place, extremes[below(15)]);
            if (kind == 3) set_field(&file, place, static_cast<uint32_t>(below(140)));
            if (kind == 4) file.resize(file.size() - std::min(below(9), file.size()));
        }
        store(path("some.bmp"), file);
        const picture expected = expected_picture(file);
        picture read;
        const bool refuse = expected.pixels.empty();
        EXPECT_EQ(read_file(path("some.bmp"), bmp_read, &read),
                  refuse ? outcome(1, BAD_HEADER) : outcome(0, ""))
            << "file " << i;
        EXPECT_TRUE(read == expected) << "file " << i;
        if (refuse) ++refused;
    }
    // Both kinds are there in numbers.
    EXPECT_GT(refused, files / 5);
    EXPECT_LT(refused, files - files / 5);
}

TEST_F(BmpForeign, ExchangeWithImageMagick) {
    // Another program named convert may stand first in the path.
    const auto magick = [&](const std::string& arguments) {
        const std::string command = "cd " + path("") +
                                    " && $(command -v magick || command -v convert-im6.q16) " +
                                    arguments;
        return system((command + " 2>complaints").c_str()) == 0;
    };
    if (!magick("-version >version")) GTEST_SKIP() << "ImageMagick is not installed";
    for (const int32_t width : {1, 2, 3, 4, 17, 64}) {
        const int32_t height = 65 - width;
        const bytes rgb = random_bytes(static_cast<size_t>(3 * width * height), 6);
        picture expected = {width, height, {}};
        for (size_t i = 0; i < rgb.size(); i += 3)
            expected.pixels.insert(expected.pixels.end(), {255, rgb[i], rgb[i + 1], rgb[i + 2]});

        const outcome written = observe([&] {
            return bmp_write(path("ours.bmp").c_str(), width, height, rgb.data(), nullptr, nullptr,
                             nullptr, 3, 0);
        });
        EXPECT_EQ(written.first, 0);
        // It complains about file sizes that leave padding out, and reads the picture all the same.
        magick("ours.bmp -depth 8 rgb:out.rgb");
        EXPECT_EQ(load(path("out.rgb")), rgb) << width;

        store(path("in.rgb"), rgb);
        const std::string size = std::to_string(width) + "x" + std::to_string(height);
        for (const std::string format : {"BMP3", "BMP"}) {  // headers of 40 and 124 bytes
            EXPECT_TRUE(magick("-depth 8 -size " + size + " rgb:in.rgb -type TrueColor " + format +
                               ":theirs.bmp"));
            picture read;
            EXPECT_EQ(read_file(path("theirs.bmp"), bmp_read, &read), outcome(0, ""));
            EXPECT_TRUE(read == expected) << format << " of " << size;
        }
    }
}

}  // namespace
