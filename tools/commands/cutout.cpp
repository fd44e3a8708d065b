// SPDX-License-Identifier: Apache-2.0
#include <imageblend.h>

#include "commands/commands.h"
#include "pictures/frame.h"
#include "pictures/output_file.h"

namespace tool {
namespace {

using vips::VImage;

// Alpha is 255 inside of the mask.
VImage cut_hard(const Object& object) {
    const Frame source = colour_frame(object.picture);
    const Frame icon = make_frame(find_box_size(object.mask), 4);
    const blend_image source_record = source.record();
    const blend_image mask = mask_record(object.mask);
    blend_image icon_record = icon.record();
    if (vorn_create_rgb_icon(&source_record, &mask, &icon_record, 1.0F) != 0) {
        throw Error(Exit::internal, "not enough memory to cut out " + text(icon.size) + " pixels");
    }
    return frame_picture(icon, true).copy_memory();
}

VImage cut_soft(const Object& object) {
    const CleanObject clean = clean_object(object, {});
    const Outline& outline = clean.soft_outline;
    return clean.image.extract_area(outline.left, outline.top, outline.width, outline.height())
        .copy_memory();
}

}  // namespace

Exit run_cutout(const ObjectArguments& arguments, const std::string& output_path) {
    OutputFile output(output_path);
    if (!output.keeps_alpha()) {
        throw Error(Exit::usage, output_path + ": this kind of file holds no alpha channel; take " +
                                     ".png, .webp or .tif");
    }
    const Object object = load_object(arguments, Wanted::mask_and_picture);
    output.commit(arguments.soft ? cut_soft(object) : cut_hard(object));
    return Exit::success;
}

}  // namespace tool
