// SPDX-License-Identifier: Apache-2.0
// Blends beside as many busy loops as there are cores, as JSON on standard output: as the library
// runs them, and the same on one thread. The two take turns.
// Usage: bench_load [ROUNDS]
#include <sched.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <iostream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "patch_blends.h"

namespace {

enum { ROUNDS = 151 };

bool one_thread = false;

}  // namespace

// The linker's names for free_cores(), by which a blend chooses its threads.
extern "C" {
int32_t __real__Z10free_coresv();
int32_t __wrap__Z10free_coresv() {
    return one_thread ? 1 : __real__Z10free_coresv();
}
}

namespace {

// A process for each core that does nothing but run.
class busy_loops {
  public:
    busy_loops() {
        cpu_set_t cores;
        sched_getaffinity(0, sizeof cores, &cores);
        for (int i = 0; i < CPU_COUNT(&cores); i++) {
            const pid_t child = fork();
            if (child < 0) throw std::runtime_error("no process for a busy loop");
            if (child > 0) {
                children_.push_back(child);
                continue;
            }
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            for (volatile unsigned turns = 0;; turns = turns + 1) {
            }
        }
    }
    ~busy_loops() {
        for (const pid_t child : children_) {
            kill(child, SIGKILL);
            waitpid(child, nullptr, 0);
        }
    }
    busy_loops(const busy_loops&) = delete;
    busy_loops& operator=(const busy_loops&) = delete;

  private:
    std::vector<pid_t> children_;
};

double time_ms(const std::function<void()>& run) {
    using clock = std::chrono::steady_clock;
    const clock::time_point start = clock::now();
    run();
    return std::chrono::duration<double, std::milli>(clock::now() - start).count();
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void measure(const std::string& name, const std::function<void()>& run, int rounds,
             nlohmann::json* benchmarks) {
    std::vector<double> times[2];
    for (int round = 0; round < rounds; round++) {
        for (const bool one : {false, true}) {
            one_thread = one;
            times[one ? 1 : 0].push_back(time_ms(run));
        }
    }
    for (const bool one : {false, true}) {
        benchmarks->push_back({{"name", "loaded" + std::string(one ? "_1/" : "/") + name},
                               {"real_time", median(times[one ? 1 : 0])},
                               {"time_unit", "ms"}});
    }
}

void measure_all(int rounds, nlohmann::json* benchmarks) {
    const call_scene& scene = call_scenes()[0];
    frame_set frames = make_frames(scene);
    const auto call = [&] {
        if (blend_frames(frames, scene) != 0) throw std::runtime_error("the call failed");
    };
    call();
    const busy_loops loops;
    for (const int32_t side : {512, 1024, 2048}) {
        const patch_blend blend = make_imageblend(patches_of(side));
        blend.run();
        measure("pyramid " + std::to_string(side), blend.run, rounds, benchmarks);
    }
    measure(scene.name, call, rounds, benchmarks);
}

}  // namespace

int main(int argc, char** argv) {
    nlohmann::json benchmarks = nlohmann::json::array();
    try {
        measure_all(argc > 1 ? std::max(1, std::stoi(argv[1])) : ROUNDS, &benchmarks);
    } catch (const std::exception& error) {
        std::cerr << "bench_load: " << error.what() << "\n";
        return 1;
    }
    std::cout << nlohmann::json{{"benchmarks", benchmarks}}.dump(2) << "\n";
    return 0;
}
