// SPDX-License-Identifier: Apache-2.0
// Reads image files of any kind that libvips knows: the picture that is changed, the one that holds
// the object, and masks.
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

// All of these give a picture as one sees it, with the orientation of its EXIF data applied. A path
// of "-" is standard input.

// These read the header only.
Size picture_size(const std::string& path);
bool picture_has_alpha(const std::string& path);

// A picture that stays what it is but for what is put into it.
struct Photo {
    // 8-bit red, green and blue and, when the file has it, alpha, in memory, with the file's
    // metadata.
    vips::VImage pixels;
    std::string profile;  // the colour profile (ICC) of the pixels; empty: sRGB
};

// The values of an 8-bit RGB file are not changed. Others are converted to sRGB, with a warning.
Photo load_destination(const std::string& path);

// A picture that lies over the photo's pixels, with the photo's metadata. Thumbnails, which would
// show the old picture, are left out.
vips::VImage with_metadata(const vips::VImage& picture, const Photo& photo);

// 8 bits in memory, in the colours of the destination: 3 bands, or 4 when the file has alpha.
vips::VImage load_source(const std::string& path, const Photo& destination);

// The same in sRGB, for a picture that stands alone.
vips::VImage load_picture(const std::string& path);

// One 8-bit band in memory: the alpha channel of a file that has one which is not opaque all over,
// otherwise the grey value. Colours are warned about.
vips::VImage load_mask(const std::string& path);

}  // namespace tool

#endif
