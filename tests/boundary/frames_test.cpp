/* Records that a call cannot use: null pointers, sizes that differ, sides below 1. */
#include <gtest/gtest.h>
#include <imageblend.h>

#include <functional>

#include "support/compare.h"
#include "support/log_capture.h"
#include "support/scene.h"

namespace {

using support::blend_matches;
using support::run_blend;
using support::scene;
using support::solid_scene;

/* A call on a small valid scene of which one pointer is taken away. */
struct call_parts {
    model::bytes colour = model::bytes(8 * 8 * 4, 100);
    model::bytes samples = model::bytes(8 * 8, 255);
    model::bytes result = model::bytes(8 * 8 * 4, 0x5C);
    blend_image icon{8, 8, colour.data()};
    blend_image destination{8, 8, colour.data()};
    blend_image mask{8, 8, samples.data()};
    blend_image output{8, 8, result.data()};
    int32_t width = -77;
    int32_t height = -78;

    bool untouched() const {
        return result == model::bytes(8 * 8 * 4, 0x5C) && output.width == 8 && output.height == 8 &&
               width == -77 && height == -78;
    }
};

void expect_refused(const char* what, const std::function<int32_t(call_parts&)>& call) {
    call_parts parts;
    support::clear_log();
    EXPECT_EQ(call(parts), -1) << what;
    EXPECT_TRUE(support::take_log().empty()) << what;
    EXPECT_TRUE(parts.untouched()) << what;
}

TEST(Frames, NullPointersAreRefusedInSilence) {
    expect_refused("size: mask",
                   [](call_parts& p) { return vorn_get_icon_size(nullptr, &p.width, &p.height); });
    expect_refused("size: mask data", [](call_parts& p) {
        p.mask.data = nullptr;
        return vorn_get_icon_size(&p.mask, &p.width, &p.height);
    });
    expect_refused("size: width",
                   [](call_parts& p) { return vorn_get_icon_size(&p.mask, nullptr, &p.height); });
    expect_refused("size: height",
                   [](call_parts& p) { return vorn_get_icon_size(&p.mask, &p.width, nullptr); });
    expect_refused("verify: mask", [](call_parts&) {
        return vorn_verify_icon_pos(nullptr, 8, 8, 0, 0, 4, 4, 1.0F, 0.0F);
    });
    for (int part = 0; part < 3; ++part) {
        for (const bool record : {true, false}) {
            expect_refused("cutout", [&](call_parts& p) {
                blend_image* records[] = {&p.icon, &p.mask, &p.output};
                uint8_t* const kept = records[part]->data;
                if (!record) records[part]->data = nullptr;
                if (record) records[part] = nullptr;
                const int32_t status =
                    vorn_create_rgb_icon(records[0], records[1], records[2], 1.0F);
                if (!record) records[part]->data = kept;
                return status;
            });
        }
    }
    for (int part = 0; part < 4; ++part) {
        for (const bool record : {true, false}) {
            expect_refused("blend", [&](call_parts& p) {
                blend_image* records[] = {&p.icon, &p.destination, &p.mask, &p.output};
                if (!record) records[part]->data = nullptr;
                if (record) records[part] = nullptr;
                return vorn_imageBlending(records[0], records[1], records[2], records[3], 0, 0, 4,
                                          4, 1.0F, 0.0F);
            });
        }
    }
}

TEST(Frames, SizesThatDifferAreRefusedWithOneLine) {
    for (const int32_t more : {-1, 1}) {
        for (const bool in_width : {true, false}) {
            for (const float angle : {0.0F, 10.0F}) {
                scene s = solid_scene(50, 40, {10, 10, 20, 17}, 3);
                s.place.angle = angle;
                const int32_t width = in_width ? 50 + more : 50;
                const int32_t height = in_width ? 40 : 40 + more;
                scene icon = s;
                icon.icon = support::noise_picture(width, height, 8);
                EXPECT_EQ(run_blend(icon).status, -1);
                EXPECT_EQ(run_blend(icon).log.size(), 4U);
                EXPECT_TRUE(blend_matches(icon));
                scene destination = s;
                destination.destination = support::noise_picture(width, height, 8);
                EXPECT_EQ(run_blend(destination).status, -1);
                EXPECT_TRUE(blend_matches(destination));
                icon.destination = destination.destination;
                EXPECT_TRUE(blend_matches(icon));
            }
        }
    }
}

TEST(Frames, ADestinationTooSmallForTheBoxFailsThereFirst) {
    scene s = solid_scene(50, 40, {10, 10, 20, 17}, 3);
    s.destination = support::noise_picture(35, 40, 8);
    const model::log_lines lines = run_blend(s).log;
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.back().text, "LLF double check,Zoom factor is too big, return to zoom = 1\n");
    EXPECT_TRUE(blend_matches(s));
}

TEST(Frames, WithASideBelowOneHaveNoPixel) {
    const int32_t sides[][2] = {{0, 0},   {0, 5},  {5, 0},  {-1, 7}, {7, -1},
                                {-4, -4}, {-2, 0}, {-9, 3}, {1, -1}};
    for (const auto& side : sides) {
        for (const float zoom : {1.0F, 0.0F, 0.1F, -1.0F, -2.5F}) {
            for (const float angle : {0.0F, 30.0F}) {
                scene s;
                s.icon = s.destination = s.mask = {side[0], side[1], {}};
                s.place = {3, 2, zoom, angle};
                EXPECT_TRUE(blend_matches(s));
            }
        }
        scene s;
        s.icon = s.mask = {side[0], side[1], {}};
        s.icon.data = model::bytes(64);
        EXPECT_TRUE(support::cutout_matches(s));
        EXPECT_TRUE(support::size_matches(s.mask));
    }
}

TEST(Frames, WithExtremeSidesFail) {
    const int32_t sides[][2] = {{INT32_MIN, 1}, {1, INT32_MIN}, {INT32_MIN, 0}, {0, INT32_MAX}};
    for (const auto& side : sides) {
        for (const float angle : {0.0F, 30.0F}) {
            scene s;
            s.icon = s.destination = s.mask = {side[0], side[1], {}};
            s.place = {1, 1, 1.0F, angle};
            EXPECT_EQ(run_blend(s).status, -1);
            EXPECT_TRUE(blend_matches(s));
        }
    }
}

}  // namespace
