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

/* Calls with the records' pointers, one of which is null or has no pixels. */
using call = std::function<int32_t(call_parts&, blend_image* records[4])>;

void expect_refused(const char* what, int records, const call& run) {
    for (int part = 0; part < records; ++part) {
        for (const bool whole : {true, false}) {
            call_parts parts;
            blend_image* all[] = {&parts.mask, &parts.icon, &parts.destination, &parts.output};
            if (!whole) all[part]->data = nullptr;
            if (whole) all[part] = nullptr;
            support::clear_log();
            EXPECT_EQ(run(parts, all), -1) << what << " " << part;
            EXPECT_TRUE(support::take_log().empty()) << what << " " << part;
            EXPECT_TRUE(parts.untouched()) << what << " " << part;
        }
    }
}

TEST(Frames, NullPointersAreRefusedInSilence) {
    expect_refused("size", 1, [](call_parts& p, blend_image** r) {
        return vorn_get_icon_size(r[0], &p.width, &p.height);
    });
    expect_refused("cutout", 3, [](call_parts&, blend_image** r) {
        return vorn_create_rgb_icon(r[1], r[0], r[2], 1.0F);
    });
    expect_refused("blend", 4, [](call_parts&, blend_image** r) {
        return vorn_imageBlending(r[1], r[2], r[0], r[3], 0, 0, 4, 4, 1.0F, 0.0F);
    });
    call_parts p;
    EXPECT_EQ(vorn_get_icon_size(&p.mask, nullptr, &p.height), -1);
    EXPECT_EQ(vorn_get_icon_size(&p.mask, &p.width, nullptr), -1);
    EXPECT_EQ(vorn_verify_icon_pos(nullptr, 8, 8, 0, 0, 4, 4, 1.0F, 0.0F), -1);
    EXPECT_TRUE(p.untouched() && support::take_log().empty());
}

TEST(Frames, SizesThatDifferAreRefusedWithOneLine) {
    for (const float angle : {0.0F, 10.0F}) {
        for (const auto& [width, height] :
             {std::pair(49, 40), std::pair(51, 40), std::pair(50, 39), std::pair(50, 41)}) {
            scene s = solid_scene(50, 40, {10, 10, 20, 17}, 3);
            s.place.angle = angle;
            const model::frame other = support::noise_picture(width, height, 8);
            scene icon = s, destination = s;
            destination.destination = other;
            EXPECT_EQ(run_blend(destination).status, -1);
            EXPECT_TRUE(blend_matches(destination));
            icon.icon = other;
            EXPECT_EQ(run_blend(icon).log.size(), 4U);
            EXPECT_TRUE(blend_matches(icon));
            icon.destination = other;
            EXPECT_TRUE(blend_matches(icon));
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

TEST(Frames, WithSidesBelowOneOrOfAnyLengthHaveNoPixel) {
    const int32_t sides[][2] = {
        {0, 0},  {0, 5},  {5, 0},         {-1, 7},        {7, -1},        {-4, -4},      {-2, 0},
        {-9, 3}, {1, -1}, {INT32_MIN, 1}, {1, INT32_MIN}, {INT32_MIN, 0}, {0, INT32_MAX}};
    for (const auto& side : sides) {
        scene s;
        s.icon = s.destination = s.mask = {side[0], side[1], {}};
        for (const float zoom : {1.0F, 0.0F, 0.1F, -1.0F, -2.5F}) {
            for (const float angle : {0.0F, 30.0F}) {
                s.place = {3, 2, zoom, angle};
                EXPECT_TRUE(blend_matches(s));
                EXPECT_TRUE(support::verify_matches(s));
            }
        }
        EXPECT_TRUE(support::size_matches(s.mask));
        s.icon.data = model::bytes(64);
        const bool extreme = side[0] == INT32_MIN || side[1] == INT32_MIN || side[1] == INT32_MAX;
        EXPECT_TRUE(extreme || support::cutout_matches(s));
    }
}

}  // namespace
