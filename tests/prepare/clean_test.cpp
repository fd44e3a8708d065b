// SPDX-License-Identifier: Apache-2.0
// The object's alpha and colours.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "prepare/scenes.h"

namespace {

using namespace prepare;

// A disc whose alpha falls over so many pixels.
picture faded_disc(double radius, double over) {
    picture alpha(150, 150, 1);
    const shape drawn = disc(75, 75, radius);
    for (int32_t y = 0; y < 150; ++y) {
        for (int32_t x = 0; x < 150; ++x) {
            const double part = drawn(x + 0.5, y + 0.5) / over + 0.5;
            *alpha.at(x, y) = static_cast<uint8_t>(std::lround(255 * std::clamp(part, 0.0, 1.0)));
        }
    }
    return alpha;
}

// The source's own alpha channel.
picture with_alpha(picture colours, const picture& alpha) {
    for (size_t i = 0; i < alpha.data.size(); ++i)
        colours.data[4 * i] = alpha.data[i];
    return colours;
}

// A cut-out as other programs write it.
picture cut_out(const picture& object, const picture& alpha, bool multiplied) {
    picture made = with_alpha(object, alpha);
    for (size_t i = 0; i < alpha.data.size(); ++i) {
        const int32_t a = alpha.data[i];
        for (size_t c = 4 * i + 1; c < 4 * i + 4; ++c) {
            if (a == 0) made.data[c] = 0;
            if (multiplied) made.data[c] = static_cast<uint8_t>((made.data[c] * a + 127) / 255);
        }
    }
    return made;
}

// Mean difference to the object's true colours where alpha is from `low` to `high`.
double colour_error(const cleaned& made, const picture& truth, int low, int high) {
    double sum = 0;
    int pixels = 0;
    for (int32_t y = 0; y < made.box.height; ++y) {
        for (int32_t x = 0; x < made.box.width; ++x) {
            const uint8_t* pixel = made.object.at(x, y);
            const uint8_t* wanted = truth.at(x + made.box.left, y + made.box.top);
            if (pixel[0] == 0) {
                EXPECT_EQ(pixel[1] | pixel[2] | pixel[3], 0);
            }
            if (pixel[0] < low || pixel[0] > high) continue;
            ++pixels;
            for (int c = 1; c <= 3; ++c)
                sum += std::abs(pixel[c] - wanted[c]) / 3.0;
        }
    }
    EXPECT_GT(pixels, 0);
    return sum / std::max(pixels, 1);
}

TEST(Alpha, OfTwoValuesIsSoftenedAndSoftAlphaStays) {
    const picture source = texture(150, 150, {{120, 100, 90}}, 20, 1);
    const picture exact = coverage(150, 150, disc(75, 75, 40));
    picture mask = hard(exact);
    const cleaned softened = clean(source, &mask, {0, 0.0f});
    EXPECT_EQ(softened.findings.alpha, IMAGEBLEND_ALPHA_HARD);
    int between = 0;
    for (int32_t y = 0; y < softened.box.height; ++y) {
        for (int32_t x = 0; x < softened.box.width; ++x) {
            const int alpha = *softened.object.at(x, y);
            between += alpha != 0 && alpha != 255;
            EXPECT_NEAR(alpha, *exact.at(x + softened.box.left, y + softened.box.top), 110);
        }
    }
    EXPECT_GT(between, 250);  // the outline is 251 pixels long

    struct softness {
        double over;
        int32_t kind;
    };
    for (const softness& s :
         {softness{1, IMAGEBLEND_ALPHA_OUTLINE}, softness{2, IMAGEBLEND_ALPHA_OUTLINE},
          softness{12, IMAGEBLEND_ALPHA_SOFT}}) {
        picture soft = faded_disc(40, s.over);
        const cleaned kept = clean(source, &soft);
        EXPECT_EQ(kept.findings.alpha, s.kind) << s.over;
        EXPECT_EQ(kept.findings.premultiplied, 0);
        if (s.kind == IMAGEBLEND_ALPHA_SOFT) {
            EXPECT_EQ(kept.findings.fit, IMAGEBLEND_FIT_NONE);
        }
        for (int32_t y = 0; y < kept.box.height; ++y) {
            for (int32_t x = 0; x < kept.box.width; ++x)
                ASSERT_EQ(*kept.object.at(x, y), *soft.at(x + kept.box.left, y + kept.box.top));
        }
    }
}

// Pixels that are not faint have the colours that are nearest to the division's.
void expect_divided(const cleaned& made, const picture& given) {
    for (int32_t y = 0; y < made.box.height; ++y) {
        for (int32_t x = 0; x < made.box.width; ++x) {
            const uint8_t* pixel = made.object.at(x, y);
            const uint8_t* from = given.at(x + made.box.left, y + made.box.top);
            for (int c = 1; c <= 3 && pixel[0] >= 48; ++c)
                ASSERT_LE(2 * std::abs(pixel[c] * pixel[0] - from[c] * 255), pixel[0]);
        }
    }
}

TEST(CutOut, HasItsColoursDividedWhenTheyAreMultiplied) {
    const picture alpha = faded_disc(40, 3);
    for (const rgb& colour :
         {rgb{{200, 150, 60}}, rgb{{90, 90, 90}}, rgb{{60, 30, 120}}, rgb{{249, 249, 249}}}) {
        const picture object = texture(150, 150, colour, 6, 4);
        for (const bool multiplied : {false, true}) {
            const cleaned made = clean(cut_out(object, alpha, multiplied), nullptr);
            EXPECT_EQ(made.findings.surroundings, 0);
            EXPECT_EQ(made.findings.premultiplied, multiplied) << colour.channel[0];
            EXPECT_EQ(made.findings.fit, IMAGEBLEND_FIT_NONE);
            EXPECT_LT(colour_error(made, object, 24, 255), 5);
            if (multiplied) expect_divided(made, cut_out(object, alpha, true));
        }
    }
}

TEST(CutOut, StaysStraightWhenTheObjectIsDark) {
    const picture alpha = faded_disc(40, 3);
    const picture object = texture(150, 150, {{9, 7, 5}}, 3, 4);
    const cleaned made = clean(cut_out(object, alpha, false), nullptr);
    EXPECT_EQ(made.findings.premultiplied, 0);
    EXPECT_LT(colour_error(made, object, 1, 255), 3);
    // Without transparent pixels there is nothing that could show what was behind.
    const cleaned whole = clean(cut_out(object, picture(150, 150, 1, 255), false), nullptr);
    EXPECT_EQ(whole.findings.surroundings, 0);
}

TEST(CutOut, LosesTheRimOfItsOldBackground) {
    const picture object = texture(150, 150, {{60, 70, 40}}, 6, 4);
    const picture alpha = coverage(150, 150, disc(75, 75, 40));
    picture rimmed = composite(object, alpha, texture(150, 150, {{240, 240, 235}}, 3, 5));
    rimmed = cut_out(rimmed, alpha, false);
    const cleaned made = clean(rimmed, nullptr);
    EXPECT_LT(colour_error(made, object, 16, 240), 8);
}

TEST(Colours, LoseWhatIsBehindThem) {
    const picture object = texture(150, 150, {{200, 60, 50}}, 10, 6);
    const picture behind = texture(150, 150, {{50, 110, 190}}, 10, 7);
    // A photo with a mask, or with an alpha channel of its own.
    for (const double over : {2.0, 6.0, 14.0}) {
        picture alpha = faded_disc(40, over);
        const picture photo = composite(object, alpha, behind);
        EXPECT_LT(colour_error(clean(photo, &alpha), object, 32, 254), 8) << over;
        const cleaned own = clean(with_alpha(photo, alpha), nullptr);
        EXPECT_EQ(own.findings.surroundings, 1);
        EXPECT_LT(colour_error(own, object, 32, 254), 8) << over;
    }
    // Along an outline that had to be found first.
    picture mask = hard(coverage(150, 150, disc(75, 75, 44)));
    const picture photo = composite(object, coverage(150, 150, disc(75, 75, 40)), behind);
    const cleaned fitted = clean(photo, &mask);
    EXPECT_EQ(fitted.findings.fit, IMAGEBLEND_FIT_MOVED);
    EXPECT_LT(colour_error(fitted, object, 64, 255), 4);
}

// On both sides of a straight edge each colour is one: near ones stay, and from a distance of 4 on
// what the softened outline shows of the ground is taken out.
TEST(Colours, StayWhereTheyAreAlike) {
    for (const int32_t apart : {3, 4}) {
        picture mask = coverage(150, 150, box(-9, -9, 75, 159));
        const picture object = texture(150, 150, {{100, 50, 50}}, 0, 1);
        const picture photo =
            composite(object, mask, texture(150, 150, {{100 + apart, 50, 50}}, 0, 1));
        const cleaned made = clean(photo, &mask, {0, 0.0f});
        EXPECT_EQ(made.findings.alpha, IMAGEBLEND_ALPHA_HARD);
        EXPECT_EQ(colour_error(made, apart < 4 ? photo : object, 1, 255), 0) << apart;
    }
}

// A straight edge of so many rows, whose fainter pixels show white that was behind them.
TEST(CutOut, KeepsAnEdgeOfWhichLittleIsSeen) {
    for (const int32_t rows : {15, 16}) {
        picture object = texture(40, rows, {{20, 30, 40}}, 0, 1), alpha(40, rows, 1);
        for (int32_t y = 0; y < rows; ++y) {
            for (int32_t x = 0; x < 22; ++x)
                *alpha.at(x, y) = static_cast<uint8_t>(x < 20 ? 255 : (x == 20 ? 200 : 60));
        }
        const picture white(40, rows, 4, 255);
        const picture given = cut_out(composite(object, alpha, white), alpha, false);
        const cleaned made = clean(given, nullptr);
        EXPECT_EQ(made.findings.surroundings, 0);
        EXPECT_LT(colour_error(made, rows < 16 ? given : object, 60, 60), 2) << rows;
    }
}

// On the new ground a shadow darkens what is there, and shows nothing of the ground it was on.
TEST(Colours, OfAShadowAreTheShadowsOwn) {
    picture alpha = faded_disc(50, 30);
    for (uint8_t& value : alpha.data)
        value = static_cast<uint8_t>(value / 2);
    const picture black(150, 150), old_ground = texture(150, 150, {{170, 160, 120}}, 2, 8);
    const cleaned made = clean(composite(black, alpha, old_ground), &alpha);
    EXPECT_EQ(made.findings.alpha, IMAGEBLEND_ALPHA_SOFT);
    double sum = 0;
    for (int32_t y = 0; y < made.box.height; ++y) {
        for (int32_t x = 0; x < made.box.width; ++x) {
            const uint8_t* pixel = made.object.at(x, y);
            sum += pixel[0] * (pixel[1] + pixel[2] + pixel[3]) / (255.0 * 3);
        }
    }
    EXPECT_LT(sum / (3.14 * 50 * 50), 4);  // levels that it adds to the ground
}

TEST(CleanBox, HoldsTheObjectWithRoomAndNothingMore) {
    picture source(300, 260), mask(300, 260, 1);
    blend_image colours = source.record(), marks = mask.record();
    const imageblend_source from = {&colours, &marks};
    imageblend_box found = {1, 1, 1, 1};
    ASSERT_EQ(imageblend_clean_box(&from, &found), 0);
    EXPECT_EQ(found.width, 0);
    *mask.at(120, 10) = 1;
    *mask.at(121, 255) = 255;
    ASSERT_EQ(imageblend_clean_box(&from, &found), 0);
    EXPECT_EQ(found.left, 72);
    EXPECT_EQ(found.top, 0);
    EXPECT_EQ(found.width, 98);
    EXPECT_EQ(found.height, 260);
}

}  // namespace
