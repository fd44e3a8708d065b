// SPDX-License-Identifier: Apache-2.0
#include "pictures/exif_thumbnail.h"

#include <cstdint>

namespace tool {
namespace {

// Offsets count from here, where the data are those of a TIFF file.
constexpr size_t tiff_start = 6;

class TiffReader {
  public:
    explicit TiffReader(const std::string& exif)
        : exif_(exif), little_endian_(exif.compare(tiff_start, 2, "II") == 0) {}

    // The number in so many bytes at an offset; 0 beyond the end.
    uint32_t number(size_t offset, size_t bytes) const {
        const size_t at = tiff_start + offset;
        if (at + bytes > exif_.size()) return 0;
        uint32_t value = 0;
        for (size_t i = 0; i < bytes; i++) {
            const size_t place = at + (little_endian_ ? bytes - 1 - i : i);
            value = value << 8 | static_cast<uint8_t>(exif_[place]);
        }
        return value;
    }

  private:
    const std::string& exif_;
    bool little_endian_;
};

}  // namespace

std::string without_thumbnail(std::string exif) {
    if (exif.size() < tiff_start + 8 || exif.compare(0, 4, "Exif") != 0) return exif;
    const TiffReader reader(exif);
    // The first directory: a count, entries of 12 bytes, and the offset of the second one, which is
    // that of the thumbnail.
    const size_t first = reader.number(4, 4);
    const size_t link = tiff_start + first + 2 + 12 * size_t{reader.number(first, 2)};
    if (link + 4 <= exif.size()) exif.replace(link, 4, 4, '\0');
    return exif;
}

}  // namespace tool
