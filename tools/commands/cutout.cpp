#include <memory>

#include "commands/commands.h"
#include "pictures/output_file.h"

namespace tool {

Exit run_cutout(const ObjectArguments& arguments, const std::string& output_path) {
    OutputFile output(output_path);
    if (!output.keeps_alpha()) {
        throw Error(Exit::usage, output_path + ": this kind of file holds no alpha channel; take " +
                                     ".png, .webp or .tif");
    }
    const Object object = load_object(arguments, Wanted::mask_and_picture);
    const Frame source = colour_frame(object.picture);
    const Size size = find_box_size(object.mask);
    const size_t bytes = static_cast<size_t>(size.width) * static_cast<size_t>(size.height) * 4;
    Frame icon{size,
               std::unique_ptr<uint8_t, GlibFree>(static_cast<uint8_t*>(g_try_malloc(bytes)))};

    const blend_image source_record = source.record();
    const blend_image mask = mask_record(object.mask);
    blend_image icon_record = icon.record();
    if (!icon.bytes || vorn_create_rgb_icon(&source_record, &mask, &icon_record, 1.0F) != 0) {
        throw Error(Exit::internal, "not enough memory to cut out " + text(size) + " pixels");
    }
    output.commit(frame_picture(icon, true));
    return Exit::success;
}

}  // namespace tool
