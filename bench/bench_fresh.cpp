// SPDX-License-Identifier: Apache-2.0
// The first call of a process, as JSON on standard output: every page that the library takes, its
// code included, is new. Each call runs in a program of its own; the scenes take turns.
// Usage: bench_fresh [ROUNDS [SCENE...]]
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "scenes.h"

namespace {

enum { ROUNDS = 21 };

// What the process of a call reports.
struct first_call {
    double ns;
    int64_t page_faults;
};

const call_scene& scene_of(const std::string& name) {
    for (const call_scene& scene : call_scenes()) {
        if (scene.name == name) return scene;
    }
    throw std::runtime_error("no scene " + name);
}

// A file in memory with the inputs of the scene: generating them takes longer than many calls.
int write_inputs(const call_scene& scene) {
    const frame_set frames = make_frames(scene);
    const int file = memfd_create("frames", 0);
    for (const std::vector<uint8_t>* bytes : {&frames.icon, &frames.destination, &frames.mask}) {
        size_t done = 0;
        while (done < bytes->size()) {
            const ssize_t written = write(file, bytes->data() + done, bytes->size() - done);
            if (written <= 0) throw std::runtime_error("cannot keep the inputs of a scene");
            done += static_cast<size_t>(written);
        }
    }
    return file;
}

frame_set read_inputs(const call_scene& scene, int file) {
    const size_t pixels = static_cast<size_t>(scene.width) * static_cast<size_t>(scene.height);
    frame_set frames = {scene.width,
                        scene.height,
                        std::vector<uint8_t>(4 * pixels),
                        std::vector<uint8_t>(4 * pixels),
                        std::vector<uint8_t>(pixels),
                        std::vector<uint8_t>(4 * pixels, 1)};
    off_t place = 0;
    for (std::vector<uint8_t>* bytes : {&frames.icon, &frames.destination, &frames.mask}) {
        for (size_t done = 0; done < bytes->size();) {
            const ssize_t got = pread(file, bytes->data() + done, bytes->size() - done, place);
            if (got <= 0) throw std::runtime_error("cannot read the inputs of a scene");
            done += static_cast<size_t>(got);
            place += got;
        }
    }
    return frames;
}

int64_t page_faults() {
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_minflt + usage.ru_majflt;
}

first_call time_first_call(const call_scene& scene, int file) {
    using clock = std::chrono::steady_clock;
    frame_set frames = read_inputs(scene, file);
    const int64_t faults = page_faults();
    const clock::time_point start = clock::now();
    const int32_t status = blend_frames(frames, scene);
    const std::chrono::duration<double, std::nano> taken = clock::now() - start;
    if (status != 0) throw std::runtime_error("the call failed in scene " + scene.name);
    return {taken.count(), page_faults() - faults};
}

// Starts this program again for one call, which it writes to a pipe.
first_call call_in_program(const std::string& scene, int file) {
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("no pipe");
    const std::string in = std::to_string(file), out = std::to_string(ends[1]);
    const pid_t child = fork();
    if (child == 0) {
        execl("/proc/self/exe", "bench_fresh", "--call", scene.c_str(), in.c_str(), out.c_str(),
              nullptr);
        _exit(1);
    }
    close(ends[1]);
    first_call call;
    const bool read_whole = read(ends[0], &call, sizeof call) == sizeof call;
    close(ends[0]);
    if (child > 0) waitpid(child, nullptr, 0);
    if (child < 0 || !read_whole) throw std::runtime_error("no call in scene " + scene);
    return call;
}

template <typename T>
T median(std::vector<T> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void measure(int rounds, const std::vector<std::string>& scenes) {
    std::map<std::tuple<int32_t, int32_t, int32_t>, int> files;  // by what frames are made from
    std::map<std::string, int> inputs;
    std::map<std::string, std::vector<double>> times;
    std::map<std::string, std::vector<int64_t>> faults;
    for (const std::string& name : scenes) {
        const call_scene& scene = scene_of(name);
        const auto [file, missing] =
            files.try_emplace({scene.width, scene.height, scene.object}, -1);
        if (missing) file->second = write_inputs(scene);
        inputs[name] = file->second;
    }
    for (int round = 0; round < rounds; round++) {
        for (const std::string& scene : scenes) {
            const first_call call = call_in_program(scene, inputs[scene]);
            times[scene].push_back(call.ns);
            faults[scene].push_back(call.page_faults);
        }
    }
    nlohmann::json benchmarks = nlohmann::json::array();
    for (const std::string& scene : scenes) {
        benchmarks.push_back({{"name", "first_call/" + scene},
                              {"real_time", median(times[scene]) / 1e6},
                              {"time_unit", "ms"},
                              {"page_faults", median(faults[scene])}});
    }
    std::cout << nlohmann::json{{"benchmarks", benchmarks}}.dump(2) << "\n";
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> args(argv + 1, argv + argc);
    try {
        if (args.size() == 4 && args[0] == "--call") {
            const first_call call = time_first_call(scene_of(args[1]), std::stoi(args[2]));
            return write(std::stoi(args[3]), &call, sizeof call) == sizeof call ? 0 : 1;
        }
        const int rounds = args.empty() ? ROUNDS : std::stoi(args[0]);
        std::vector<std::string> scenes;
        if (args.size() > 1) scenes.assign(args.begin() + 1, args.end());
        if (scenes.empty()) {
            for (const call_scene& scene : call_scenes())
                scenes.push_back(scene.name);
        }
        if (rounds < 1) throw std::runtime_error("at least one round");
        measure(rounds, scenes);
    } catch (const std::exception& error) {
        std::cerr << "bench_fresh: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
