// SPDX-License-Identifier: Apache-2.0
#include "whole_calls.h"

#include <inttypes.h>
#include <stdio.h>

namespace hashes {
namespace {

// Adds bytes to an FNV-1a hash.
void add(uint64_t& hash, const void* data, size_t size) {
    const auto* bytes = static_cast<const uint8_t*>(data);
    for (size_t i = 0; i < size; ++i)
        hash = (hash ^ bytes[i]) * 0x100000001B3U;
}

void add(uint64_t& hash, int64_t value) {
    for (int shift = 0; shift < 64; shift += 8) {
        const auto byte = static_cast<uint8_t>(static_cast<uint64_t>(value) >> shift);
        add(hash, &byte, 1);
    }
}

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

model::outcome run(const whole_call& call) {
    if (call.function == "size") return support::run_size(call.scene.mask);
    if (call.function == "verify") return support::run_verify(call.scene);
    if (call.function == "cutout") return support::run_cutout(call.scene);
    return support::run_blend(call.scene, call.alias);
}

}  // namespace

whole_call make_call(uint64_t seed) {
    static const char* const small_calls[] = {"verify", "cutout", "size"};
    const bool is_large = seed % 10 == 0;
    whole_call call;
    call.function = seed % 10 < 7 ? "blend" : small_calls[seed % 10 - 7];
    call.alias = static_cast<support::aliasing>(seed % 3);
    call.scene = is_large ? large_scene(seed) : support::random_scene(seed);
    return call;
}

std::string call_line(const whole_call& call) {
    const model::outcome made = run(call);
    uint64_t hash = 0xCBF29CE484222325U;
    for (const model::log_line& line : made.log) {
        add(hash, line.priority);
        add(hash, line.text.data(), line.text.size() + 1);
    }
    if (made.status == 0 && (call.function == "size" || call.function == "cutout")) {
        add(hash, made.width);
        add(hash, made.height);
    }
    add(hash, made.pixels.data(), made.pixels.size());
    char line[80];
    snprintf(line, sizeof line, "%" PRIu64 " %s %d %016" PRIx64, call.scene.seed,
             call.function.c_str(), made.status, hash);
    return line;
}

}  // namespace hashes
