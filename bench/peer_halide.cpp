// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <chrono>
#include <limits>
#include <map>
#include <memory>
#include <random>
#include <stdexcept>

#include "halide_pipeline.h"
#include "patch_blends.h"

namespace {

// Rows of the finest strips of both ways, and the levels that are cut into strips at all. Strips of
// a coarser level have half the rows.
struct schedule {
    int32_t down_rows, up_rows;
    int levels;
};

std::vector<schedule> schedules() {
    std::vector<schedule> all;
    for (const int32_t down_rows : {16, 32, 64, 128}) {
        for (const int32_t up_rows : {16, 32, 64, 128}) {
            for (const int levels : {1, 2, 3})
                all.push_back({down_rows, up_rows, levels});
        }
    }
    all.push_back({0, 0, 0});  // whole levels
    return all;
}

Halide::Target host_target() {
    // Besides what the other features have, this one may bring half-precision arithmetic, which not
    // every machine has that is taken for one of its kind.
    return Halide::get_host_target()
        .without_feature(Halide::Target::AVX512_SapphireRapids)
        .with_feature(Halide::Target::NoAsserts)
        .with_feature(Halide::Target::NoBoundsQuery);
}

using strip_task = int (*)(Halide::JITUserContext* context, int strip, uint8_t* closure);

// In place of handing strips to threads.
int run_strips_here(Halide::JITUserContext* context, strip_task task, int begin, int count,
                    uint8_t* closure) {
    int status = 0;
    for (int i = begin; i < begin + count && status == 0; i++)
        status = task(context, i, closure);
    return status;
}

// A compiled pipeline and its buffers. Levels and rows are taken from malloc in every run;
// bench_pyramid has that memory stay with the process.
class compiled_pipeline {
  public:
    explicit compiled_pipeline(int32_t side)
        : side_(side),
          pipeline_(make_halide_pipeline(side)),
          out_(3 * static_cast<size_t>(side) * static_cast<size_t>(side)),
          to_(out_.data(), 3 * side, side) {
        pipeline_.blend.compile_jit(target_);
    }

    // What the next runs blend. The pictures are read in place.
    void read_from(const patch_pair& patches) {
        const auto colours = [&](const std::vector<uint8_t>& bytes) {
            return Halide::Buffer<uint8_t>::make_interleaved(const_cast<uint8_t*>(bytes.data()),
                                                             side_, side_, 3);
        };
        const auto plane = [&](const std::vector<uint8_t>& bytes, int32_t width) {
            return Halide::Buffer<uint8_t>(const_cast<uint8_t*>(bytes.data()), width, side_);
        };
        pipeline_.src.set(colours(patches.src));
        pipeline_.dst.set(colours(patches.dst));
        pipeline_.src_bytes.set(plane(patches.src, 3 * side_));
        pipeline_.dst_bytes.set(plane(patches.dst, 3 * side_));
        pipeline_.mask.set(plane(patches.mask, side_));
    }

    void run(const schedule& chosen, bool one_thread) {
        Halide::JITUserContext context;
        if (one_thread) context.handlers.custom_do_par_for = run_strips_here;
        for (int l = 0; l < DEPTH; l++) {
            const auto rows = [&](int32_t finest) {
                const int32_t height = side_ >> (l + 1);
                return l < chosen.levels ? std::clamp(finest >> l, 8, height) : height;
            };
            pipeline_.down_strip[static_cast<size_t>(l)].set(rows(chosen.down_rows));
            pipeline_.up_strip[static_cast<size_t>(l)].set(rows(chosen.up_rows));
        }
        pipeline_.blend.realize(&context, to_, target_);
    }

    const std::vector<uint8_t>& result() const { return out_; }

  private:
    int32_t side_;
    halide_pipeline pipeline_;
    Halide::Target target_ = host_target();
    std::vector<uint8_t> out_;
    Halide::Buffer<uint8_t> to_;
};

double median_seconds(compiled_pipeline* pipeline, const schedule& tried, bool one_thread) {
    using clock = std::chrono::steady_clock;
    std::vector<double> times(11);
    for (double& time : times) {
        const clock::time_point start = clock::now();
        pipeline->run(tried, one_thread);
        time = std::chrono::duration<double>(clock::now() - start).count();
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

// Pictures without any likeness to photographs, so that differences of every size occur, under
// blocks of a mask that are all set, all clear or anything.
patch_pair harsh_patches(int32_t side) {
    std::minstd_rand random(1);
    const auto byte = [&] { return static_cast<uint8_t>(random() >> 8); };
    const auto harsh_byte = [&] {
        const uint8_t value = byte();
        return random() % 2 == 0 ? value : static_cast<uint8_t>(value < 128 ? 0 : 255);
    };
    patch_pair patches = {side, {}, {}, {}};
    const size_t pixels = static_cast<size_t>(side) * static_cast<size_t>(side);
    for (std::vector<uint8_t>* picture : {&patches.src, &patches.dst}) {
        picture->resize(3 * pixels);
        std::generate(picture->begin(), picture->end(), harsh_byte);
    }
    while (patches.mask.size() < pixels) {
        const auto kind = random() % 3;
        for (int i = 0; i < 64; i++)
            patches.mask.push_back(kind == 0 ? 255 : kind == 1 ? 0 : harsh_byte());
    }
    return patches;
}

std::vector<uint8_t> our_bytes(const patch_pair& patches) {
    const patch_blend ours = make_imageblend(patches);
    ours.run();
    return ours.result();
}

void run_and_compare(compiled_pipeline* pipeline, const schedule& tried, bool one_thread,
                     const std::vector<uint8_t>& wanted) {
    pipeline->run(tried, one_thread);
    if (pipeline->result() != wanted)
        throw std::runtime_error("Halide's blend has other bytes than ours");
}

// The fastest schedule here and now. Throws when any has other bytes than our blend.
schedule choose_schedule(const patch_pair& patches, compiled_pipeline* pipeline, bool one_thread) {
    const patch_pair harsh = harsh_patches(patches.side);
    const std::vector<uint8_t> harsh_wanted = our_bytes(harsh);
    pipeline->read_from(harsh);
    for (const schedule& tried : schedules())
        run_and_compare(pipeline, tried, one_thread, harsh_wanted);
    const std::vector<uint8_t> wanted = our_bytes(patches);
    pipeline->read_from(patches);
    double best_time = std::numeric_limits<double>::infinity();
    schedule best = {};
    for (const schedule& tried : schedules()) {
        run_and_compare(pipeline, tried, one_thread, wanted);
        const double time = median_seconds(pipeline, tried, one_thread);
        if (time < best_time) best = tried;
        best_time = std::min(time, best_time);
    }
    return best;
}

// The pipeline of a side is compiled once, and reads the patches of that side that scenes.h makes
// once.
patch_blend make_blend(const patch_pair& patches, bool one_thread) {
    static std::map<int32_t, std::shared_ptr<compiled_pipeline>> made;
    static std::map<std::pair<int32_t, bool>, schedule> chosen;
    std::shared_ptr<compiled_pipeline>& pipeline = made[patches.side];
    if (!pipeline) pipeline = std::make_shared<compiled_pipeline>(patches.side);
    const auto [best, missing] = chosen.try_emplace({patches.side, one_thread});
    if (missing) best->second = choose_schedule(patches, pipeline.get(), one_thread);
    return {[pipeline, rows = best->second, one_thread] { pipeline->run(rows, one_thread); },
            [pipeline] { return pipeline->result(); }};
}

}  // namespace

patch_blend make_halide_1(const patch_pair& patches) {
    return make_blend(patches, true);
}

patch_blend make_halide(const patch_pair& patches) {
    return make_blend(patches, false);
}
