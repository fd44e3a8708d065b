#include "pictures/picture.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "pictures/errors.h"

namespace tool {
namespace {

using vips::VImage;

// A path may carry libvips options in brackets, such as "scan.tif[page=2]".
std::string without_options(const std::string& path) {
    char* plain = vips_filename_get_filename(path.c_str());
    std::string result = plain;
    g_free(plain);
    return result;
}

VImage open_upright(const std::string& path) {
    if (access(without_options(path).c_str(), R_OK) != 0) {
        throw Error(Exit::no_input, path + ": cannot be read: " + std::strerror(errno));
    }
    return VImage::new_from_file(path.c_str(),
                                 VImage::option()->set("fail_on", VIPS_FAIL_ON_TRUNCATED))
        .autorot();
}

template <typename Step>
auto reading(const std::string& path, const Step& step) {
    try {
        return step();
    } catch (const vips::VError& error) {
        throw Error(Exit::no_input, path + ": cannot be read: " + vips_message(error));
    }
}

double largest_alpha(const VImage& image) {
    switch (image.interpretation()) {
        case VIPS_INTERPRETATION_RGB16:
        case VIPS_INTERPRETATION_GREY16:
            return 65535.0;
        case VIPS_INTERPRETATION_scRGB:
            return 1.0;
        default:
            return 255.0;
    }
}

// Through the embedded colour profile where the file has a usable one.
VImage colour_to_srgb(const VImage& colour) {
    if (colour.get_typeof("icc-profile-data") != 0) {
        try {
            return colour.icc_transform("srgb", VImage::option()->set("embedded", true));
        } catch (const vips::VError&) {
            vips_error_clear();
        }
    }
    return colour.colourspace(
        VIPS_INTERPRETATION_sRGB,
        VImage::option()->set("source_space", vips_image_guess_interpretation(colour.get_image())));
}

VImage to_srgb(const VImage& image) {
    const bool has_alpha = image.has_alpha();
    const VImage colour =
        has_alpha ? image.extract_band(0, VImage::option()->set("n", image.bands() - 1)) : image;
    VImage result = colour_to_srgb(colour);
    if (result.bands() > 3) result = result.extract_band(0, VImage::option()->set("n", 3));
    result = result.cast(VIPS_FORMAT_UCHAR);
    if (!has_alpha) return result;
    VImage alpha = image.extract_band(image.bands() - 1);
    if (image.format() != VIPS_FORMAT_UCHAR) {
        alpha = (alpha * (255.0 / largest_alpha(image))).rint().cast(VIPS_FORMAT_UCHAR);
    }
    return result.bandjoin(alpha);
}

}  // namespace

std::string text(const Size& size) {
    return std::to_string(size.width) + " x " + std::to_string(size.height);
}

Size size_of(const VImage& image) {
    return {image.width(), image.height()};
}

std::string vips_message(const vips::VError& error) {
    std::string message = error.what();
    vips_error_clear();
    while (!message.empty() && message.back() == '\n')
        message.pop_back();
    for (size_t at = 0; (at = message.find('\n', at)) != std::string::npos;) {
        message.replace(at, 1, "; ");
    }
    return message;
}

Size picture_size(const std::string& path) {
    return reading(path, [&] { return size_of(open_upright(path)); });
}

bool picture_has_alpha(const std::string& path) {
    return reading(path, [&] { return open_upright(path).has_alpha(); });
}

VImage load_picture(const std::string& path) {
    return reading(path, [&] { return to_srgb(open_upright(path)).copy_memory(); });
}

VImage load_mask(const std::string& path) {
    return reading(path, [&] {
        VImage image = open_upright(path);
        if (image.has_alpha()) image = image.flatten();
        if (image.interpretation() != VIPS_INTERPRETATION_B_W) {
            image = image.colourspace(VIPS_INTERPRETATION_B_W);
        }
        return image.extract_band(0).cast(VIPS_FORMAT_UCHAR).copy_memory();
    });
}

}  // namespace tool
