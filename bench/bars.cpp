// SPDX-License-Identifier: Apache-2.0
// What the library is held to.
#include <cmath>
#include <cstdio>
#include <string>

#include "results.h"

namespace {

struct bar {
    std::string subject;
    double measured, limit;
    bool at_least;   // whether more is better
    double stretch;  // not a number when there is none
    const char* unit;
    int digits;
};

bool holds(const bar& b, double limit) {
    return b.at_least ? b.measured >= limit : b.measured <= limit;
}

// Returns whether the bar is missed.
bool print_bar(const bar& b) {
    const char* state = std::isnan(b.measured) || std::isnan(b.limit) ? "not measured"
                        : holds(b, b.limit)                           ? "met"
                                                                      : "MISSED";
    std::string wanted = (b.at_least ? ">= " : "<= ") + number(b.limit, b.digits);
    if (!std::isnan(b.stretch) && !std::isnan(b.measured)) {
        wanted += " (stretch " + number(b.stretch, b.digits) +
                  (holds(b, b.stretch) ? ", met)" : ", not met)");
    }
    printf("  %-12s  %-58s %10s %-5s  %s\n", state, b.subject.c_str(),
           number(b.measured, b.digits).c_str(), b.unit, wanted.c_str());
    return state[0] == 'M';
}

bar faster_than(const std::string& subject, double peer, double ours, double limit,
                double stretch = NAN) {
    return {subject, peer / ours, limit, true, stretch, "x", 2};
}

bar at_most(const std::string& subject, double measured, double limit, const char* unit, int digits,
            double stretch = NAN) {
    return {subject, measured, limit, false, stretch, unit, digits};
}

}  // namespace

int print_bars(const results& from) {
    const auto ours = [&](int side) { return pyramid_ns(from, "imageblend", side); };
    const auto halide = [&](int side) { return pyramid_ns(from, "halide", side); };
    const auto per_pixel = [&](int side) { return ours(side) / side / side; };
    const auto call = [&](const char* scene) {
        return from.time_ns(std::string("call/4000x3000_") + scene) / 1e6;
    };
    const auto first_call = [&](const char* scene) {
        return from.time_ns(std::string("first_call/4000x3000_") + scene) / 1e6;
    };
    const auto loaded = [&](const std::string& blend) {
        return from.time_ns("loaded/" + blend) / from.time_ns("loaded_1/" + blend);
    };
    const double copy = from.time_ns("frame_copy/4000x3000_plain") / 1e6;
    const double region = from.time_ns("region/imageblend/1128") / 1e6;
    const double call_limit = copy + 2 * region;
    const bar bars[] = {
        faster_than("pyramid 256, against Halide", halide(256), ours(256), 1.0),
        faster_than("pyramid 512, against Halide", halide(512), ours(512), 1.1),
        faster_than("pyramid 1024, against Halide", halide(1024), ours(1024), 1.3),
        faster_than("pyramid 2048, against Halide", halide(2048), ours(2048), 1.3),
        faster_than("pyramid 1024, against the blend by hand", by_hand_ns(from, 1024), ours(1024),
                    8),
        faster_than("pyramid 1024, against MultiBandBlender", multiband_ns(from, 1024), ours(1024),
                    25),
        faster_than("pyramid 256, against MultiBandBlender", multiband_ns(from, 256), ours(256), 5),
        at_most("ns/pixel at 2048, against 1.3 times that at 512", per_pixel(2048),
                1.3 * per_pixel(512), "ns", 3),
        at_most("call plain, against frame copy + 2 pyramids of 1128", call("plain"), call_limit,
                "ms", 2),
        at_most("call angle 30, against 1.5 times the same", call("angle_30"), 1.5 * call_limit,
                "ms", 2),
        at_most("first call of a process at angle 30, against the plain one",
                first_call("angle_30") / first_call("plain"), 1.5, "x", 2),
        at_most("call zoom 0.7, against the plain call", call("zoom_0.7"), call("plain"), "ms", 2),
        at_most("pyramid 1024 beside busy loops, against one thread there", loaded("pyramid 1024"),
                1.3, "x", 2),
        at_most("call plain beside busy loops, against one thread there", loaded("4000x3000_plain"),
                1.3, "x", 2),
        at_most("memory of the plain call for a region pixel",
                from.value("memory/4000x3000_plain", "per_region_pixel"), 5, "bytes", 1),
    };
    int missed = 0;
    printf("\nBars\n");
    for (const bar& b : bars)
        missed += print_bar(b) ? 1 : 0;
    return missed;
}
