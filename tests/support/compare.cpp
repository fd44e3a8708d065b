// SPDX-License-Identifier: Apache-2.0
#include "compare.h"

#include <imageblend.h>
#include <malloc.h>

#include <algorithm>

#include "guarded_bytes.h"
#include "log_capture.h"

// The switches of a leak sanitizer, where the build has one.
extern "C" __attribute__((weak)) void __lsan_disable();
extern "C" __attribute__((weak)) void __lsan_enable();

namespace support {
namespace {

using ::testing::AssertionFailure;
using ::testing::AssertionResult;
using ::testing::AssertionSuccess;

// What malloc hands out is not zero, so that a buffer shows which ought to be.
[[maybe_unused]] const int perturbed = mallopt(M_PERTURB, 0x5A);

constexpr size_t guard_bytes = 64;
constexpr uint8_t untouched = 0x5C;

// Most inputs end where a page ends that cannot be left; the others end anywhere, so that every
// alignment occurs.
guarded_bytes input(const model::bytes& content, uint64_t seed) {
    return guarded_bytes(content, 16, seed % 4 != 0 ? 0 : 1 + seed / 4 % 5);
}

guarded_bytes output(const model::bytes& content, uint64_t seed) {
    return guarded_bytes(content, guard_bytes + seed % 7, guard_bytes);
}

// A blend whose object is too large for the destination keeps its buffers by design; no other call
// may, so a leak sanitizer is told to look away from that one alone.
bool keeps_buffers(const model::outcome& expected) {
    return !expected.log.empty() && expected.log.back().text.find("too big") != std::string::npos;
}

// The output and what it shares in one block.
struct output_place {
    guarded_bytes block;
    size_t input_at, output_at, output_size;

    output_place(const model::bytes& input, size_t input_start, size_t output_start, size_t size,
                 uint64_t seed)
        : block(output(joined(input, input_start, output_start + size), seed)),
          input_at(input_start),
          output_at(output_start),
          output_size(size) {}

    static model::bytes joined(const model::bytes& input, size_t at, size_t least) {
        model::bytes bytes(std::max(at + input.size(), least), untouched);
        std::copy(input.begin(), input.end(), bytes.begin() + static_cast<ptrdiff_t>(at));
        return bytes;
    }
    uint8_t* result() { return block.data() + output_at; }
    model::bytes pixels() const {
        const model::bytes all = block.content();
        const auto begin = all.begin() + static_cast<ptrdiff_t>(output_at);
        return model::bytes(begin, begin + static_cast<ptrdiff_t>(output_size));
    }
    // Whether the block is as before but for these pixels in the output's place.
    bool holds(model::bytes before, const model::bytes& made) const {
        std::copy(made.begin(), made.end(), before.begin() + static_cast<ptrdiff_t>(output_at));
        return block.holds(before);
    }
};

// `input` is what the output shares, if anything.
output_place place_output(const model::bytes& input, size_t size, aliasing alias, uint64_t seed) {
    if (alias != aliasing::part_of_destination && alias != aliasing::part_of_icon)
        return output_place(input, 0, 0, size, seed);
    dice random(seed);
    const auto most = static_cast<int32_t>(input.size());
    const auto shift = static_cast<size_t>(random.percent(50) ? random.between(0, std::min(most, 9))
                                                              : random.between(0, most));
    return random.percent(50) ? output_place(input, 0, shift, size, seed)
                              : output_place(input, shift, 0, size, seed);
}

model::outcome make_blend(const scene& s, aliasing alias, const model::outcome& expected) {
    const bool into_icon = alias == aliasing::icon || alias == aliasing::part_of_icon;
    const bool into_destination = alias != aliasing::none && !into_icon;
    guarded_bytes own_icon = input(s.icon.data, s.seed);
    guarded_bytes own_destination = input(s.destination.data, s.seed + 1);
    guarded_bytes mask = input(s.mask.data, s.seed + 2);
    const model::bytes nothing;
    output_place place = place_output(into_icon          ? s.icon.data
                                      : into_destination ? s.destination.data
                                                         : nothing,
                                      s.destination.data.size(), alias, s.seed);
    const model::bytes before = place.block.content();
    uint8_t* const shared = place.block.data() + place.input_at;
    uint8_t* const destination = into_destination ? shared : own_destination.data();
    uint8_t* const icon = into_icon                 ? shared
                          : alias == aliasing::both ? destination
                                                    : own_icon.data();
    const blend_image icon_record{s.icon.width, s.icon.height, icon};
    const blend_image destination_record{s.destination.width, s.destination.height, destination};
    const blend_image mask_record{s.mask.width, s.mask.height, mask.data()};
    blend_image output_record{-77, 1234567, place.result()};

    model::outcome made;
    clear_log();
    {
        const without_leak_check unchecked(keeps_buffers(expected));
        made.status = vorn_imageBlending(&icon_record, &destination_record, &mask_record,
                                         &output_record, 12345, -1, s.place.center_x,
                                         s.place.center_y, s.place.zoom, s.place.angle);
    }
    made.log = normalised(take_log());
    if (made.status == 0) made.pixels = place.pixels();
    made.clean =
        mask.holds(s.mask.data) && own_icon.holds(s.icon.data) &&
        own_destination.holds(s.destination.data) && output_record.width == -77 &&
        output_record.height == 1234567 && output_record.data == place.result() &&
        (made.status == 0 ? place.holds(before, made.pixels)
                          : place.block.holds(before) || place.holds(before, s.destination.data));
    return made;
}

AssertionResult same(const scene& s, const model::outcome& expected, const model::outcome& actual,
                     int32_t width) {
    const AssertionResult log = same_log(expected.log, actual.log);
    const AssertionResult pixels = same_pixels(expected.pixels, actual.pixels, width);
    if (expected.status == actual.status && expected.width == actual.width &&
        expected.height == actual.height && log && pixels && actual.clean) {
        return AssertionSuccess();
    }
    return AssertionFailure() << describe(s) << "\n  expected status " << expected.status
                              << " and size " << expected.width << "x" << expected.height
                              << ", got " << actual.status << " and " << actual.width << "x"
                              << actual.height << log.message() << pixels.message()
                              << (actual.clean ? "" : "\n  bytes are written that are not its own");
}

}  // namespace

without_leak_check::without_leak_check(bool really)
    : disabled_(really && __lsan_disable != nullptr) {
    if (disabled_) __lsan_disable();
}

without_leak_check::~without_leak_check() {
    if (disabled_) __lsan_enable();
}

AssertionResult same_log(const model::log_lines& expected, const model::log_lines& actual) {
    if (expected == actual) return AssertionSuccess();
    return AssertionFailure() << "\n  expected log: " << ::testing::PrintToString(expected)
                              << "\n  actual log: " << ::testing::PrintToString(actual);
}

AssertionResult same_pixels(const model::bytes& expected, const model::bytes& actual,
                            int32_t width) {
    if (expected == actual) return AssertionSuccess();
    if (expected.size() != actual.size()) {
        return AssertionFailure() << "\n  expected " << expected.size() << " bytes, got "
                                  << actual.size();
    }
    const auto [wanted, got] = std::mismatch(expected.begin(), expected.end(), actual.begin());
    const auto at = wanted - expected.begin();
    const int32_t row = std::max(width, 1);
    return AssertionFailure() << "\n  pixel (" << at / 4 % row << "," << at / 4 / row << ") byte "
                              << at % 4 << ": expected " << int{*wanted} << ", got " << int{*got};
}

model::outcome run_blend(const scene& s, aliasing alias) {
    if (__lsan_disable == nullptr) return make_blend(s, alias, {});
    return make_blend(s, alias, model::image_blending(s.icon, s.destination, s.mask, s.place));
}

AssertionResult blend_matches(const scene& s, aliasing alias) {
    const model::outcome expected = model::image_blending(s.icon, s.destination, s.mask, s.place);
    return same(s, expected, make_blend(s, alias, expected), s.destination.width);
}

model::outcome run_cutout(const scene& s) {
    const model::outcome size = model::get_icon_size(s.mask);
    const bool any = size.width > 0 && size.height > 0;
    const int64_t bytes = any ? int64_t{size.width} * size.height * 4 : 0;
    const model::bytes before(static_cast<size_t>(bytes), untouched);
    guarded_bytes source = input(s.icon.data, s.seed);
    guarded_bytes mask = input(s.mask.data, s.seed + 1);
    guarded_bytes icon = output(before, s.seed);
    // the source's height is documented as unread
    const blend_image source_record{s.icon.width, -3, source.data()};
    const blend_image mask_record{s.mask.width, s.mask.height, mask.data()};
    blend_image icon_record{-77, 1234567, icon.data()};

    model::outcome made;
    clear_log();
    made.status = vorn_create_rgb_icon(&source_record, &mask_record, &icon_record, s.place.zoom);
    made.log = normalised(take_log());
    made.clean = source.holds(s.icon.data) && mask.holds(s.mask.data) && icon.intact() &&
                 icon_record.data == icon.data();
    if (made.status == 0) {
        made.width = icon_record.width;
        made.height = icon_record.height;
        made.pixels = icon.content();
    } else {
        made.clean &=
            icon.holds(before) && icon_record.width == -77 && icon_record.height == 1234567;
    }
    return made;
}

AssertionResult cutout_matches(const scene& s) {
    const model::outcome expected = model::create_rgb_icon(s.icon, s.mask);
    return same(s, expected, run_cutout(s), expected.width);
}

model::outcome run_verify(const scene& s) {
    guarded_bytes mask = input(s.mask.data, s.seed);
    model::outcome made;
    clear_log();
    made.status =
        vorn_verify_icon_pos(mask.data(), s.mask.width, s.mask.height, -9, 31337, s.place.center_x,
                             s.place.center_y, s.place.zoom, s.place.angle);
    made.log = normalised(take_log());
    made.clean = mask.holds(s.mask.data);
    return made;
}

AssertionResult verify_matches(const scene& s) {
    return same(s, model::verify_icon_pos(s.mask, s.place), run_verify(s), 0);
}

model::outcome run_size(const model::frame& mask) {
    guarded_bytes samples = input(mask.data, 3);
    const blend_image record{mask.width, mask.height, samples.data()};
    model::outcome made;
    clear_log();
    made.status = vorn_get_icon_size(&record, &made.width, &made.height);
    made.log = take_log();
    made.clean = samples.holds(mask.data);
    return made;
}

AssertionResult size_matches(const model::frame& mask) {
    scene s;
    s.mask = mask;
    return same(s, model::get_icon_size(mask), run_size(mask), 0);
}

}  // namespace support
