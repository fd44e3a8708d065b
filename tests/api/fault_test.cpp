// Whole calls in which memory or threads run out: status, output, log and no leak.
#include <gtest/gtest.h>

#include "blend/rotated_icon.h"
#include "imageblend.h"
#include "pool/faults.h"
#include "support/compare.h"
#include "support/log_capture.h"
#include "support/scene.h"

namespace {

using faults::call;
using model::bytes;
using support::scene;

blend_image image_of(const model::frame& f) {
    return {f.width, f.height, const_cast<uint8_t*>(f.data.data())};
}

// A leak sanitizer's switches, where the build has one.
extern "C" __attribute__((weak)) void __lsan_disable();
extern "C" __attribute__((weak)) void __lsan_enable();

struct blended {
    int32_t status;
    bytes output;
};

blended blend(const scene& s) {
    bytes output(s.destination.data.size(), 0xC7);
    const blend_image icon = image_of(s.icon), destination = image_of(s.destination),
                      mask = image_of(s.mask);
    blend_image out = {s.mask.width, s.mask.height, output.data()};
    testing::internal::CaptureStdout();
    const int32_t status =
        vorn_imageBlending(&icon, &destination, &mask, &out, 0, 0, s.place.center_x,
                           s.place.center_y, s.place.zoom, s.place.angle);
    testing::internal::GetCapturedStdout();
    return {status, output};
}

scene scene_at(float zoom, float angle) {
    scene s = support::solid_scene(150, 140, {50, 45, 40, 50}, 5);
    s.place.zoom = zoom;
    s.place.angle = angle;
    return s;
}

// Every single allocation of the call fails in turn, or all from it on.
void check_every_allocation(const scene& s, bool once) {
    const bytes untouched(s.destination.data.size(), 0xC7);
    const bytes expected = blend(s).output;
    int failures = 0;
    for (int n = 0;; ++n) {
        const int64_t blocks = faults::live_blocks();
        const faults::scope fault(call::allocation, once ? faults::nth(n) : faults::from(n));
        const blended b = blend(s);
        ASSERT_EQ(g_rotated_icon, nullptr);
        ASSERT_EQ(faults::live_blocks(), blocks) << "allocation " << n;
        if (b.status == 0) {
            ASSERT_TRUE(b.output == expected) << "allocation " << n;
        } else {
            ASSERT_EQ(b.status, -1);
            ASSERT_TRUE(b.output == untouched || b.output == s.destination.data)
                << "allocation " << n;
            ++failures;
        }
        if (fault.calls() <= n) {
            ASSERT_EQ(b.status, 0);
            break;
        }
    }
    EXPECT_GE(failures, 1);
}

TEST(Faults, EveryAllocationOfABlend) {
    support::clear_log();
    for (const bool once : {true, false}) {
        check_every_allocation(scene_at(1, 0), once);
        check_every_allocation(scene_at(1.4F, 0), once);
        check_every_allocation(scene_at(0.8F, 33), once);
        ASSERT_FALSE(HasFatalFailure());
    }
    support::clear_log();
}

TEST(Faults, ABlendWithoutThreadsGivesTheSame) {
    scene s = support::solid_scene(560, 540, {50, 45, 440, 430}, 6);
    s.place.angle = -2;
    const bytes expected = blend(s).output;
    for (const call kind : {call::thread_create, call::mutex_init, call::cond_init}) {
        const int64_t blocks = faults::live_blocks();
        const faults::scope fault(kind, faults::every());
        const blended b = blend(s);
        EXPECT_GT(fault.calls(), 0);
        EXPECT_EQ(b.status, 0);
        EXPECT_TRUE(b.output == expected);
        EXPECT_EQ(faults::live_blocks(), blocks);
    }
}

// Until another blend takes it over. The crop of such a call is not freed either.
TEST(Faults, ATooLargeObjectKeepsItsRotatedIcon) {
    if (__lsan_disable != nullptr) __lsan_disable();
    EXPECT_EQ(blend(scene_at(8, 0)).status, -1);
    EXPECT_EQ(g_rotated_icon, nullptr);
    EXPECT_EQ(blend(scene_at(8, 10)).status, -1);
    if (__lsan_enable != nullptr) __lsan_enable();
    ASSERT_NE(g_rotated_icon, nullptr);
    EXPECT_GT(g_rotated_icon->width, 0);
    EXPECT_GT(g_rotated_icon->height, 0);
    EXPECT_EQ(blend(scene_at(1, 0)).status, 0);
    EXPECT_EQ(g_rotated_icon, nullptr);
    EXPECT_EQ(blend(scene_at(1, 10)).status, 0);
    EXPECT_EQ(g_rotated_icon, nullptr);
}

TEST(Faults, EveryAllocationOfACutout) {
    const scene s = scene_at(1, 0);
    const blend_image source = image_of(s.icon), mask = image_of(s.mask);
    const char* const messages[] = {"crop_mask_image memory alloc failed return\n",
                                    "src_patchimage memory alloc failed return\n"};
    for (int n = 0; n < 2; ++n) {
        const int64_t blocks = faults::live_blocks();
        bytes pixels(size_t{4} * 40 * 50, 0xC7);
        blend_image icon = {-7, -7, pixels.data()};
        support::clear_log();
        const faults::scope fault(call::allocation, faults::nth(n));
        EXPECT_EQ(vorn_create_rgb_icon(&source, &mask, &icon, 1), -1);
        const model::log_lines lines = support::take_log();
        ASSERT_FALSE(lines.empty());
        EXPECT_TRUE(lines.back() == (model::log_line{3, messages[n]}));
        EXPECT_EQ(lines.size(), n == 0 ? 1U : 3U);
        EXPECT_EQ(icon.width, -7);
        EXPECT_TRUE(pixels == bytes(pixels.size(), 0xC7));
        EXPECT_EQ(faults::live_blocks(), blocks);
    }
}

TEST(Faults, MemoryOfAVerification) {
    const scene s = scene_at(1, 0);
    const auto verify = [&](float angle) {
        return vorn_verify_icon_pos(s.mask.data.data(), s.mask.width, s.mask.height, 0, 0, 75, 70,
                                    1, angle);
    };
    const int64_t blocks = faults::live_blocks();
    EXPECT_EQ(verify(25), 0);
    const faults::scope fault(call::allocation, faults::every());
    EXPECT_EQ(verify(25), -1);
    EXPECT_EQ(verify(0), 0);  // needs none
    EXPECT_EQ(faults::live_blocks(), blocks);
}

}  // namespace
