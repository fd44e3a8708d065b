// SPDX-License-Identifier: Apache-2.0
// Whole calls of vorn_imageBlending and the pyramid alone, on memory that the system hands out anew
// each time, with what they are measured by: the copy of a frame and the pyramid in a kept
// workspace.
#include <benchmark/benchmark.h>
#include <string.h>

#include <map>
#include <memory>
#include <string>

#include "patch_blends.h"

namespace {

frame_set& frames_of(const call_scene& scene) {
    static std::map<int32_t, frame_set> made;
    const auto found = made.find(scene.width);
    return found != made.end() ? found->second
                               : made.emplace(scene.width, make_frames(scene)).first->second;
}

void time_call(benchmark::State& state, const call_scene& scene) {
    frame_set& frames = frames_of(scene);
    if (blend_frames(frames, scene) != 0) state.SkipWithError("the call failed");
    for (auto _ : state)
        benchmark::DoNotOptimize(blend_frames(frames, scene));
}

void time_frame_copy(benchmark::State& state, const call_scene& scene) {
    frame_set& frames = frames_of(scene);
    for (auto _ : state) {
        memcpy(frames.output.data(), frames.destination.data(), frames.output.size());
        benchmark::ClobberMemory();
    }
}

void time_blend(benchmark::State& state, patch_blend (*make)(const patch_pair&), int32_t side) {
    const patch_blend blend = make(patches_of(side));
    blend.run();
    for (auto _ : state)
        blend.run();
}

template <typename... Args>
void add(const std::string& name, Args... args) {
    benchmark::RegisterBenchmark(name.c_str(), args...)
        ->UseRealTime()
        ->Unit(benchmark::kMicrosecond);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    for (const call_scene& scene : call_scenes()) {
        add("call/" + scene.name, time_call, scene);
        if (scene.zoom != 1.0f || scene.angle != 0.0f) continue;
        const int32_t side = region_side(scene);
        add("frame_copy/" + scene.name, time_frame_copy, scene);
        add("region/imageblend/" + std::to_string(side), time_blend, make_imageblend, side);
    }
    for (const int32_t side : {256, 512, 1024, 2048}) {
        add("pyramid/imageblend_fresh/" + std::to_string(side), time_blend, make_imageblend_fresh,
            side);
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
