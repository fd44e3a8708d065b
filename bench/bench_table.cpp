// SPDX-License-Identifier: Apache-2.0
// Prints one table of the medians in the JSON files of the benchmark programs, and the bars.
// Usage: bench_table [--plot FILE] JSON...
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "results.h"

namespace {

void print_row(const std::string& head, const std::vector<std::string>& cells) {
    printf("  %-22s", head.c_str());
    for (const std::string& cell : cells)
        printf(" %12s", cell.c_str());
    printf("\n");
}

struct column {
    const char *title, *kind;
};

void print_pyramids(const results& from, const char* title, const std::vector<column>& columns) {
    printf("\nPyramid alone, ns for each pixel, %s\n", title);
    std::vector<std::string> heads;
    for (const column& c : columns)
        heads.push_back(c.title);
    print_row("side", heads);
    for (const int side : pyramid_sides()) {
        std::vector<std::string> cells;
        for (const column& c : columns)
            cells.push_back(number(pyramid_ns(from, c.kind, side) / side / side, 3));
        print_row(std::to_string(side), cells);
    }
}

void print_pyramids(const results& from) {
    print_pyramids(from, "on one thread (memcpy of 25 bytes)",
                   {{"imageblend", "imageblend_1"},
                    {"Halide", "halide_1"},
                    {"by hand", "by_hand_1"},
                    {"MultiBand", "multiband_1"},
                    {"memcpy", "memcpy_25"}});
    print_pyramids(from, "on all cores (16s: with 16-bit weights)",
                   {{"imageblend", "imageblend"},
                    {"fresh memory", "imageblend_fresh"},
                    {"Halide", "halide"},
                    {"by hand", "by_hand"},
                    {"MultiBand", "multiband"},
                    {"MultiBand 16s", "multiband_16s"}});
    printf(
        "\nTimes divided by ours: of Halide on as many threads, of the others' fastest variants "
        "on\n"
        "all cores, and of these by ours on fresh memory\n");
    print_row("side",
              {"Halide, one", "Halide, all", "by hand", "MultiBand", "hand/fresh", "multi/fresh"});
    for (const int side : pyramid_sides()) {
        const auto over = [&](double peer, const char* kind) {
            return number(peer / pyramid_ns(from, kind, side), 2);
        };
        const double by_hand = by_hand_ns(from, side), multiband = multiband_ns(from, side);
        print_row(std::to_string(side),
                  {over(pyramid_ns(from, "halide_1", side), "imageblend_1"),
                   over(pyramid_ns(from, "halide", side), "imageblend"),
                   over(by_hand, "imageblend"), over(multiband, "imageblend"),
                   over(by_hand, "imageblend_fresh"), over(multiband, "imageblend_fresh")});
    }
}

void print_calls(const results& from) {
    printf(
        "\nWhole calls and their peak memory beyond the caller's buffers (first: the only call of\n"
        "a process, where every page is new)\n");
    print_row("scene", {"ms", "first, ms", "MiB", "B/region px", "B/frame px"});
    for (const std::string& name : from.names("call/")) {
        const std::string scene = name.substr(5), memory = "memory/" + scene;
        print_row(scene, {number(from.time_ns(name) / 1e6, 3),
                          number(from.time_ns("first_call/" + scene) / 1e6, 3),
                          number(from.value(memory, "peak_bytes") / (1 << 20), 2),
                          number(from.value(memory, "per_region_pixel"), 2),
                          number(from.value(memory, "per_frame_pixel"), 3)});
    }
    for (const std::string& name : from.names("frame_copy/"))
        print_row("frame " + name.substr(11, name.find('_', 11) - 11) + " copied",
                  {number(from.time_ns(name) / 1e6, 3)});
    for (const std::string& name : from.names("region/"))
        print_row("pyramid " + name.substr(name.rfind('/') + 1) + " alone",
                  {number(from.time_ns(name) / 1e6, 3)});
}

void print_loaded(const results& from) {
    printf("\nBeside as many busy loops as there are cores\n");
    print_row("blend", {"one thread, ms", "free, ms", "free/one"});
    for (const std::string& name : from.names("loaded/")) {
        const std::string blend = name.substr(7);
        const double one = from.time_ns("loaded_1/" + blend), any = from.time_ns(name);
        print_row(blend, {number(one / 1e6, 3), number(any / 1e6, 3), number(any / one, 2)});
    }
}

void print_rows(const results& from) {
    printf("\nRow operations, GB/s read and written\n");
    print_row("operation", {"plain", "active", "memcpy", "active/plain", "of memcpy"});
    const std::string suffix = "/plain";
    for (const std::string& name : from.names("rows/")) {
        const size_t at = name.rfind(suffix);
        if (at == std::string::npos) continue;
        const std::string row = name.substr(0, at);
        const auto speed = [&](const char* path) {
            return from.value(row + path, "bytes_per_second") / 1e9;
        };
        const double plain = speed("/plain"), active = speed("/active"), copy = speed("/memcpy");
        print_row(row.substr(5), {number(plain, 2), number(active, 2), number(copy, 2),
                                  number(active / plain, 2), number(active / copy, 2)});
    }
}

void print_quality(const results& from) {
    printf(
        "\nQuality at 1024: grey levels that destination pixels moved outside the mask, and more\n"
        "than 64 pixels from the object; gradient energy kept of that of a plain paste\n");
    print_row("blend", {"mean", "largest", "mean > 64", "largest > 64", "energy in", "energy out"});
    for (const std::string& name : from.names("quality/")) {
        print_row(name.substr(8), {number(from.value(name, "outside_mean"), 3),
                                   number(from.value(name, "outside_largest"), 0),
                                   number(from.value(name, "beyond_mean"), 3),
                                   number(from.value(name, "beyond_largest"), 0),
                                   number(from.value(name, "energy_inside"), 4),
                                   number(from.value(name, "energy_outside"), 4)});
    }
}

// One line for each size: side and ns/pixel of ours, Halide, the blend by hand and
// MultiBandBlender.
void write_plot_data(const results& from, const std::string& path) {
    std::ofstream file(path);
    for (const int side : pyramid_sides()) {
        file << side;
        for (const double ns :
             {pyramid_ns(from, "imageblend", side), pyramid_ns(from, "halide", side),
              by_hand_ns(from, side), multiband_ns(from, side)})
            file << " " << ns / side / side;
        file << "\n";
    }
    if (!file.flush()) throw std::runtime_error(path + ": cannot be written");
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> paths(argv + 1, argv + argc);
    std::string plot;
    if (paths.size() >= 2 && paths[0] == "--plot") {
        plot = paths[1];
        paths.erase(paths.begin(), paths.begin() + 2);
    }
    if (paths.empty()) {
        std::cerr << "usage: bench_table [--plot FILE] JSON...\n";
        return 2;
    }
    try {
        const results from(paths);
        printf("Medians of %d rounds; %s\n", from.rounds, from.machine.c_str());
        print_pyramids(from);
        print_calls(from);
        print_loaded(from);
        print_rows(from);
        print_quality(from);
        const int missed = print_bars(from);
        if (!plot.empty()) write_plot_data(from, plot);
        printf("\n%d of the bars missed\n", missed);
    } catch (const std::exception& error) {
        std::cerr << "bench_table: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
