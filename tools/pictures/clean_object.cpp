// SPDX-License-Identifier: Apache-2.0
#include "pictures/clean_object.h"

#include "pictures/errors.h"
#include "pictures/mask_noise.h"

namespace tool {
namespace {

using vips::VImage;

[[noreturn]] void fail_memory(const Object& object) {
    throw Error(Exit::internal,
                "not enough memory to prepare an object of " + text(size_of(object.picture)));
}

[[noreturn]] void fail_empty(const Object& object) {
    throw Error(Exit::bad_data, object.mask_name + ": nothing is left of the object");
}

// The part that is worked on depends on the mask alone, which stands for a picture of its size
// here.
imageblend_box find_part(const VImage& mask) {
    const blend_image record = mask_record(mask);
    const imageblend_source source{&record, &record};
    imageblend_box box{};
    imageblend_clean_box(&source, &box);
    return box;
}

VImage cut(const VImage& image, const imageblend_box& box) {
    return image.extract_area(box.left, box.top, box.width, box.height).copy_memory();
}

}  // namespace

CleanObject clean_object(const Object& object, const CleanArguments& arguments) {
    CleanObject clean;
    const VImage given = object.own_alpha ? object.mask : without_noise(object.mask);
    clean.box = find_part(given);
    if (clean.box.width == 0) fail_empty(object);
    const Size size{clean.box.width, clean.box.height};
    const Frame picture = colour_frame(cut(object.picture, clean.box));
    const blend_image picture_record = picture.record();
    const VImage part = cut(given, clean.box);
    const blend_image mask = mask_record(part);
    const imageblend_source source{&picture_record, object.own_alpha ? nullptr : &mask};
    const imageblend_clean_options options{arguments.fit ? 1 : 0,
                                           static_cast<float>(arguments.grow)};
    const imageblend_box whole{0, 0, size.width, size.height};
    clean.pixels = make_frame(size, 4);
    blend_image record = clean.pixels.record();
    if (imageblend_clean(&source, &options, &whole, &record, &clean.findings) != 0) {
        fail_memory(object);
    }
    clean.image = frame_picture(clean.pixels, true);
    const VImage alpha = clean.image.extract_band(3).copy_memory();
    clean.soft_outline = find_outline(alpha);
    clean.outline = find_outline((alpha >= 128.0).copy_memory());
    if (clean.outline.width == 0) clean.outline = clean.soft_outline;
    if (clean.outline.width == 0) fail_empty(object);
    return clean;
}

}  // namespace tool
