// SPDX-License-Identifier: Apache-2.0
#include "pictures/colour_profile.h"

namespace tool {
namespace {

using vips::VImage;

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

VipsInterpretation colour_space(const VImage& image) {
    return vips_image_guess_interpretation(image.get_image());
}

VImage without_profile(const VImage& image) {
    VImage result = image.copy();
    result.remove(VIPS_META_ICC_NAME);
    return result;
}

// Through the embedded profile where there is a usable one.
VImage colour_to_srgb(const VImage& colour) {
    if (!profile_of(colour).empty()) {
        try {
            return colour.icc_transform("srgb", VImage::option()->set("embedded", true));
        } catch (const vips::VError&) {
            vips_error_clear();
        }
    }
    return without_profile(colour.colourspace(
        VIPS_INTERPRETATION_sRGB, VImage::option()->set("source_space", colour_space(colour))));
}

VImage three_8_bit_bands(VImage colour) {
    if (colour.bands() > 3) colour = colour.extract_band(0, VImage::option()->set("n", 3));
    return colour.cast(VIPS_FORMAT_UCHAR);
}

VImage colour_to_profile(const VImage& colour, const std::string& profile) {
    // In libvips's connection space, which the embedded profile leads to.
    VImage absolute = profile_of(colour).empty()
                          ? three_8_bit_bands(colour_to_srgb(colour))
                                .icc_import(VImage::option()->set("input_profile", "srgb"))
                          : colour.icc_import(VImage::option()->set("embedded", true));
    absolute = absolute.copy();
    vips_image_set_blob_copy(absolute.get_image(), VIPS_META_ICC_NAME, profile.data(),
                             profile.size());
    return absolute.icc_export();
}

// Converts the colour bands and joins the alpha channel again.
template <typename Convert>
VImage with_8_bit_alpha(const VImage& image, const Convert& convert) {
    if (!image.has_alpha()) return three_8_bit_bands(convert(image));
    const int bands = image.bands();
    const VImage colour = image.extract_band(0, VImage::option()->set("n", bands - 1));
    VImage alpha = image.extract_band(bands - 1);
    if (image.format() != VIPS_FORMAT_UCHAR) {
        alpha = (alpha * (255.0 / largest_alpha(image))).rint().cast(VIPS_FORMAT_UCHAR);
    }
    return three_8_bit_bands(convert(colour)).bandjoin(alpha);
}

}  // namespace

std::string profile_of(const VImage& image) {
    if (image.get_typeof(VIPS_META_ICC_NAME) == 0) return "";
    size_t size = 0;
    const void* const bytes = image.get_blob(VIPS_META_ICC_NAME, &size);
    if (vips_icc_is_compatible_profile(image.get_image(), bytes, size) == FALSE) return "";
    return {static_cast<const char*>(bytes), size};
}

bool same_profile(const std::string& a, const std::string& b) {
    const auto is_srgb = [](const std::string& profile) {
        VipsBlob* srgb = nullptr;
        if (profile.empty() || vips_profile_load("srgb", &srgb, nullptr) != 0 || !srgb) {
            vips_error_clear();
            return profile.empty();
        }
        size_t size = 0;
        const void* const bytes = vips_blob_get(srgb, &size);
        const bool equal = profile == std::string(static_cast<const char*>(bytes), size);
        vips_area_unref(VIPS_AREA(srgb));
        return equal;
    };
    return a == b || (is_srgb(a) && is_srgb(b));
}

bool is_8_bit_rgb(const VImage& image) {
    const VipsInterpretation space = image.interpretation();
    return image.format() == VIPS_FORMAT_UCHAR &&
           (space == VIPS_INTERPRETATION_sRGB || space == VIPS_INTERPRETATION_RGB) &&
           (image.bands() == 3 || image.bands() == 4);
}

std::string kind_of_pixels(const VImage& image) {
    const int bits = 8 * static_cast<int>(vips_format_sizeof(image.format()));
    const std::string depth =
        vips_band_format_isint(image.format()) != FALSE ? std::to_string(bits) + "-bit " : "float ";
    switch (colour_space(image)) {
        case VIPS_INTERPRETATION_B_W:
        case VIPS_INTERPRETATION_GREY16:
            return depth + "grey";
        case VIPS_INTERPRETATION_CMYK:
            return depth + "CMYK";
        case VIPS_INTERPRETATION_sRGB:
        case VIPS_INTERPRETATION_RGB:
        case VIPS_INTERPRETATION_RGB16:
        case VIPS_INTERPRETATION_scRGB:
            return depth + "RGB";
        default:
            return depth + vips_enum_nick(VIPS_TYPE_INTERPRETATION, colour_space(image));
    }
}

VImage to_srgb(const VImage& image) {
    return with_8_bit_alpha(image, colour_to_srgb);
}

VImage to_profile(const VImage& image, const std::string& profile) {
    return with_8_bit_alpha(
        image, [&](const VImage& colour) { return colour_to_profile(colour, profile); });
}

}  // namespace tool
