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

}  // namespace

CleanObject clean_object(const Object& object, const CleanArguments& arguments) {
    const Frame picture = colour_frame(object.picture);
    const blend_image picture_record = picture.record();
    const VImage given = object.own_alpha ? object.mask : without_noise(object.mask);
    const blend_image mask = mask_record(given);
    const imageblend_source source{&picture_record, object.own_alpha ? nullptr : &mask};
    const imageblend_clean_options options{arguments.fit ? 1 : 0,
                                           static_cast<float>(arguments.grow)};
    CleanObject clean;
    imageblend_clean_box(&source, &clean.box);
    clean.pixels = make_frame({clean.box.width, clean.box.height}, 4);
    blend_image record = clean.pixels.record();
    if (imageblend_clean(&source, &options, &clean.box, &record, &clean.findings) != 0) {
        fail_memory(object);
    }
    clean.image = frame_picture(clean.pixels, true);
    const VImage alpha = clean.image.extract_band(3).copy_memory();
    clean.soft_outline = find_outline(alpha);
    clean.outline = find_outline((alpha >= 128.0).copy_memory());
    if (clean.outline.width == 0) clean.outline = clean.soft_outline;
    if (clean.outline.width == 0) {
        throw Error(Exit::bad_data, object.mask_name + ": nothing is left of the object");
    }
    return clean;
}

}  // namespace tool
