#include "whole_calls.h"

#include <imageblend.h>
#include <inttypes.h>
#include <stdio.h>

namespace hashes {
namespace {

class fnv {
  public:
    void add(const void* data, size_t size) {
        const auto* bytes = static_cast<const uint8_t*>(data);
        for (size_t i = 0; i < size; ++i)
            hash_ = (hash_ ^ bytes[i]) * 0x100000001B3U;
    }
    void add(int64_t value) {
        for (int shift = 0; shift < 64; shift += 8) {
            const auto byte = static_cast<uint8_t>(static_cast<uint64_t>(value) >> shift);
            add(&byte, 1);
        }
    }
    void add(const model::log_lines& log) {
        for (const model::log_line& line : log) {
            add(line.priority);
            add(line.text.data(), line.text.size() + 1);
        }
    }
    uint64_t value() const { return hash_; }

  private:
    uint64_t hash_ = 0xCBF29CE484222325U;
};

// A box of 160000 pixels and more, at its own size, a little smaller or nearly twice as large.
support::scene large_scene(uint64_t seed) {
    support::dice random(seed);
    const int32_t width = 440 + random.between(0, 30), height = 420 + random.between(0, 30);
    const bool enlarged = random.percent(30);
    const support::rectangle box = enlarged ? support::rectangle{100, 110, 190, 180}
                                            : support::rectangle{2, 3, width - 5, height - 4};
    support::scene s = support::solid_scene(width, height, box, seed);
    if (random.percent(50)) {
        for (size_t i = 0; i < s.mask.data.size(); ++i)
            s.mask.data[i] = static_cast<uint8_t>(s.mask.data[i] & (s.icon.data[4 * i] | 1));
    }
    s.place.center_x += random.between(-20, 20);
    s.place.center_y += random.between(-20, 20);
    s.place.zoom = enlarged ? 1.7F : 1.0F - static_cast<float>(random.between(0, 2)) / 128.0F;
    if (!enlarged && random.percent(50))
        s.place.angle = static_cast<float>(random.between(-9, 9)) / 2.0F;
    return s;
}

int32_t hash_size(const model::frame& mask, fnv& hash) {
    const blend_image record{mask.width, mask.height, const_cast<uint8_t*>(mask.data.data())};
    int32_t width = 0, height = 0;
    const int32_t status = vorn_get_icon_size(&record, &width, &height);
    hash.add(width);
    hash.add(height);
    return status;
}

int32_t hash_cutout(const support::scene& s, fnv& hash) {
    const support::cutout_outcome made = support::run_cutout(s);
    hash.add(made.log);
    if (made.status != 0) return made.status;
    hash.add(made.width);
    hash.add(made.height);
    hash.add(made.pixels.data(), made.pixels.size());
    return made.status;
}

int32_t hash_blend(const whole_call& call, fnv& hash) {
    const support::blend_outcome made = support::run_blend(call.scene, call.alias);
    hash.add(made.log);
    if (made.status == 0) hash.add(made.output.data(), made.output.size());
    return made.status;
}

}  // namespace

whole_call make_call(uint64_t seed) {
    static const char* const functions[] = {"blend", "blend", "blend",  "blend",  "blend",
                                            "blend", "blend", "verify", "cutout", "size"};
    static const support::aliasing aliases[] = {
        support::aliasing::none, support::aliasing::destination, support::aliasing::icon};
    whole_call call;
    call.function = functions[seed % 10];
    call.alias = aliases[seed % 3];
    call.is_large = seed % 10 == 0;
    call.scene = call.is_large ? large_scene(seed) : support::random_scene(seed);
    return call;
}

std::string call_line(const whole_call& call) {
    fnv hash;
    int32_t status = 0;
    if (call.function == "size") {
        status = hash_size(call.scene.mask, hash);
    } else if (call.function == "verify") {
        const support::verify_outcome made = support::run_verify(call.scene);
        hash.add(made.log);
        status = made.status;
    } else if (call.function == "cutout") {
        status = hash_cutout(call.scene, hash);
    } else {
        status = hash_blend(call, hash);
    }
    char line[80];
    snprintf(line, sizeof line, "%" PRIu64 " %s %d %016" PRIx64, call.scene.seed,
             call.function.c_str(), status, hash.value());
    return line;
}

}  // namespace hashes
