// SPDX-License-Identifier: Apache-2.0
#include "pictures/frame.h"

#include <algorithm>

#include "pictures/errors.h"

namespace tool {

using vips::VImage;

Frame make_frame(const Size& size, int channels) {
    const size_t bytes = static_cast<size_t>(size.width) * static_cast<size_t>(size.height) *
                         static_cast<size_t>(channels);
    auto* const pixels = static_cast<uint8_t*>(g_try_malloc(bytes));
    if (!pixels) throw Error(Exit::internal, "not enough memory for " + text(size) + " pixels");
    return {size, std::unique_ptr<uint8_t, GlibFree>(pixels)};
}

Frame copy_frame(const Frame& frame, int channels) {
    Frame copy = make_frame(frame.size, channels);
    std::copy_n(frame.bytes.get(),
                static_cast<size_t>(frame.size.width) * static_cast<size_t>(frame.size.height) *
                    static_cast<size_t>(channels),
                copy.bytes.get());
    return copy;
}

Frame to_frame(const VImage& image) {
    size_t size = 0;
    auto* const bytes = static_cast<uint8_t*>(image.write_to_memory(&size));
    return {size_of(image), std::unique_ptr<uint8_t, GlibFree>(bytes)};
}

Frame colour_frame(const VImage& picture) {
    const VImage colour = picture.extract_band(0, VImage::option()->set("n", 3));
    if (picture.has_alpha()) return to_frame(picture.extract_band(3).bandjoin(colour));
    const VImage opaque =
        (VImage::black(picture.width(), picture.height()) + 255.0).cast(VIPS_FORMAT_UCHAR);
    return to_frame(opaque.bandjoin(colour));
}

VImage frame_picture(const Frame& frame, bool with_alpha) {
    const size_t size =
        static_cast<size_t>(frame.size.width) * static_cast<size_t>(frame.size.height) * 4;
    const VImage all = VImage::new_from_memory(frame.bytes.get(), size, frame.size.width,
                                               frame.size.height, 4, VIPS_FORMAT_UCHAR);
    VImage picture = all.extract_band(1, VImage::option()->set("n", 3));
    if (with_alpha) picture = picture.bandjoin(all.extract_band(0));
    return picture.copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
}

}  // namespace tool
