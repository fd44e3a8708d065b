// SPDX-License-Identifier: Apache-2.0
// The planes of a blend as files, through the routines for bitmap dumps.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>

#include "bmp/bmp_write.h"
#include "explain/stages.h"
#include "pictures/errors.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

// The dump routines report every file on standard output, which is the command's own.
class QuietOutput {
  public:
    QuietOutput() : before_(dup(STDOUT_FILENO)) {
        std::fflush(stdout);
        const int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
        if (null >= 0) dup2(null, STDOUT_FILENO);
        if (null >= 0) close(null);
    }
    ~QuietOutput() {
        std::fflush(stdout);
        if (before_ >= 0) dup2(before_, STDOUT_FILENO);
        if (before_ >= 0) close(before_);
    }
    QuietOutput(const QuietOutput&) = delete;
    QuietOutput& operator=(const QuietOutput&) = delete;

  private:
    int before_;
};

// The routines do not check that the bytes reach the disk; the size of the file tells.
void check(const fs::path& file, int32_t status, size_t bytes) {
    std::error_code error;
    if (status == 0 && fs::file_size(file, error) == bytes && !error) return;
    throw Error(Exit::no_output, file.string() + ": cannot be written");
}

void dump_bitmap(const fs::path& stem, const Plane& plane) {
    const fs::path file = stem.string() + ".bmp";
    const size_t row_bytes = (static_cast<size_t>(plane.width) * 3 + 3) / 4 * 4;
    const uint8_t* const bytes = plane.bytes.data();
    const int32_t status =
        plane.channels == 1
            ? bmp_write(file.c_str(), plane.width, plane.height, nullptr, bytes, bytes, bytes, 1, 0)
            : bmp_write(file.c_str(), plane.width, plane.height, bytes, nullptr, nullptr, nullptr,
                        plane.channels, plane.channels == 4);
    check(file, status, 54 + row_bytes * static_cast<size_t>(plane.height));
}

// One file for each channel.
void dump_raw(const fs::path& stem, const Plane& plane) {
    const size_t bytes = static_cast<size_t>(plane.width) * static_cast<size_t>(plane.height);
    for (int channel = 0; channel < plane.channels; channel++) {
        const std::string name = plane.channels == 1 ? "" : "-c" + std::to_string(channel + 1);
        const fs::path file = stem.string() + name + ".raw";
        check(file,
              raw_plane_write(file.c_str(), plane.width, plane.height, plane.bytes.data(), channel,
                              plane.channels),
              bytes);
    }
}

// Values of 16 bits in the machine's byte order, the three channels interleaved.
void dump_laplacian(const fs::path& stem, const BlendStages& stages, size_t level,
                    const std::vector<int16_t>& values) {
    const Plane visible = visible_laplacian(stages, level, values);
    dump_bitmap(stem, visible);
    const fs::path file = stem.string() + ".raw";
    const auto* const bytes = reinterpret_cast<const uint8_t*>(values.data());
    check(file, raw_plane_write(file.c_str(), visible.width * 6, visible.height, bytes, 0, 1),
          values.size() * 2);
}

}  // namespace

void dump_stages(const BlendStages& stages, const std::string& folder) {
    std::error_code error;
    fs::create_directories(folder, error);
    if (!fs::is_directory(folder, error)) {
        throw Error(Exit::no_output, "--dump " + folder + ": cannot be made a folder");
    }
    const QuietOutput quiet;
    const fs::path root(folder);
    dump_bitmap(root / "source", stages.source);
    dump_bitmap(root / "source-mask", stages.source_mask);
    dump_bitmap(root / "paste", stages.paste);
    for (size_t l = 0; l < stages.levels.size(); l++) {
        const Level& level = stages.levels[l];
        const std::pair<const char*, const Plane*> planes[] = {{"mask", &level.mask},
                                                               {"source", &level.source},
                                                               {"destination", &level.destination},
                                                               {"result", &level.result}};
        const fs::path prefix = root / ("level" + std::to_string(l) + "-");
        for (const auto& [name, plane] : planes) {
            dump_bitmap(prefix.string() + name, *plane);
            dump_raw(prefix.string() + name, *plane);
        }
        const std::string name = prefix.string();
        dump_laplacian(name + "source-laplacian", stages, l, level.source_laplacian);
        dump_laplacian(name + "destination-laplacian", stages, l, level.destination_laplacian);
        dump_laplacian(name + "blended-laplacian", stages, l, level.blended_laplacian);
    }
}

}  // namespace tool
