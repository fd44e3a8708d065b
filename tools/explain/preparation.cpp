// SPDX-License-Identifier: Apache-2.0
#include "explain/preparation.h"

#include <algorithm>
#include <cstdio>

namespace tool {
namespace {

using vips::VImage;

constexpr int panels = 5;
constexpr int panel_width = (page_width - (panels + 1) * gap) / panels;
constexpr int panel_height = 260;
// Pixels of an edge, each shown as a square.
constexpr int detail_scale = 6;
constexpr int detail_width = panel_width / detail_scale;
constexpr int detail_height = 40;

const Ink given_ink{255, 110, 255};
const Ink fitted_ink{60, 220, 90};

VImage three_bands(const VImage& grey) {
    return grey.bandjoin(grey).bandjoin(grey);
}

// Transparent parts show squares.
VImage over_squares(const VImage& picture) {
    const VImage coordinates = VImage::xyz(picture.width(), picture.height()) / 8.0;
    const VImage cells = coordinates.cast(VIPS_FORMAT_INT);
    const VImage odd = (cells.extract_band(0) + cells.extract_band(1)) % 2.0;
    const VImage squares = three_bands((odd * 50.0 + 150.0).cast(VIPS_FORMAT_UCHAR));
    const VImage alpha = picture.extract_band(3) / 255.0;
    const VImage colour = picture.extract_band(0, VImage::option()->set("n", 3));
    return (colour * alpha + squares * (alpha * -1.0 + 1.0)).rint().cast(VIPS_FORMAT_UCHAR);
}

// Where the outline has its right edge in its middle row.
Pixel edge_of(const Outline& outline) {
    for (size_t i = outline.rows.size() / 2; i < outline.rows.size(); i++) {
        const Span& span = outline.rows[i];
        if (span.end > span.begin) return {span.end, outline.top + static_cast<int>(i)};
    }
    return {outline.left + outline.width, outline.top};
}

VImage detail_of(const VImage& picture, const Pixel& edge) {
    const VImage part =
        picture.embed(detail_width / 2 - edge.x, detail_height / 2 - edge.y, detail_width,
                      detail_height, VImage::option()->set("extend", VIPS_EXTEND_COPY));
    return scale_to(part, {detail_width * detail_scale, detail_height * detail_scale});
}

struct Panel {
    std::string title, caption;
    VImage picture;
    Pixel edge;
};

int add_panel(Page& page, int index, int top, const Panel& panel) {
    const int left = gap + index * (panel_width + gap);
    page.write(panel.title, left, top, black_ink, head_font, panel_width);
    top += caption_height;
    const Size size = fit_size(size_of(panel.picture), {panel_width, panel_height}, 4.0);
    page.put(scale_to(panel.picture, size), left, top);
    top += panel_height + 8;
    const int below = page.put(detail_of(panel.picture, panel.edge), left, top) + 6;
    const Size text = page.write(panel.caption, left, below, grey_ink, text_font, panel_width);
    return below + text.height;
}

std::string alpha_text(const imageblend_findings& findings) {
    if (findings.alpha == IMAGEBLEND_ALPHA_HARD) return "inside or outside, nothing between";
    if (findings.alpha == IMAGEBLEND_ALPHA_OUTLINE) return "soft for a pixel or two";
    return "soft over some width, which stays";
}

std::string fit_text(const imageblend_findings& findings) {
    char text[128];
    switch (findings.fit) {
        case IMAGEBLEND_FIT_MOVED:
            std::snprintf(
                text, sizeof text, "moved %s by %.1f pixels to the edge in the picture",
                findings.moved > 0 ? "outwards" : "inwards",
                static_cast<double>(findings.moved > 0 ? findings.moved : -findings.moved));
            return text;
        case IMAGEBLEND_FIT_KEPT:
            return "lies on the edge in the picture";
        case IMAGEBLEND_FIT_UNCLEAR:
            return "no edge of the picture stands out: as drawn";
        case IMAGEBLEND_FIT_BEYOND:
            return "the edge lies beyond reach: as drawn";
        default:
            return "as drawn";
    }
}

std::string colour_text(const imageblend_findings& findings) {
    if (findings.premultiplied != 0) return "colours divided by alpha";
    return findings.surroundings != 0 ? "what was behind is taken out of its edge"
                                      : "a cut-out; colours along the edge from inside";
}

}  // namespace

int add_preparation(Page& page, int top, const PreparationViews& views) {
    const imageblend_box& box = views.clean.box;
    const auto cut = [&](const VImage& image) {
        return image.extract_area(box.left, box.top, box.width, box.height);
    };
    const VImage mask = cut(views.object.mask);
    const VImage source = cut(views.object.picture.extract_band(0, VImage::option()->set("n", 3)));
    const VImage given = draw_outline(source, mask, given_ink);
    const VImage fitted = draw_outline(given, views.clean.image.extract_band(3), fitted_ink);
    const VImage icon = frame_picture(views.icon, true);
    const VImage frame_mask = VImage::new_from_memory(
        views.mask.bytes.get(),
        static_cast<size_t>(views.mask.size.width) * static_cast<size_t>(views.mask.size.height),
        views.mask.size.width, views.mask.size.height, 1, VIPS_FORMAT_UCHAR);
    const Pixel edge = edge_of(views.clean.outline);
    const Pixel laid = edge_of(find_outline((icon.extract_band(3) >= 128.0).copy_memory()));
    const Pixel mask_edge = edge_of(find_outline(frame_mask));
    const imageblend_findings& findings = views.clean.findings;

    const Panel all[panels] = {
        {"1  Mask as given", alpha_text(findings), three_bands(mask), edge},
        {"2  Outline", fit_text(findings) + " (given: magenta, used: green)", fitted, edge},
        {"3  Object alone", colour_text(findings), over_squares(views.clean.image), edge},
        {"4  Icon frame", "the object over the destination",
         icon.extract_band(0, VImage::option()->set("n", 3)), laid},
        {"5  Mask frame", "where it ends, both pictures are the same", three_bands(frame_mask),
         mask_edge},
    };
    int below = top;
    for (int i = 0; i < panels; i++)
        below = std::max(below, add_panel(page, i, top, all[i]));
    return below + gap;
}

}  // namespace tool
