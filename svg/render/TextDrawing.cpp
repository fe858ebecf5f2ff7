// SPDX-License-Identifier: MIT
// Text: positioned runs of characters, and paragraphs.
#include "graphics2d/convenience/MMText.h"
#include "svg/render/ClipGuard.h"
#include "svg/render/TextRun.h"

namespace KAVO {
namespace Svg {

using namespace Graphics2D;

namespace {

// A font's extents above and below the baseline, and the upper edges and the width of lines at a
// text, downwards as parts of the font size.
constexpr double kAscent = 0.8;
constexpr double kDescent = 0.25;
constexpr double kUnderlineOffset = 0.11;
constexpr double kOverlineOffset = -0.9;
constexpr double kLineThroughOffset = -0.3;
constexpr double kLineWidth = 1.0 / 16;
constexpr double kLineSpacing = 1.2;

// Glyphs that do not fit the glyph cache are rendered whenever they are met, whole, however little
// of them is seen: a drawing gets as many pixels of them as four of the largest pictures have.
constexpr double kLargeGlyph = 256; // pixels an em
constexpr double kMostGlyphPixels = 4.0 * kLargestSide * kLargestSide;

// Elements that texts are made of.
bool isTextPart(std::string_view name)
{
    for (const std::string_view part :
         {"tspan", "a", "textPath", "tref", "tbreak", "title", "desc", "metadata"}) {
        if (name == part) return true;
    }
    return false;
}

bool isFromRightToLeft(uint16_t code)
{
    return (code >= 0x590 && code < 0x900) || (code >= 0xFB1D && code < 0xFF00);
}

} // namespace

void Renderer::drawText(pugi::xml_node node, const State& state)
{
    TextContent content = readText(document_, node, state.style, state.viewport);
    const std::optional<PathSpace> space = PathSpace::make(state.toDevice, targetCentre());
    if (!space || content.characters.empty() || !affordsGlyphs(node, content, *space)) return;
    context_.transform = space->transform;
    context_.preserveSpace = 1; // what is left of it counts, also where a run begins
    noteMissingGlyphs(node, content);
    if (content.cut) note("more characters in a text than the limit", node);

    noteParts(node);

    std::vector<TextRun> runs = layOut(content, state, *space);
    fitLength(node, content, state, *space, runs);
    const double stretch = runs.empty() ? 1 : runs.front().stretch;
    if (stretch > 1 && !affordsGlyphs(node, content, *space, stretch)) return;
    const Box bounds = boundsOfRuns(runs);
    const auto drawLines = [&](std::shared_ptr<const Style> Style::*kind, double offset) {
        for (const TextRun& run : runs) {
            if (const Style* style = (run.style->*kind).get())
                drawLine(run, *style, offset, state, bounds);
        }
    };
    drawLines(&Style::underline, kUnderlineOffset);
    drawLines(&Style::overline, kOverlineOffset);
    drawRuns(runs, state, bounds);
    drawLines(&Style::lineThrough, kLineThroughOffset);
}

void Renderer::drawRuns(const std::vector<TextRun>& runs, const State& state, const Box& bounds)
{
    for (size_t first = 0, end; first < runs.size(); first = end) {
        const Style& style = *runs[first].style;
        end = first + 1;
        while (end < runs.size() && runs[end].style == &style)
            ++end;
        const bool outlined = needsOutlines(style) && session_.glyphs.usable();
        if (outlined) drawOutlinedRuns(runs, first, end, state, bounds);
        if ((outlined && !session_.pick) || !setTextPaint(style, state, bounds, style.fontSize))
            continue;
        for (size_t i = first; i < end; ++i)
            drawRun(runs[i], state);
    }
}

// Of the cells of all characters, user space.
Box Renderer::boundsOfRuns(const std::vector<TextRun>& runs)
{
    Box bounds;
    for (const TextRun& run : runs) {
        const double size = run.style->fontSize;
        const Box cells = run.toUser().mapBox({0, -kAscent * size, run.width, kDescent * size});
        bounds.include(cells);
    }
    return bounds;
}

// Measured at a size at which rounding to pixels does not show.
Box Renderer::boundsOfText(pugi::xml_node node, const State& state)
{
    constexpr double kMeasuredSize = 64;
    TextContent content = readText(document_, node, state.style, state.viewport);
    const double scale = kMeasuredSize / state.style.fontSize;
    const std::optional<PathSpace> space =
        PathSpace::make(Affine{scale, 0, 0, scale, 0, 0}, targetCentre());
    if (!space || content.characters.empty()) return {};
    context_.preserveSpace = 1;
    std::vector<TextRun> runs = layOut(content, state, *space);
    fitLength(node, content, state, *space, runs);
    return boundsOfRuns(runs);
}

// What the elements inside a text ask for and do not get.
void Renderer::noteParts(pugi::xml_node node)
{
    for (const pugi::xml_node child : node.children()) {
        if (child.type() != pugi::node_element) continue;
        if (!isTextPart(child.name())) {
            note("<" + std::string(child.name()) + "> in a text", child);
            continue;
        }
        if (child.attribute("textLength")) note("textLength of a span", child);
        noteUndrawn(child, Properties(child, document_.sheet()));
        noteParts(child);
    }
}

// stretch: of the glyphs along their line.
bool Renderer::affordsGlyphs(pugi::xml_node node, const TextContent& content,
                             const PathSpace& space, double stretch)
{
    double pixels = session_.glyphPixels;
    for (const TextCharacter& character : content.characters) {
        const double em = content.styles[character.style].fontSize * space.pixelSize;
        if (!(em * stretch <= kLargeGlyph)) pixels += em * em * stretch;
    }
    if (!(pixels <= kMostGlyphPixels)) {
        note("very large text", node);
        return false;
    }
    session_.glyphPixels = pixels;
    return true;
}

void Renderer::noteMissingGlyphs(pugi::xml_node node, const TextContent& content)
{
    for (const TextCharacter& character : content.characters) {
        if (character.code != '\n' && session_.charactersMet.insert(character.code).second &&
            !hasGlyph(context_, character.code))
            note("characters that the font lacks", node);
        if (isFromRightToLeft(character.code)) note("text from right to left", node);
    }
}

void Renderer::setFont(const Style& style, const PathSpace& space)
{
    context_.fontSize = space.length(style.fontSize);
    context_.fontWeight = static_cast<uint8_t>(style.fontWeight / 100);
    context_.fontStyle = style.slanted;
    context_.updateFont();
}

// Sets the fill paint for text; false when there is nothing to draw it with. overhang: of glyphs,
// or 0 when the paint is not for glyphs.
bool Renderer::setTextPaint(const Style& style, State state, const Box& bounds, double overhang)
{
    state.style = style;
    state.glyphOverhang = overhang;
    const bool filled = setFill(state, bounds);
    const bool stroked = setStroke(state, bounds);
    if (stroked && !session_.pick) note("outline of text", current_);
    if (stroked && !filled) context_.fillPaint = context_.strokePaint;
    context_.strokePaint.paintType = kPaintNone;
    return style.visible && (filled || stroked);
}

void Renderer::drawRun(const TextRun& run, const State& state)
{
    const Affine toDevice = state.toDevice * run.toUser();
    const std::optional<PathSpace> space = PathSpace::make(toDevice, targetCentre());
    if (!space) return;
    if (session_.pick) {
        pickRun(run, *space);
        return;
    }
    context_.transform = space->transform;
    setFont(*run.style, *space);
    const MMPoint2D pen = space->point({0, 0});
    context_.penX = pen.x;
    context_.penY = pen.y;
    clearBounds();
    context_.renderText(run.text.data(), static_cast<uint16_t>(run.text.size()), 1, 0);
    uniteBounds();
}

// Text is where its characters' cells are.
void Renderer::pickRun(const TextRun& run, const PathSpace& space)
{
    const double size = run.style->fontSize;
    const Box cells{0, -kAscent * size, run.width, kDescent * size};
    Shape shape;
    shape.outline = Outline::rectangle(cells);
    drawGeometry(shape, space);
}

// In the style of the element that the line belongs to.
void Renderer::drawLine(const TextRun& run, const Style& style, double offset, const State& state,
                        const Box& bounds)
{
    const Box line{0, offset * style.fontSize, run.width, (offset + kLineWidth) * style.fontSize};
    drawTextShape(Outline::rectangle(line).mapped(run.toUser()), state, style, bounds);
}

// A paragraph, broken into lines of the element's width by the library.
void Renderer::drawTextArea(pugi::xml_node node, const State& state)
{
    const TextContent content = readText(document_, node, state.style, state.viewport);
    const std::optional<PathSpace> space = PathSpace::make(state.toDevice, targetCentre());
    if (!space || content.characters.empty() || !affordsGlyphs(node, content, *space)) return;
    noteParts(node);
    if (state.style.overline || state.style.lineThrough) note("lines at a text area", node);
    noteMissingGlyphs(node, content);
    if (content.cut) note("more characters in a text than the limit", node);
    if (content.styles.size() > 1) note("style of a span in a text area", node);
    const Style& style = state.style;
    const LengthContext lengths = style.lengths(state.viewport);
    const auto length = [&](const char* name, Axis axis, double fallback) {
        return parseLength(node.attribute(name).value(), lengths, axis, fallback);
    };
    const double x = length("x", Axis::X, 0);
    const double y = length("y", Axis::Y, 0);
    const double width = length("width", Axis::X, 1e6);
    const double height = length("height", Axis::Y, 1e6);
    const double spacing = length("line-increment", Axis::Y, kLineSpacing * style.fontSize);
    if (!(width > 0 && height > 0 && spacing > 0)) return;

    std::vector<uint16_t> text;
    for (const TextCharacter& character : content.characters)
        text.push_back(character.code);
    text.push_back(0);

    // Lines that do not fit are left out.
    const Box area{x, y, x + width, y + std::floor(height / spacing) * spacing};
    if (!setTextPaint(style, state, area, style.fontSize)) return;
    const ClipGuard guard(context_);
    clipTo(state.toDevice.mapBox(area));
    context_.transform = space->transform;
    setFont(style, *space);
    const MMPoint2D origin = space->point({x, y});
    context_.wrapWidth = space->length(width);
    context_.wrapOffsetX = origin.x;
    context_.wrapOffsetY = origin.y;
    context_.penX = 0;
    context_.penY = space->length((spacing + (kAscent - kDescent) * style.fontSize) / 2);
    context_.lineHeight = space->length(spacing);
    context_.textDecoration = style.underline != nullptr;
    context_.strokePaint.paintOpacity = context_.fillPaint.paintOpacity; // for the underline
    context_.preserveSpace = style.preserveSpace;
    context_.drawWrappedText(text.data(), 0, 0);
    uniteBounds();
}

} // namespace Svg
} // namespace KAVO
