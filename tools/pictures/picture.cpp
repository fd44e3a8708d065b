// SPDX-License-Identifier: Apache-2.0
#include "pictures/picture.h"

#include <algorithm>
#include <vector>

#include "pictures/colour_profile.h"
#include "pictures/errors.h"
#include "pictures/exif_thumbnail.h"
#include "pictures/picture_file.h"

namespace tool {
namespace {

using vips::VImage;

// A mask whose red, green and blue differ by more is coloured; lossy files blur less than that.
constexpr double grey_tolerance = 8.0;

// Turning needs all pixels at hand, so it comes last.
VImage upright_in_memory(const VImage& image) {
    VImage result = image.copy_memory();
    if (vips_image_get_orientation(result.get_image()) > 1) result = result.autorot().copy_memory();
    return result;
}

VImage band_to_8_bits(const VImage& band) {
    switch (band.format()) {
        case VIPS_FORMAT_UCHAR:
            return band;
        case VIPS_FORMAT_USHORT:
            return (band / 257.0).rint().cast(VIPS_FORMAT_UCHAR);
        default:
            return band.cast(VIPS_FORMAT_UCHAR);
    }
}

bool is_coloured(const VImage& image) {
    const VImage colour = band_to_8_bits(image.extract_band(0, VImage::option()->set("n", 3)));
    const VImage red = colour.extract_band(0);
    const VImage green = colour.extract_band(1);
    const VImage blue = colour.extract_band(2);
    return std::max((red - green).abs().max(), (green - blue).abs().max()) > grey_tolerance;
}

// Without width, bands and the like, which every image has.
std::vector<std::string> metadata_fields(const VImage& image) {
    const VImage plain = VImage::new_matrix(1, 1);
    std::vector<std::string> result;
    char** const fields = vips_image_get_fields(image.get_image());
    for (char** field = fields; *field; field++) {
        if (plain.get_typeof(*field) == 0) result.emplace_back(*field);
    }
    g_strfreev(fields);
    return result;
}

VImage grey_values(const VImage& image) {
    if (image.interpretation() == VIPS_INTERPRETATION_B_W) return image.extract_band(0);
    return image.colourspace(VIPS_INTERPRETATION_B_W).extract_band(0);
}

}  // namespace

std::string text(const Size& size) {
    return std::to_string(size.width) + " x " + std::to_string(size.height);
}

Size size_of(const VImage& image) {
    return {image.width(), image.height()};
}

Size picture_size(const std::string& path) {
    return reading(path, [&] { return size_of(open_picture(path).autorot()); });
}

bool picture_has_alpha(const std::string& path) {
    return reading(path, [&] { return open_picture(path).has_alpha(); });
}

Photo load_destination(const std::string& path) {
    return reading(path, [&] {
        VImage image = open_picture(path);
        if (!is_8_bit_rgb(image)) {
            warn(input_name(path) + ": " + kind_of_pixels(image) + " is converted to 8-bit sRGB");
            image = to_srgb(image);
        }
        const VImage pixels = upright_in_memory(image);
        return Photo{pixels, profile_of(pixels)};
    });
}

VImage with_metadata(const VImage& picture, const Photo& photo) {
    VipsImage* const from = photo.pixels.get_image();
    VImage result = picture.copy(
        VImage::option()->set("xres", photo.pixels.xres())->set("yres", photo.pixels.yres()));
    if (photo.pixels.get_typeof(VIPS_META_EXIF_NAME) != 0) {
        size_t size = 0;
        const void* const bytes = photo.pixels.get_blob(VIPS_META_EXIF_NAME, &size);
        const std::string exif = without_thumbnail({static_cast<const char*>(bytes), size});
        vips_image_set_blob_copy(result.get_image(), VIPS_META_EXIF_NAME, exif.data(), exif.size());
        // This has set all tags that are in the data. Those of the photo hold, which is upright.
        for (const std::string& field : metadata_fields(result)) {
            if (field != VIPS_META_EXIF_NAME) result.remove(field.c_str());
        }
    }
    for (const std::string& field : metadata_fields(photo.pixels)) {
        const bool of_thumbnail =
            field == "jpeg-thumbnail-data" || field.compare(0, 10, "exif-ifd1-") == 0;
        if (field == VIPS_META_EXIF_NAME || of_thumbnail) continue;
        GValue value = G_VALUE_INIT;
        if (vips_image_get(from, field.c_str(), &value) != 0) continue;
        vips_image_set(result.get_image(), field.c_str(), &value);
        g_value_unset(&value);
    }
    return result;
}

VImage load_source(const std::string& path, const Photo& destination) {
    return reading(path, [&] {
        VImage image = open_picture(path);
        const bool same_colours = same_profile(profile_of(image), destination.profile);
        if (!is_8_bit_rgb(image) || !same_colours) {
            image = same_profile("", destination.profile) ? to_srgb(image)
                                                          : to_profile(image, destination.profile);
        }
        return upright_in_memory(image);
    });
}

VImage load_picture(const std::string& path) {
    return load_source(path, Photo{});
}

VImage load_mask(const std::string& path) {
    return reading(path, [&] {
        VImage image = upright_in_memory(open_picture(path));
        if (image.has_alpha()) {
            const VImage alpha =
                band_to_8_bits(image.extract_band(image.bands() - 1)).copy_memory();
            if (alpha.min() < 255.0) return alpha;
            image = image.extract_band(0, VImage::option()->set("n", image.bands() - 1));
        }
        if (image.bands() >= 3 && is_coloured(image)) {
            warn(input_name(path) + ": the mask is coloured; its grey values are taken");
        }
        return band_to_8_bits(grey_values(image)).copy_memory();
    });
}

}  // namespace tool
