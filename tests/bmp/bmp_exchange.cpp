// Bare bytes into a bitmap file and back, for the exchange with other programs.
#include <stdlib.h>

#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "bmp/bmp_read.h"
#include "bmp/bmp_write.h"

namespace {

// write WIDTH HEIGHT RGB BMP
int write(char** argument) {
    std::ifstream input(argument[4], std::ios::binary);
    const std::vector<char> rgb{std::istreambuf_iterator<char>(input),
                                std::istreambuf_iterator<char>()};
    return bmp_write(argument[5], atoi(argument[2]), atoi(argument[3]),
                     reinterpret_cast<const uint8_t*>(rgb.data()), nullptr, nullptr, nullptr, 3, 0);
}

// read BMP ARGB, mask BMP GREY: the pixels' bytes as they are, of a mask those of its plane
int read(char** argument, bool mask) {
    int32_t width;
    int32_t height;
    uint8_t* pixels;
    uint8_t* planes[3];
    const auto routine = mask ? bmp_read_mask : bmp_read;
    if (routine(argument[2], &width, &height, &pixels, &planes[0], &planes[1], &planes[2]) != 0)
        return 1;
    std::cout << width << "x" << height << "\n";
    std::ofstream output(argument[3], std::ios::binary);
    const auto count = static_cast<std::streamsize>(width) * height * (mask ? 1 : 4);
    output.write(reinterpret_cast<const char*>(pixels), count);
    free(pixels);
    return output.flush() ? 0 : 2;
}

}  // namespace

int main(int count, char** argument) {
    const std::string command = count > 1 ? argument[1] : "";
    if (command == "write" && count == 6) return write(argument);
    if ((command == "read" || command == "mask") && count == 4)
        return read(argument, command == "mask");
    std::cerr << "usage: bmp_exchange write WIDTH HEIGHT RGB BMP | read BMP ARGB | mask BMP GREY\n";
    return 2;
}
