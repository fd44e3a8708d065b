// SPDX-License-Identifier: Apache-2.0
#include "pictures/picture_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>

namespace tool {
namespace {

using vips::VImage;
using vips::VSource;

ReadingRules rules;

std::string take_text(char* text_of_glib) {
    std::string result = text_of_glib ? text_of_glib : "";
    g_free(text_of_glib);
    return result;
}

vips::VOption* reading_options() {
    return VImage::option()
        ->set("access", VIPS_ACCESS_SEQUENTIAL)
        ->set("fail_on", VIPS_FAIL_ON_TRUNCATED);
}

void check_loader(const std::string& path, const char* loader) {
    if (loader && !is_blocked(loader)) return;
    vips_error_clear();
    throw Error(Exit::no_input,
                input_name(path) + ": cannot be read: " +
                    (loader ? "this kind of file is read under --any-format only (" +
                                  std::string(vips_nickname_find(g_type_from_name(loader))) + ")"
                            : "no known kind of image file"));
}

VImage open_source(const VSource& source, const std::string& path, const std::string& options) {
    check_loader(path, vips_foreign_find_load_source(source.get_source()));
    return VImage::new_from_source(source, options.c_str(), reading_options());
}

VImage open_standard_input(const std::string& options) {
    // Never freed: libvips is shut down before static objects are.
    static const VImage* image = nullptr;
    if (!image) {
        const VSource source = VSource::new_from_descriptor(STDIN_FILENO);
        image = new VImage(open_source(source, standard_stream, options));
    }
    return *image;
}

VImage open_file(const std::string& path, const std::string& file, const std::string& options) {
    struct stat found;
    if (access(file.c_str(), R_OK) != 0 || stat(file.c_str(), &found) != 0) {
        throw Error(Exit::no_input, path + ": cannot be read: " + std::strerror(errno));
    }
    if (S_ISDIR(found.st_mode)) {
        throw Error(Exit::no_input, path + ": cannot be read: " + std::strerror(EISDIR));
    }
    // A pipe gives its bytes once, and every loader that is asked about a name would open it.
    if (!S_ISREG(found.st_mode)) {
        return open_source(VSource::new_from_file(file.c_str()), path, options);
    }
    check_loader(path, vips_foreign_find_load(file.c_str()));
    return VImage::new_from_file(path.c_str(), reading_options());
}

void check_size(const std::string& path, const VImage& image) {
    const uint64_t pixels =
        static_cast<uint64_t>(image.width()) * static_cast<uint64_t>(image.height());
    if (pixels <= rules.max_pixels) return;
    throw Error(Exit::bad_data, input_name(path) + ": " + std::to_string(image.width()) + " x " +
                                    std::to_string(image.height()) + " are " +
                                    std::to_string(pixels) + " pixels, more than --max-pixels " +
                                    std::to_string(rules.max_pixels));
}

}  // namespace

void set_reading_rules(const ReadingRules& given) {
    rules = given;
}

void apply_reading_rules() {
    if (rules.any_format) return;
    vips_block_untrusted_set(TRUE);
    for (const char* const loader :
         {"VipsForeignLoadMagick", "VipsForeignLoadSvg", "VipsForeignLoadPdf"})
        vips_operation_block_set(loader, TRUE);
    vips_operation_block_set("VipsForeignSave", FALSE);  // the pixels that are written are ours
}

bool is_blocked(const char* loader) {
    if (!loader) return false;
    const gpointer loader_class = g_type_class_ref(g_type_from_name(loader));
    return (static_cast<VipsOperationClass*>(loader_class)->flags & VIPS_OPERATION_BLOCKED) != 0;
}

std::string input_name(const std::string& path) {
    return path == standard_stream ? "standard input" : path;
}

VImage open_picture(const std::string& path) {
    // A path may carry libvips options in brackets, such as "scan.tif[page=2]".
    const std::string file = take_text(vips_filename_get_filename(path.c_str()));
    const std::string options = take_text(vips_filename_get_options(path.c_str()));
    VImage image =
        file == standard_stream ? open_standard_input(options) : open_file(path, file, options);
    check_size(path, image);
    return image;
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

bool is_lack_of_memory(const std::string& message) {
    constexpr const char* texts[] = {"ut of memory", "nsufficient memory", "allocat",
                                     "creating thread"};
    return std::any_of(std::begin(texts), std::end(texts),
                       [&](const char* text) { return message.find(text) != std::string::npos; });
}

void fail_reading(const std::string& path, const vips::VError& error) {
    const std::string message = vips_message(error);
    if (is_lack_of_memory(message)) {
        throw Error(Exit::internal, "not enough memory to read " + input_name(path));
    }
    throw Error(Exit::no_input, input_name(path) + ": cannot be read: " + message);
}

}  // namespace tool
