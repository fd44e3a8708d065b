// SPDX-License-Identifier: Apache-2.0
#include "pictures/file_kind.h"

#include <algorithm>
#include <cctype>

#include "pictures/picture_file.h"

namespace tool {
namespace {

using vips::VImage;

bool begins_with(const std::string& text, const std::string& start) {
    return text.compare(0, start.size(), start) == 0;
}

bool has_option(const std::string& options, const std::string& name) {
    for (size_t begin = 0; begin < options.size();) {
        const size_t end = std::min(options.find(',', begin), options.size());
        const std::string option = options.substr(begin, end - begin);
        if (option == name || begins_with(option, name + "=")) return true;
        begin = end + 1;
    }
    return false;
}

const VipsForeignSaveClass* saver_class(const char* saver) {
    return static_cast<const VipsForeignSaveClass*>(g_type_class_ref(g_type_from_name(saver)));
}

// What libvips would take from the name of the file, and better defaults.
std::string default_options(const FileKind& kind, const std::string& options) {
    if (begins_with(kind.saver, "VipsForeignSaveJpeg") && !has_option(options, "Q")) {
        return "Q=92,subsample_mode=off";
    }
    if (begins_with(kind.saver, "VipsForeignSavePpm") && kind.suffix != ".pnm") {
        return "format=" + kind.suffix.substr(1);
    }
    return kind.suffix == ".avif" ? "compression=av1" : "";
}

struct Metadata {
    const char* field;
    const char* name;
};
constexpr Metadata kinds_of_metadata[] = {{VIPS_META_EXIF_NAME, "EXIF"},
                                          {VIPS_META_XMP_NAME, "XMP"},
                                          {VIPS_META_IPTC_NAME, "IPTC"},
                                          {VIPS_META_ICC_NAME, "the colour profile"}};

// Kinds that hold pixels only, some of which are not read again without being asked for.
bool holds_no_metadata(const FileKind& kind) {
    const auto is_saver = [&](const char* name) {
        return begins_with(kind.saver, std::string("VipsForeignSave") + name);
    };
    return is_saver("Ppm") || is_saver("Csv") || is_saver("Matrix") || is_saver("Raw") ||
           is_saver("Rad");
}

}  // namespace

bool find_kind(const std::string& path, FileKind& kind) {
    const char* const saver = vips_foreign_find_save(path.c_str());
    vips_error_clear();
    // A DeepZoom saver writes a tree of files, which cannot take the place of the output at once.
    if (!saver || begins_with(saver, "VipsForeignSaveDz")) return false;
    kind.suffix = path.substr(path.rfind('.'));
    std::transform(kind.suffix.begin(), kind.suffix.end(), kind.suffix.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    kind.saver = saver;
    const VipsSaveable saveable = saver_class(saver)->saveable;
    kind.alpha = saveable == VIPS_SAVEABLE_RGBA || saveable == VIPS_SAVEABLE_RGBA_ONLY ||
                 saveable == VIPS_SAVEABLE_ANY;
    kind.colour = saveable != VIPS_SAVEABLE_MONO && kind.suffix != ".pgm" && kind.suffix != ".pbm";
    kind.wants_name = begins_with(saver, "VipsForeignSaveVips") ||
                      begins_with(saver, "VipsForeignSaveFits") ||
                      begins_with(saver, "VipsForeignSaveMagick");
    return true;
}

bool find_kind_of(const VImage& picture, FileKind& kind) {
    if (picture.get_typeof(VIPS_META_LOADER) == 0) return false;
    if (picture.get_typeof("heif-compression") != 0 &&
        std::string(picture.get_string("heif-compression")) == "av1")
        return find_kind(".avif", kind);
    std::string name = picture.get_string(VIPS_META_LOADER);  // such as "jpegload_source"
    name = name.substr(0, name.find("load")) + "save";
    const GType saver = vips_type_find("VipsForeignSave", name.c_str());
    if (saver == 0) return false;
    const char** const suffixes =
        reinterpret_cast<const VipsForeignClass*>(saver_class(g_type_name(saver)))->suffs;
    return suffixes && suffixes[0] && find_kind(suffixes[0], kind);
}

void save_picture(const VImage& picture, const FileKind& kind, const std::string& options,
                  const std::string& path) {
    std::string all = default_options(kind, options);
    if (!all.empty() && !options.empty()) all += ",";
    all = "[" + all + options + "]";
    VImage::call_option_string(kind.saver.c_str(), all.c_str(),
                               VImage::option()->set("in", picture)->set("filename", path.c_str()));
}

std::string lost_metadata(const VImage& picture, const FileKind& kind, const std::string& options,
                          const std::string& path) {
    if (has_option(options, "strip")) return "";
    VImage written;
    if (!holds_no_metadata(kind)) {
        const char* const loader = vips_foreign_find_load(path.c_str());
        vips_error_clear();
        if (!loader || is_blocked(loader)) return "";
        written = VImage::new_from_file(path.c_str());
    }
    std::string names;
    for (const auto& [field, name] : kinds_of_metadata) {
        if (picture.get_typeof(field) == 0) continue;
        if (!written.is_null() && written.get_typeof(field) != 0) continue;
        names += (names.empty() ? "" : ", ") + std::string(name);
    }
    return names;
}

}  // namespace tool
