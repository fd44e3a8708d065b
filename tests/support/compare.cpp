#include "compare.h"

#include <imageblend.h>

#include <algorithm>
#include <sstream>

#include "guarded_bytes.h"
#include "log_capture.h"

/* The switches of a leak sanitizer, where the build has one. */
extern "C" __attribute__((weak)) void __lsan_disable();
extern "C" __attribute__((weak)) void __lsan_enable();

namespace support {
namespace {

using ::testing::AssertionFailure;
using ::testing::AssertionResult;
using ::testing::AssertionSuccess;

constexpr size_t guard_bytes = 64;

/* Most inputs end where a page ends that cannot be left; the others end anywhere, so that every
 * alignment occurs. */
guarded_bytes input(const model::bytes& content, uint64_t seed) {
    return guarded_bytes(content, 16, seed % 4 != 0 ? 0 : 1 + seed / 4 % 5);
}

guarded_bytes output(const model::bytes& content, uint64_t seed) {
    return guarded_bytes(content, guard_bytes + seed % 7, guard_bytes);
}

/* A blend whose object is too large for the destination keeps its buffers by design; no other call
 * may, so a leak sanitizer is told to look away from that one alone. */
class allowed_leak {
  public:
    explicit allowed_leak(const scene& s) {
        const bool may_exceed = !(s.place.zoom >= 0.0F && s.place.zoom <= 1.0F) ||
                                s.place.angle != 0.0F || s.mask.data.empty() ||
                                s.icon.width != s.destination.width ||
                                s.icon.height != s.destination.height;
        if (__lsan_disable == nullptr || !may_exceed) return;
        const model::log_lines lines =
            model::image_blending(s.icon, s.destination, s.mask, s.place).log;
        allowed_ = lines.back().text.find("too big") != std::string::npos;
        if (allowed_) __lsan_disable();
    }
    ~allowed_leak() {
        if (allowed_) __lsan_enable();
    }
    allowed_leak(const allowed_leak&) = delete;
    allowed_leak& operator=(const allowed_leak&) = delete;

  private:
    bool allowed_ = false;
};

std::string listed(const model::log_lines& lines) {
    std::ostringstream text;
    for (const model::log_line& line : lines) {
        text << "\n    " << line.priority << " " << ::testing::PrintToString(line.text);
    }
    return text.str();
}

AssertionResult same_status(int32_t expected, int32_t actual) {
    if (expected == actual) return AssertionSuccess();
    return AssertionFailure() << "\n  expected status " << expected << ", got " << actual;
}

AssertionResult holds(bool condition, const char* what) {
    return condition ? AssertionSuccess() : AssertionFailure() << "\n  not so: " << what;
}

AssertionResult first_failure(const scene& s, std::initializer_list<AssertionResult> results) {
    for (const AssertionResult& result : results) {
        if (!result) return AssertionFailure() << describe(s) << result.message();
    }
    return AssertionSuccess();
}

}  // namespace

AssertionResult same_log(const model::log_lines& expected, const model::log_lines& actual) {
    if (expected == actual) return AssertionSuccess();
    return AssertionFailure() << "\n  expected log:" << listed(expected)
                              << "\n  actual log:" << listed(actual);
}

AssertionResult same_pixels(const model::bytes& expected, const model::bytes& actual,
                            int32_t width) {
    if (expected == actual) return AssertionSuccess();
    if (expected.size() != actual.size()) {
        return AssertionFailure() << "\n  expected " << expected.size() << " bytes, got "
                                  << actual.size();
    }
    size_t first = expected.size();
    size_t count = 0;
    for (size_t i = 0; i < expected.size(); ++i) {
        if (expected[i] == actual[i]) continue;
        first = std::min(first, i);
        ++count;
    }
    const size_t row = static_cast<size_t>(std::max(width, 1));
    return AssertionFailure() << "\n  " << count << " bytes differ, the first at pixel ("
                              << first / 4 % row << "," << first / 4 / row << ") byte " << first % 4
                              << ": expected " << int{expected[first]} << ", got "
                              << int{actual[first]};
}

blend_outcome run_blend(const scene& s, aliasing alias) {
    const bool into_icon = alias == aliasing::icon;
    const bool into_destination = alias == aliasing::destination || alias == aliasing::both;
    guarded_bytes icon = into_icon ? output(s.icon.data, s.seed) : input(s.icon.data, s.seed);
    guarded_bytes destination = into_destination ? output(s.destination.data, s.seed)
                                                 : input(s.destination.data, s.seed + 1);
    guarded_bytes mask = input(s.mask.data, s.seed + 2);
    guarded_bytes own = output(model::bytes(s.destination.data.size(), 0x5C), s.seed);
    guarded_bytes& result = into_icon ? icon : into_destination ? destination : own;
    const blend_image icon_record{s.icon.width, s.icon.height,
                                  alias == aliasing::both ? destination.data() : icon.data()};
    const blend_image destination_record{s.destination.width, s.destination.height,
                                         destination.data()};
    const blend_image mask_record{s.mask.width, s.mask.height, mask.data()};
    blend_image output_record{-77, 1234567, result.data()};

    blend_outcome outcome;
    outcome.before = result.content();
    clear_log();
    {
        const allowed_leak leak(s);
        outcome.status = vorn_imageBlending(&icon_record, &destination_record, &mask_record,
                                            &output_record, 12345, -1, s.place.center_x,
                                            s.place.center_y, s.place.zoom, s.place.angle);
    }
    outcome.log = normalised(take_log());
    outcome.output = result.content();
    outcome.inputs_kept = mask.content() == s.mask.data &&
                          (into_icon || icon.content() == s.icon.data) &&
                          (into_destination || destination.content() == s.destination.data);
    outcome.guards_kept = icon.intact() && destination.intact() && mask.intact() && own.intact() &&
                          output_record.width == -77 && output_record.height == 1234567 &&
                          output_record.data == result.data();
    return outcome;
}

AssertionResult blend_matches(const scene& s, aliasing alias) {
    const blend_outcome actual = run_blend(s, alias);
    const model::blend_result expected =
        model::image_blending(s.icon, s.destination, s.mask, s.place);
    const bool kept_or_copied =
        actual.output == actual.before || actual.output == s.destination.data;
    return first_failure(
        s, {same_status(expected.status, actual.status), same_log(expected.log, actual.log),
            holds(actual.guards_kept, "no byte is written beside a buffer"),
            holds(actual.inputs_kept, "no input is changed"),
            expected.status == 0
                ? same_pixels(expected.output, actual.output, s.destination.width)
                : holds(kept_or_copied, "a failed call leaves the old output or the destination")});
}

cutout_outcome run_cutout(const scene& s) {
    const model::size_result size = model::get_icon_size(s.mask);
    const int64_t pixels = int64_t{size.width} * size.height;
    const bool any = size.width > 0 && size.height > 0;
    guarded_bytes source = input(s.icon.data, s.seed);
    guarded_bytes mask = input(s.mask.data, s.seed + 1);
    guarded_bytes icon =
        output(model::bytes(any ? static_cast<size_t>(pixels) * 4 : 0, 0x5C), s.seed);
    /* the source's height is documented as unread */
    const blend_image source_record{s.icon.width, -3, source.data()};
    const blend_image mask_record{s.mask.width, s.mask.height, mask.data()};
    blend_image icon_record{-77, 1234567, icon.data()};

    cutout_outcome outcome;
    clear_log();
    outcome.status = vorn_create_rgb_icon(&source_record, &mask_record, &icon_record, s.place.zoom);
    outcome.log = normalised(take_log());
    outcome.width = icon_record.width;
    outcome.height = icon_record.height;
    outcome.pixels = icon.content();
    outcome.guards_kept = source.intact() && mask.intact() && icon.intact() &&
                          source.content() == s.icon.data && mask.content() == s.mask.data &&
                          icon_record.data == icon.data();
    return outcome;
}

AssertionResult cutout_matches(const scene& s) {
    const cutout_outcome actual = run_cutout(s);
    const model::cutout_result expected = model::create_rgb_icon(s.icon, s.mask, s.place.zoom);
    const bool made = expected.status == 0;
    const int32_t width = made ? expected.width : -77;
    const int32_t height = made ? expected.height : 1234567;
    const model::bytes untouched(actual.pixels.size(), 0x5C);
    return first_failure(
        s, {same_status(expected.status, actual.status), same_log(expected.log, actual.log),
            holds(actual.guards_kept, "no byte is written outside the icon"),
            holds(actual.width == width && actual.height == height, "the icon has its size"),
            same_pixels(made ? expected.pixels : untouched, actual.pixels, expected.width)});
}

verify_outcome run_verify(const scene& s) {
    guarded_bytes mask = input(s.mask.data, s.seed);
    verify_outcome outcome;
    clear_log();
    outcome.status =
        vorn_verify_icon_pos(mask.data(), s.mask.width, s.mask.height, -9, 31337, s.place.center_x,
                             s.place.center_y, s.place.zoom, s.place.angle);
    outcome.log = normalised(take_log());
    return outcome;
}

AssertionResult verify_matches(const scene& s) {
    const verify_outcome actual = run_verify(s);
    const model::verify_result expected = model::verify_icon_pos(s.mask, s.place);
    return first_failure(
        s, {same_status(expected.status, actual.status), same_log(expected.log, actual.log)});
}

AssertionResult size_matches(const model::frame& mask) {
    guarded_bytes samples = input(mask.data, 3);
    const blend_image record{mask.width, mask.height, samples.data()};
    int32_t width = -77;
    int32_t height = 1234567;
    clear_log();
    const int32_t status = vorn_get_icon_size(&record, &width, &height);
    const model::log_lines lines = take_log();
    const model::size_result expected = model::get_icon_size(mask);
    if (status == 0 && lines.empty() && width == expected.width && height == expected.height) {
        return AssertionSuccess();
    }
    return AssertionFailure() << "mask " << mask.width << "x" << mask.height << ": status "
                              << status << ", " << lines.size() << " log lines, size " << width
                              << "x" << height << ", expected " << expected.width << "x"
                              << expected.height;
}

}  // namespace support
