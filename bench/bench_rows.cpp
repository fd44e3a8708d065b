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
    std::vector<int16_t> lap[2], lap_out;

    row_buffers() : mask(PIXELS), out(BYTES), lap_out(BYTES) {
        uint32_t state = 1;
        const auto next = [&] { return (state = state * 1664525u + 1013904223u) >> 24; };
        const auto byte = [&] { return static_cast<uint8_t>(next()); };
        for (auto& row : in) {
            for (int i = 0; i < BYTES; i++)
                row.push_back(byte());
        }
        for (auto& row : lap) {
            for (int i = 0; i < BYTES; i++)
                row.push_back(static_cast<int16_t>(byte() - byte()));
        }
        for (auto& m : mask)
            m = byte();
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
    {"expand_even", 4 * BYTES,
     [](const row_ops& ops, row_buffers& b) {
         ops.expand_even(b.in[0].data(), b.in[1].data(), b.in[2].data(), b.out.data(), BYTES);
     }},
    {"expand_odd", 3 * BYTES,
     [](const row_ops& ops, row_buffers& b) {
         ops.expand_odd(b.in[0].data(), b.in[1].data(), b.out.data(), BYTES);
     }},
    {"subtract", 4 * BYTES,
     [](const row_ops& ops, row_buffers& b) {
         ops.subtract(b.in[0].data(), b.in[1].data(), b.lap_out.data(), BYTES);
     }},
    {"widen", 3 * BYTES,
     [](const row_ops& ops, row_buffers& b) {
         ops.widen(b.in[0].data(), b.lap_out.data(), BYTES);
     }},
    {"blend", PIXELS + 6 * BYTES,
     [](const row_ops& ops, row_buffers& b) {
         ops.blend(b.mask.data(), b.lap[0].data(), b.lap[1].data(), b.lap_out.data(), PIXELS);
     }},
    {"collapse", 4 * BYTES,
     [](const row_ops& ops, row_buffers& b) {
         ops.collapse(b.lap[0].data(), b.in[0].data(), b.out.data(), BYTES);
     }},
    {"narrow", 3 * BYTES,
     [](const row_ops& ops, row_buffers& b) { ops.narrow(b.lap[0].data(), b.out.data(), BYTES); }},
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
