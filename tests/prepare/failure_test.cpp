// SPDX-License-Identifier: Apache-2.0
// Calls that cannot be done leave everything as it was; calls that can give the same bytes on every
// platform.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>

#include "pool/faults.h"
#include "prepare/scenes.h"

namespace {

using namespace prepare;

// One good call of every function, whose arguments a test spoils.
struct calls {
    calls() {
        for (size_t i = 0; i < alpha.data.size(); ++i)
            picture_.data[4 * i] = alpha.data[i];
    }

    // The status of each function on the spoilt arguments.
    int32_t clean_box() { return imageblend_clean_box(&source, &box); }
    int32_t clean() { return imageblend_clean(&source, &options, &box, &object, &findings); }
    int32_t place() {
        return imageblend_place(&layer, destination.width, destination.height, &frames);
    }
    int32_t lay() { return imageblend_lay(&layer, &destination, &frames, &reach); }
    int32_t finish() { return imageblend_finish(&frames, &frames.destination, &destination); }
    int32_t paste() { return imageblend_paste(&layer, &destination, &reach); }

    void prepare_clean() {
        ASSERT_EQ(clean_box(), 0);
        resize_object();
    }
    void prepare_lay() {
        prepare_clean();
        ASSERT_EQ(clean(), 0);
        ASSERT_EQ(place(), 0);
        frame_memory.resize(static_cast<size_t>(frames.box.width * frames.box.height) * 9, 0xAB);
        frames.icon.data = frame_memory.data();
        frames.destination.data = frames.icon.data + 4 * frames.box.width * frames.box.height;
        frames.mask.data = frames.destination.data + 4 * frames.box.width * frames.box.height;
    }
    void resize_object() {
        object_pixels = picture(box.width, box.height, 4, 0xAB);
        object = object_pixels.record();
    }
    // Everything that a call may write.
    uint64_t state() const {
        uint64_t all = hash(object_pixels.data);
        all = hash(destination_pixels.data, hash(frame_memory, all));
        const int32_t numbers[] = {
            reach,    findings.alpha, findings.fit,     findings.surroundings,
            box.left, box.width,      frames.box.width, frames.center_x};
        for (const int32_t number : numbers)
            all = all * 31 + static_cast<uint64_t>(number);
        return all;
    }

    picture alpha = hard(coverage(70, 60, disc(35, 30, 20)));
    picture picture_ = composite(texture(70, 60, {{190, 80, 60}}, 30, 1), alpha,
                                 texture(70, 60, {{60, 110, 140}}, 30, 2));
    picture destination_pixels = texture(90, 80, {{100, 120, 90}}, 30, 3), object_pixels;
    std::vector<uint8_t> frame_memory;
    blend_image colours = picture_.record(), marks = alpha.record(), object = {};
    blend_image destination = destination_pixels.record();
    imageblend_source source = {&colours, &marks};
    imageblend_clean_options options = {1, 0.0f};
    imageblend_box box = {};
    imageblend_findings findings = {-1, -1, -1, -1, -1.0f};
    imageblend_layer layer = {&object, &colours, 12, 10, 10};
    imageblend_frames frames = {};
    int32_t reach = -5;
};

// A change of good arguments, after which a call has to fail and to leave everything as it was.
struct spoilt {
    std::function<void(calls&)> spoil;
    int32_t (calls::*call)();
};

TEST(BadInput, IsRefusedAndNothingIsWritten) {
    const int32_t huge = INT32_MAX;
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const spoilt all[] = {
        {[](calls& c) { c.source.picture = nullptr; }, &calls::clean_box},
        {[](calls& c) { c.colours.data = nullptr; }, &calls::clean_box},
        {[](calls& c) { c.marks.data = nullptr; }, &calls::clean_box},
        {[](calls& c) { c.colours.width = 0; }, &calls::clean_box},
        {[](calls& c) { c.marks.height--; }, &calls::clean_box},
        {[=](calls& c) {
             c.colours = c.marks = {huge, huge, c.marks.data};
         },
         &calls::clean_box},
        {[](calls& c) { c.source.picture = nullptr; }, &calls::clean},
        {[](calls& c) { c.marks.width++; }, &calls::clean},
        {[=](calls& c) { c.options.grow = nan; }, &calls::clean},
        {[](calls& c) { c.options.grow = 16.01f; }, &calls::clean},
        {[](calls& c) { c.options.grow = -INFINITY; }, &calls::clean},
        {[](calls& c) { c.object.width--; }, &calls::clean},
        {[](calls& c) { c.object.data = nullptr; }, &calls::clean},
        {[](calls& c) { c.box.left++; }, &calls::clean},
        {[](calls& c) { c.box.top = -1; }, &calls::clean},
        {[](calls& c) { c.box.width = c.object.width = 0; }, &calls::clean},
        {[=](calls& c) { c.box.height = c.object.height = huge; }, &calls::clean},
        {[](calls& c) { c.box.left = INT32_MIN; }, &calls::clean},
        {[](calls& c) { c.layer.object = nullptr; }, &calls::place},
        {[](calls& c) { c.object.height = -1; }, &calls::place},
        {[](calls& c) { c.destination.width = 0; }, &calls::place},
        {[](calls& c) { c.layer.reach = -2; }, &calls::place},
        {[](calls& c) { c.layer.reach = 257; }, &calls::place},
        {[=](calls& c) { c.object.width = c.object.height = huge; }, &calls::place},
        {[](calls& c) { c.layer.left++; }, &calls::lay},
        {[](calls& c) { c.frames.box.width++; }, &calls::lay},
        {[](calls& c) { c.frames.mask.width--; }, &calls::lay},
        {[](calls& c) { c.frames.icon.data = nullptr; }, &calls::lay},
        {[](calls& c) { c.destination.data = nullptr; }, &calls::lay},
        {[](calls& c) { c.layer.left = INT32_MIN, c.frames = {}; }, &calls::lay},
        {[](calls& c) { c.frames.icon.data = nullptr; }, &calls::finish},
        {[](calls& c) { c.frames.icon.height--; }, &calls::finish},
        {[](calls& c) { c.frames.destination.width--; }, &calls::finish},
        {[](calls& c) { c.frames = {}; }, &calls::finish},
        {[](calls& c) { c.destination.height = 0; }, &calls::finish},
        {[](calls& c) { c.layer.object = nullptr; }, &calls::paste},
        {[](calls& c) { c.destination.data = nullptr; }, &calls::paste},
        {[=](calls& c) { c.destination.width = c.destination.height = huge; }, &calls::paste},
    };
    int number = 0;
    for (const spoilt& s : all) {
        SCOPED_TRACE(number++);
        calls made;
        made.layer.surroundings = nullptr;
        made.prepare_lay();
        s.spoil(made);
        const uint64_t before = made.state();
        EXPECT_EQ((made.*s.call)(), -1);
        EXPECT_EQ(made.state(), before);
    }
    calls made;
    made.prepare_lay();
    EXPECT_EQ(imageblend_clean_box(nullptr, &made.box), -1);
    EXPECT_EQ(imageblend_clean_box(&made.source, nullptr), -1);
    EXPECT_EQ(imageblend_clean(&made.source, nullptr, nullptr, &made.object, nullptr), -1);
    EXPECT_EQ(imageblend_clean(&made.source, nullptr, &made.box, nullptr, nullptr), -1);
    EXPECT_EQ(imageblend_clean(&made.source, nullptr, &made.box, &made.object, nullptr), 0);
    EXPECT_EQ(imageblend_place(nullptr, 9, 9, &made.frames), -1);
    EXPECT_EQ(imageblend_place(&made.layer, 9, 9, nullptr), -1);
    EXPECT_EQ(imageblend_lay(nullptr, &made.destination, &made.frames, nullptr), -1);
    EXPECT_EQ(imageblend_lay(&made.layer, &made.destination, nullptr, nullptr), -1);
    EXPECT_EQ(imageblend_finish(&made.frames, nullptr, &made.destination), -1);
    EXPECT_EQ(imageblend_finish(nullptr, &made.object, &made.destination), -1);
    EXPECT_EQ(imageblend_paste(nullptr, &made.destination, nullptr), -1);
    EXPECT_EQ(imageblend_paste(&made.layer, nullptr, nullptr), -1);
}

// Every allocation fails in turn.
void expect_clean_failures(calls& made, int32_t (calls::*call)(), int fewest) {
    const uint64_t before = made.state();
    int n = 0;
    for (;; ++n) {
        const int64_t blocks = faults::live_blocks();
        const faults::scope fault(faults::call::allocation, faults::nth(n));
        const int32_t status = (made.*call)();
        EXPECT_EQ(faults::live_blocks(), blocks);
        if (fault.calls() <= n) {
            EXPECT_EQ(status, 0);
            break;
        }
        ASSERT_EQ(status, -1) << n;
        ASSERT_EQ(made.state(), before) << n;
    }
    EXPECT_GE(n, fewest);
    EXPECT_NE(made.state(), before);
}

TEST(ShortMemory, FailsAndNothingIsWritten) {
    calls cleaning, soft, laying, pasting;
    cleaning.prepare_clean();
    expect_clean_failures(cleaning, &calls::clean, 7);
    soft.alpha = coverage(70, 60, disc(35, 30, 20));
    for (uint8_t& value : soft.alpha.data)
        value = static_cast<uint8_t>(value / 2);
    soft.marks = soft.alpha.record();
    soft.prepare_clean();
    expect_clean_failures(soft, &calls::clean, 3);
    laying.prepare_lay();
    picture around(laying.object.width, laying.object.height, 4, 255);
    blend_image ring = around.record();
    laying.layer.surroundings = &ring;
    ASSERT_EQ(laying.box.width, 70);
    expect_clean_failures(laying, &calls::lay, 2);
    pasting.prepare_lay();
    pasting.layer.surroundings = &ring;
    expect_clean_failures(pasting, &calls::paste, 3);
}

// Hashes of whole chains of calls, the same with every compiler and processor.
TEST(Results, HaveTheSameBytesOnEveryPlatform) {
    struct line {
        const char* name;
        double softness, grow;
        bool own_alpha;
        int32_t reach;
        uint64_t object, result;
    };
    const line table[] = {
        {"hard, fitted", 0, 0, false, 0, 0x1D0521FF50DF8A9DU, 0x704DA21C16EADB7CU},
        {"hard, grown", 0, 2.5, false, 12, 0x45D275F90BBEBF40U, 0x8B999FC6C8536E68U},
        {"outline", 1, 0, false, IMAGEBLEND_SURROUNDINGS_AUTO, 0xD4E45304725AFA7CU,
         0xD8F13087FFE661C3U},
        {"soft", 9, 0, false, 0, 0xAFCA067BC5AB695AU, 0x5201AFE44A03ADC6U},
        {"photo with alpha", 9, -1, true, 5, 0x86BF142FEACFAD8AU, 0x562422E85AA93786U},
    };
    for (const line& l : table) {
        // Integers only, so that the inputs are the same everywhere.
        const int32_t side = 120;
        picture mask(side, side, 1), source = texture(side, side, {{80, 120, 150}}, 30, 1);
        const picture object = texture(side, side, {{190, 100, 60}}, 30, 2);
        for (int32_t y = 0; y < side; ++y) {
            for (int32_t x = 0; x < side; ++x) {
                const int32_t away = (x - 60) * (x - 60) + (y - 60) * (y - 60) - 35 * 35;
                const int32_t slope = static_cast<int32_t>(l.softness) * 70;
                const int32_t alpha = slope > 0 ? 128 - away * 255 / slope : (away < 0 ? 255 : 0);
                *mask.at(x, y) = static_cast<uint8_t>(std::min(std::max(alpha, 0), 255));
            }
        }
        source = composite(object, mask, source);
        for (size_t i = 0; i < mask.data.size(); ++i)
            source.data[4 * i] = mask.data[i];
        cleaned made =
            clean(source, l.own_alpha ? nullptr : &mask, {1, static_cast<float>(l.grow)});
        picture around = source, output = texture(100, 100, {{90, 110, 140}}, 30, 3);
        for (size_t i = 0; i < around.data.size(); i += 4)
            around.data[i] = 255;
        blend_image record = made.object.record(), ring = around.record(), into = output.record();
        ASSERT_EQ(made.box.width, side);
        const imageblend_layer layer = {&record, &ring, l.reach, -30, 5};
        ASSERT_EQ(imageblend_paste(&layer, &into, nullptr), 0);
        EXPECT_EQ(hash(made.object.data), l.object)
            << l.name << std::hex << " 0x" << hash(made.object.data);
        EXPECT_EQ(hash(output.data), l.result) << l.name << std::hex << " 0x" << hash(output.data);
    }
}

}  // namespace
