// SPDX-License-Identifier: Apache-2.0
// Every row operation, plain and active, beside a memcpy that moves as many bytes.
#include <benchmark/benchmark.h>
#include <stdint.h>
#include <string.h>

#include <functional>
#include <string>
#include <vector>

#include "kernels/row_ops.h"

namespace {

// Pixels of the longer row of an operation; all of its rows fit into the first-level cache.
enum { PIXELS = 1024, BYTES = 3 * PIXELS };

struct row_buffers {
    std::vector<uint8_t> in[5], mask, out;

    row_buffers() : mask(PIXELS), out(BYTES) {
        uint32_t state = 1;
        const auto next = [&] { return (state = state * 1664525u + 1013904223u) >> 24; };
        const auto byte = [&] { return static_cast<uint8_t>(next()); };
        for (auto& row : in) {
            for (int i = 0; i < BYTES; i++)
                row.push_back(byte());
        }
        for (auto& m : mask)
            m = byte();
    }

    // A mask of noise: both pictures count everywhere.
    merge_rows merge() const {
        const auto around = [&](size_t k) {
            return coarse_rows{in[k].data(), in[(k + 1) % 5].data(), in[(k + 2) % 5].data()};
        };
        return {mask.data(), in[0].data(), in[1].data(), around(2), around(3), around(4)};
    }
};

struct row_case {
    const char* name;
    size_t bytes;  // read and written
    void (*run)(const row_ops& ops, row_buffers& b);
};

const row_case row_cases[] = {
    {"reduce_row_c3", BYTES + BYTES / 2,
     [](const row_ops& ops, row_buffers& b) {
         ops.reduce_row_c3(b.in[0].data(), PIXELS, b.out.data(), PIXELS / 2);
     }},
    {"reduce_row_c1", PIXELS + PIXELS / 2,
     [](const row_ops& ops, row_buffers& b) {
         ops.reduce_row_c1(b.in[0].data(), PIXELS, b.out.data(), PIXELS / 2);
     }},
    {"expand_row_c3", BYTES / 2 + BYTES,
     [](const row_ops& ops, row_buffers& b) {
         ops.expand_row_c3(b.in[0].data(), PIXELS / 2, b.out.data(), PIXELS);
     }},
    {"reduce_column", 6 * BYTES,
     [](const row_ops& ops, row_buffers& b) {
         const uint8_t* const taps[5] = {b.in[0].data(), b.in[1].data(), b.in[2].data(),
                                         b.in[3].data(), b.in[4].data()};
         ops.reduce_column(taps, b.out.data(), BYTES);
     }},
    {"merge_even", PIXELS + 12 * BYTES,
     [](const row_ops& ops, row_buffers& b) {
         const merge_rows rows = b.merge();
         ops.merge_even(&rows, b.out.data(), PIXELS);
     }},
    {"merge_odd", PIXELS + 9 * BYTES,
     [](const row_ops& ops, row_buffers& b) {
         const merge_rows rows = b.merge();
         ops.merge_odd(&rows, b.out.data(), PIXELS);
     }},
    {"mix_rows", 3 * BYTES,
     [](const row_ops& ops, row_buffers& b) {
         ops.mix_rows(b.in[0].data(), b.in[1].data(), 77, b.out.data(), BYTES);
     }},
    {"pack_rgb", BYTES / 4 * 4 + BYTES / 4 * 3,
     [](const row_ops& ops, row_buffers& b) {
         ops.pack_rgb(b.in[0].data(), b.out.data(), BYTES / 4);
     }},
    {"unpack_rgb", BYTES / 4 * 4 + BYTES / 4 * 3,
     [](const row_ops& ops, row_buffers& b) {
         ops.unpack_rgb(b.in[0].data(), b.out.data(), BYTES / 4);
     }},
};

void time_row(benchmark::State& state, const row_case& row, const row_ops& ops) {
    row_buffers buffers;
    for (auto _ : state) {
        row.run(ops, buffers);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(row.bytes));
}

// Half the bytes are read and half are written.
void time_memcpy(benchmark::State& state, size_t bytes) {
    std::vector<uint8_t> from(bytes / 2, 1), to(bytes / 2, 2);
    for (auto _ : state) {
        memcpy(to.data(), from.data(), to.size());
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(bytes));
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    for (const row_case& row : row_cases) {
        const std::string name = std::string("rows/") + row.name;
        benchmark::RegisterBenchmark((name + "/plain").c_str(), time_row, row, plain_rows);
        benchmark::RegisterBenchmark((name + "/active").c_str(), time_row, row, *active_row_ops());
        benchmark::RegisterBenchmark((name + "/memcpy").c_str(), time_memcpy, row.bytes);
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
