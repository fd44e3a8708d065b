// Bitmap files for the tests: built and understood byte by byte, and read through the library.
#ifndef IMAGEBLEND_TESTS_BMP_FILES_H
#define IMAGEBLEND_TESTS_BMP_FILES_H

#include <stdint.h>

#include <functional>
#include <string>
#include <vector>

namespace bmp_files {

using bytes = std::vector<uint8_t>;

// A folder that goes with its files when the object does.
class folder {
  public:
    folder();
    ~folder();
    folder(const folder&) = delete;
    folder& operator=(const folder&) = delete;

    std::string file(const std::string& name) const { return path_ + "/" + name; }

  private:
    std::string path_;
};

bytes load(const std::string& path);
void store(const std::string& path, const bytes& content);

// What `call` returns and prints; that it leaks nothing is expected.
struct outcome {
    int32_t status = 0;
    std::string printed;
    int allocations = 0;
};
outcome observe(const std::function<int32_t()>& call);

using reader = int32_t (*)(const char*, int32_t*, int32_t*, uint8_t**, uint8_t**, uint8_t**,
                           uint8_t**);

struct picture {
    int32_t width = 0;
    int32_t height = 0;
    bytes pixels;  // 4 bytes each
};
// What is read; after a failure all is expected to be zero or null.
struct read_outcome : outcome {
    picture read;
};
read_outcome read_file(const std::string& path, reader routine);

bytes random_bytes(size_t size, uint32_t seed);

// A bitmap file of random colours, least significant bytes first.
bytes random_file(int32_t width, int32_t height, uint32_t seed);

// Overwrites the field of `size` bytes at `at`, least significant byte first.
void set_field(bytes* file, size_t at, size_t size, uint64_t value);

// What a file holds; false where it must be refused.
bool expected_picture(const bytes& file, picture* result);

}  // namespace bmp_files

#endif
