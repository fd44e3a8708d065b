// bmp_seeds FOLDER: makes the folder and writes the bitmap reader's first inputs into it.
#include <filesystem>
#include <iostream>
#include <string>
#include <system_error>
#include <vector>

#include "bmp/bmp_write.h"

int main(int count, char** argument) {
    if (count != 2) {
        std::cerr << "usage: bmp_seeds FOLDER\n";
        return 2;
    }
    const std::filesystem::path folder = argument[1];
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    for (const int32_t width : {1, 2, 3, 4, 9}) {
        for (const int32_t height : {1, 2, 5}) {
            std::vector<uint8_t> pixels(static_cast<size_t>(width * height * 4));
            for (size_t i = 0; i < pixels.size(); ++i)
                pixels[i] = static_cast<uint8_t>(i * 37);
            const std::filesystem::path path =
                folder / (std::to_string(width) + "x" + std::to_string(height) + ".bmp");
            if (bmp_write(path.c_str(), width, height, pixels.data(), nullptr, nullptr, nullptr, 4,
                          1) != 0)
                return 1;
        }
    }
    return 0;
}
