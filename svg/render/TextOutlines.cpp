// SPDX-License-Identifier: MIT
// Text that is stroked: drawn as shapes, from the outlines of its glyphs.
#include "svg/render/TextRun.h"

namespace KAVO {
namespace Svg {

namespace {

constexpr double kSlantTangent = 23853 / 65536.0; // of the library's italics
constexpr int kLastUprightWeight = 5;             // hundreds; bolder glyphs are made by the library
constexpr uint16_t kSoftHyphen = 0x00AD;

// Glyphs are drawn together, so that those that overlap count once where they are translucent, but
// not so many that a shape could become as large as the document wants.
constexpr size_t kMostSegments = 1 << 14;

} // namespace

// Whether text is painted with what bitmaps of glyphs cannot have.
bool Renderer::needsOutlines(const Style& style) const
{
    return !clipping_ && style.strokeWidth > 0 && style.strokeOpacity > 0 &&
           style.stroke.kind != PaintValue::None;
}

// One piece of a text with all its paints. bounds are those of the whole text.
void Renderer::drawTextShape(const Outline& outline, State state, const Style& style,
                             const Box& bounds)
{
    if (outline.empty()) return;
    Shape shape;
    shape.outline = outline;
    state.style = style;
    state.style.evenOdd = false; // these two are for shapes
    state.style.crisp = false;
    state.glyphOverhang = style.fontSize;
    paintShape(shape, bounds, state, false);
}

// Runs of one style.
void Renderer::drawOutlinedRuns(const std::vector<TextRun>& runs, size_t first, size_t end,
                                const State& state, const Box& bounds)
{
    const Style& style = *runs[first].style;
    const bool bold = style.fontWeight / 100 > kLastUprightWeight;
    const auto shows = [&](const Box& glyph) { // with its stroke
        const Box stroked = glyph.grown(style.fixedStroke ? 0 : style.strokeReach());
        const double reach = style.fixedStroke ? style.strokeReach() : 0;
        return !isOutside(state.toDevice.mapBox(stroked).grown(reach));
    };
    Outline outline;
    for (size_t i = first; i < end; ++i) {
        const Affine toUser = runs[i].toUser();
        const double slant = style.slanted ? -kSlantTangent * style.fontSize : 0;
        const Affine place = toUser * Affine{style.fontSize, 0, slant, style.fontSize, 0, 0};
        double pen = 0; // ems
        for (const uint16_t character : runs[i].text) {
            if (character == kSoftHyphen) continue;
            const GlyphOutline* glyph = session_.glyphs.find(character, bold);
            if (!glyph) continue;
            const Affine there = place * translation(pen, 0);
            pen += glyph->advance;
            if (!glyph->bounds.empty() && shows(there.mapBox(glyph->bounds)))
                outline.append(glyph->outline, there);
            if (outline.segments().size() < kMostSegments) continue;
            drawTextShape(outline, state, style, bounds);
            outline = Outline();
        }
    }
    drawTextShape(outline, state, style, bounds);
}

} // namespace Svg
} // namespace KAVO
