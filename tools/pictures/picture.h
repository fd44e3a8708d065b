// Reads image files of any kind that libvips knows as 8-bit sRGB pictures or as masks.
#ifndef IMAGEBLEND_TOOLS_PICTURES_PICTURE_H
#define IMAGEBLEND_TOOLS_PICTURES_PICTURE_H

#include <string>
#include <vips/vips8>

namespace tool {

struct Size {
    int width;
    int height;
};

inline bool operator!=(const Size& a, const Size& b) {
    return a.width != b.width || a.height != b.height;
}
std::string text(const Size& size);
Size size_of(const vips::VImage& image);

// Size as one sees the picture, with the orientation of its EXIF data applied; reads the header
// only.
Size picture_size(const std::string& path);
bool picture_has_alpha(const std::string& path);

// 8-bit sRGB in memory: 3 bands, or 4 when the file has an alpha channel.
vips::VImage load_picture(const std::string& path);

// One 8-bit band in memory: the grey value of the file, on black where it is transparent.
vips::VImage load_mask(const std::string& path);

// The text that libvips left about a failure, on one line.
std::string vips_message(const vips::VError& error);

}  // namespace tool

#endif
