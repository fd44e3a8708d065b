// SPDX-License-Identifier: Apache-2.0
#include "batch/outputs.h"

#include <sys/stat.h>

#include <filesystem>
#include <vips/vips8>

namespace tool {
namespace {

namespace fs = std::filesystem;

fs::path file_of(const std::string& output) {
    char* const plain = vips_filename_get_filename(output.c_str());
    const fs::path path = plain;
    g_free(plain);
    return path;
}

// Also through links whose file is not there yet.
fs::path follow_links(fs::path path) {
    constexpr int most_links = 40;  // as in the kernel
    std::error_code error;
    for (int i = 0; i < most_links && fs::is_symlink(path, error); i++) {
        const fs::path target = fs::read_symlink(path, error);
        if (error) break;
        path = path.parent_path() / target;
    }
    return path;
}

// The folder as the file system numbers it, and the name in it.
std::string identity(const std::string& output) {
    const fs::path path = follow_links(file_of(output));
    const fs::path folder = path.has_parent_path() ? path.parent_path() : ".";
    struct stat found {};
    if (stat(folder.c_str(), &found) != 0) return path.lexically_normal().string();
    return std::to_string(found.st_dev) + ":" + std::to_string(found.st_ino) + "/" +
           path.filename().string();
}

}  // namespace

uint64_t Outputs::claim(const std::string& output, uint64_t line_number) {
    const auto [claimed, is_new] = line_of_file_.emplace(identity(output), line_number);
    return is_new ? 0 : claimed->second;
}

bool output_exists(const std::string& output) {
    std::error_code unreadable;
    return fs::exists(file_of(output), unreadable);
}

}  // namespace tool
