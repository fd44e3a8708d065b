// SPDX-License-Identifier: Apache-2.0
// The pyramid alone at four sizes, beside other blends of the same pixels and a memcpy.
#include <benchmark/benchmark.h>
#include <limits.h>
#include <malloc.h>
#include <string.h>

#include <string>

#include "patch_blends.h"
#include "quality.h"

namespace {

void time_blend(benchmark::State& state, const blend_kind& kind, int32_t side) {
    const patch_blend blend = kind.make(patches_of(side));
    const thread_limit limit(kind);
    blend.run();  // touches the buffers and starts the threads
    for (auto _ : state)
        blend.run();
}

void report_quality(benchmark::State& state, const blend_kind& kind) {
    const patch_pair& patches = patches_of(1024);
    const patch_blend blend = kind.make(patches);
    for (auto _ : state)
        blend.run();
    const blend_quality quality = measure_quality(patches, blend.result());
    state.counters["outside_mean"] = quality.outside.mean;
    state.counters["outside_largest"] = quality.outside.largest;
    state.counters["beyond_mean"] = quality.beyond.mean;
    state.counters["beyond_largest"] = quality.beyond.largest;
    state.counters["energy_inside"] = quality.energy_inside;
    state.counters["energy_outside"] = quality.energy_outside;
}

// 25 bytes a pixel.
void time_memcpy(benchmark::State& state, int32_t side) {
    const size_t bytes = static_cast<size_t>(side) * static_cast<size_t>(side) * 25;
    std::vector<uint8_t> from(bytes, 1), to(bytes, 2);
    for (auto _ : state) {
        memcpy(to.data(), from.data(), bytes);
        benchmark::ClobberMemory();
    }
}

void register_side(int32_t side) {
    const auto add = [&](const char* name, auto function, auto... args) {
        const std::string full = std::string("pyramid/") + name + "/" + std::to_string(side);
        benchmark::RegisterBenchmark(full.c_str(), function, args...)
            ->UseRealTime()
            ->Unit(benchmark::kMicrosecond);
    };
    for (const blend_kind& kind : blend_kinds())
        add(kind.name, time_blend, kind, side);
    add("memcpy_25", time_memcpy, side);
}

}  // namespace

int main(int argc, char** argv) {
    // Freed memory stays with the process, so that blends which allocate do so on warm pages.
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, INT_MAX);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    for (const int32_t side : {256, 512, 1024, 2048})
        register_side(side);
    for (const blend_kind& kind : blend_kinds()) {
        if (kind.threads == 1 || std::string(kind.name) == "halide") continue;  // the same bytes
        benchmark::RegisterBenchmark((std::string("quality/") + kind.name).c_str(), report_quality,
                                     kind)
            ->Iterations(1)
            ->Repetitions(1);
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
