// SPDX-License-Identifier: Apache-2.0
// Peak memory of whole calls beyond the buffers of the caller, as JSON on standard output. Each
// call runs in a process of its own.
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string>

#include "scenes.h"

namespace {

// The kernel counts pages in batches for each core, so that a reading is some dozens of pages off.
enum { ROUNDS = 9 };

// A field of /proc/self/status, in bytes; 0 when it is not there.
int64_t status_bytes(const std::string& field) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind(field + ":", 0) == 0)
            return std::stoll(line.substr(field.size() + 1)) * 1024;
    }
    return 0;
}

// Forgets the peak so far. False where the system does not let us.
bool reset_peak() {
    std::ofstream file("/proc/self/clear_refs");
    file << "5" << std::flush;
    return file.good();
}

// In the child process. -1 when the call or the measurement fails.
int64_t peak_of_call(const call_scene& scene) {
    frame_set frames = make_frames(scene);
    // Brings in the code and the stacks of threads.
    const call_scene small = {"small", 1000, 900, 600, scene.zoom, scene.angle};
    frame_set small_frames = make_frames(small);
    if (blend_frames(small_frames, small) != 0) return -1;
    malloc_trim(0);
    if (!reset_peak()) return -1;
    const int64_t before = status_bytes("VmRSS");
    if (blend_frames(frames, scene) != 0) return -1;
    return status_bytes("VmHWM") - before;
}

int64_t peak_in_child(const call_scene& scene) {
    int ends[2];
    if (pipe(ends) != 0) return -1;
    const pid_t child = fork();
    if (child == 0) {
        const int64_t peak = peak_of_call(scene);
        _exit(write(ends[1], &peak, sizeof peak) == sizeof peak ? 0 : 1);
    }
    close(ends[1]);
    int64_t peak = -1;
    if (child < 0 || read(ends[0], &peak, sizeof peak) != sizeof peak) peak = -1;
    close(ends[0]);
    if (child > 0) waitpid(child, nullptr, 0);
    return peak;
}

}  // namespace

int main() {
    patches_of(2 * MARGIN);  // has the pictures generated once, not in every process
    nlohmann::json benchmarks = nlohmann::json::array();
    for (const call_scene& scene : call_scenes()) {
        std::vector<int64_t> peaks;
        for (int round = 0; round < ROUNDS; round++)
            peaks.push_back(peak_in_child(scene));
        std::sort(peaks.begin(), peaks.end());
        if (peaks.front() < 0) {
            std::cerr << "bench_memory: could not measure scene " << scene.name << "\n";
            return 1;
        }
        const auto bytes = static_cast<double>(peaks[ROUNDS / 2]);
        const double side = region_side(scene);
        benchmarks.push_back({{"name", "memory/" + scene.name},
                              {"peak_bytes", bytes},
                              {"per_region_pixel", bytes / (side * side)},
                              {"per_frame_pixel", bytes / scene.width / scene.height}});
    }
    std::cout << nlohmann::json{{"benchmarks", benchmarks}}.dump(2) << "\n";
    return 0;
}
