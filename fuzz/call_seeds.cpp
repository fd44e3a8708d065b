// call_seeds FOLDER: makes the folder and writes the first inputs of the call fuzzers into it: each
// shape of scene a few times, the rest of the bytes at random.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <system_error>

#include "fuzz_scene.h"

int main(int count, char** argument) {
    if (count != 2) {
        std::cerr << "usage: call_seeds FOLDER\n";
        return 2;
    }
    const std::filesystem::path folder = argument[1];
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    support::dice random(1);
    for (int number = 0; number < 512; ++number) {
        std::string bytes(static_cast<size_t>(random.between(24, 96)), '\0');
        for (char& value : bytes)
            value = static_cast<char>(random.byte());
        bytes[0] = static_cast<char>(number);
        const std::filesystem::path path = folder / std::to_string(number);
        std::ofstream file(path, std::ios::binary);
        file << bytes;
        file.close();
        if (!file) {
            std::cerr << "call_seeds: cannot write " << path << "\n";
            return 1;
        }
    }
    return 0;
}
