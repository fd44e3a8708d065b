#include "compare.h"

#include <imageblend.h>

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

model::outcome make_blend(const scene& s, aliasing alias, const model::outcome& expected) {
    const bool into_icon = alias == aliasing::icon;
    const bool into_destination = alias == aliasing::destination || alias == aliasing::both;
    guarded_bytes icon = into_icon ? output(s.icon.data, s.seed) : input(s.icon.data, s.seed);
    guarded_bytes destination = into_destination ? output(s.destination.data, s.seed)
                                                 : input(s.destination.data, s.seed + 1);
    guarded_bytes mask = input(s.mask.data, s.seed + 2);
    guarded_bytes own = output(model::bytes(s.destination.data.size(), untouched), s.seed);
    guarded_bytes& result = into_icon ? icon : into_destination ? destination : own;
    const model::bytes before = result.content();
    const blend_image icon_record{s.icon.width, s.icon.height,
                                  alias == aliasing::both ? destination.data() : icon.data()};
    const blend_image destination_record{s.destination.width, s.destination.height,
                                         destination.data()};
    const blend_image mask_record{s.mask.width, s.mask.height, mask.data()};
    blend_image output_record{-77, 1234567, result.data()};

    const bool may_leak = __lsan_disable != nullptr && keeps_buffers(expected);
    model::outcome made;
    clear_log();
    if (may_leak) __lsan_disable();
    made.status =
        vorn_imageBlending(&icon_record, &destination_record, &mask_record, &output_record, 12345,
                           -1, s.place.center_x, s.place.center_y, s.place.zoom, s.place.angle);
    if (may_leak) __lsan_enable();
    made.log = normalised(take_log());
    made.clean = mask.holds(s.mask.data) && (into_icon || icon.holds(s.icon.data)) &&
                 (into_destination || destination.holds(s.destination.data)) && result.intact() &&
                 output_record.width == -77 && output_record.height == 1234567 &&
                 output_record.data == result.data();
    if (made.status == 0) {
        made.pixels = result.content();
    } else {
        made.clean &= result.holds(before) || result.holds(s.destination.data);
    }
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
