// SPDX-License-Identifier: Apache-2.0
// What it takes to make an object ready and to lay it into its destination: everything that comes
// before and after the blend, on memory that exists.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "imageblend_prepare.h"

namespace {

struct pixels {
    pixels() = default;
    pixels(int32_t width, int32_t height, size_t pixel_bytes)
        : data(static_cast<size_t>(width) * static_cast<size_t>(height) * pixel_bytes, 255),
          record{width, height, data.data()} {}
    pixels(const pixels&) = delete;
    pixels& operator=(const pixels&) = delete;

    std::vector<uint8_t> data;
    blend_image record = {0, 0, nullptr};
};

void fill_noise(uint32_t seed, pixels& picture, int base) {
    std::mt19937 engine(seed);
    for (size_t i = 0; i < picture.data.size(); i++)
        picture.data[i] =
            i % 4 == 0 ? 255 : static_cast<uint8_t>(base + static_cast<int>(engine() % 32));
}

// An ellipse in the middle of a photo, and a destination of the photo's size.
struct scene {
    const char* name;
    int32_t width, height, object_width, object_height;
};

// Softness is the number of pixels over which alpha falls.
struct job {
    job(const scene& s, double softness)
        : photo(s.width, s.height, 4),
          mask(s.width, s.height, 1),
          destination(s.width, s.height, 4) {
        pixels behind(s.width, s.height, 4);
        fill_noise(1, photo, 150);
        fill_noise(2, behind, 60);
        fill_noise(3, destination, 100);
        const double radius_x = s.object_width / 2.0, radius_y = s.object_height / 2.0;
        for (int32_t y = 0; y < s.height; y++) {
            for (int32_t x = 0; x < s.width; x++) {
                const double away = std::hypot((x + 0.5 - s.width / 2.0) / radius_x,
                                               (y + 0.5 - s.height / 2.0) / radius_y);
                const double depth = (1 - away) * std::min(radius_x, radius_y);
                const double part = std::min(std::max(depth / softness + 0.5, 0.0), 1.0);
                const size_t i =
                    static_cast<size_t>(y) * static_cast<size_t>(s.width) + static_cast<size_t>(x);
                mask.data[i] = static_cast<uint8_t>(255 * part + 0.5);
                for (size_t c = 4 * i + 1; c < 4 * i + 4; c++)
                    photo.data[c] = static_cast<uint8_t>(photo.data[c] * part +
                                                         behind.data[c] * (1 - part) + 0.5);
            }
        }
    }

    bool clean() {
        const imageblend_source source = {&photo.record, &mask.record};
        if (imageblend_clean_box(&source, &box) != 0) return false;
        object.resize(static_cast<size_t>(box.width) * static_cast<size_t>(box.height) * 4);
        cleaned = {box.width, box.height, object.data()};
        return imageblend_clean(&source, nullptr, &box, &cleaned, nullptr) == 0;
    }

    bool lay() {
        const imageblend_layer layer = {&cleaned, nullptr, 0, box.left, box.top};
        const blend_image& under = destination.record;
        imageblend_frames frames;
        if (imageblend_place(&layer, under.width, under.height, &frames) != 0) return false;
        const size_t frame_pixels =
            static_cast<size_t>(frames.box.width) * static_cast<size_t>(frames.box.height);
        memory.resize(9 * frame_pixels);
        frames.icon.data = memory.data();
        frames.destination.data = frames.icon.data + 4 * frame_pixels;
        frames.mask.data = frames.destination.data + 4 * frame_pixels;
        return imageblend_lay(&layer, &under, &frames, nullptr) == 0;
    }

    pixels photo, mask, destination;
    imageblend_box box = {};
    blend_image cleaned = {};
    std::vector<uint8_t> object, memory;
};

enum class part { clean, lay, both };

void time_part(benchmark::State& state, const scene& s, double softness, part timed) {
    job made(s, softness);
    if (!made.clean() || !made.lay()) {
        state.SkipWithError("a call failed");
        return;
    }
    for (auto _ : state) {
        if (timed != part::lay) benchmark::DoNotOptimize(made.clean());
        if (timed != part::clean) benchmark::DoNotOptimize(made.lay());
        benchmark::ClobberMemory();
    }
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    static const scene scenes[] = {{"1280x853", 1280, 853, 600, 400},
                                   {"4000x3000", 4000, 3000, 1000, 1000}};
    static const struct {
        const char* name;
        double softness;
    } edges[] = {{"hard", 0.001}, {"outline", 1.5}, {"soft", 24.0}};
    static const struct {
        const char* name;
        part timed;
    } parts[] = {{"clean", part::clean}, {"lay", part::lay}, {"both", part::both}};
    for (const scene& s : scenes) {
        for (const auto& edge : edges) {
            for (const auto& p : parts) {
                const std::string name =
                    std::string("prepare/") + s.name + "_" + edge.name + "/" + p.name;
                benchmark::RegisterBenchmark(name.c_str(), time_part, s, edge.softness, p.timed)
                    ->Unit(benchmark::kMillisecond);
            }
        }
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
