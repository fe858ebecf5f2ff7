// SPDX-License-Identifier: MIT
// Text: positioned runs of characters, and paragraphs.
#include "graphics2d/convenience/MMText.h"
#include "svg/render/ClipGuard.h"
#include "svg/render/TextRun.h"

namespace KAVO {
namespace Svg {

using namespace Graphics2D;

namespace {

// A font's extents above and below the baseline, and what underlines are like, as parts of the font
// size.
constexpr double kAscent = 0.8;
constexpr double kDescent = 0.25;
constexpr double kUnderlineOffset = 0.11;
constexpr double kUnderlineWidth = 1.0 / 16;
constexpr double kLineSpacing = 1.2;

constexpr size_t kMostPerRun = 0xFFFF; // renderText counts in 16 bits

// Glyphs that do not fit the glyph cache are rendered whenever they are met, whole, however little
// of them is seen: a drawing gets as many pixels of them as four of the largest pictures have.
constexpr double kLargeGlyph = 256; // pixels an em
constexpr double kMostGlyphPixels = 4.0 * kLargestSide * kLargestSide;

// A new chunk begins where an absolute position is given; text-anchor places chunks.
bool beginsChunk(const TextCharacter& character)
{
    return character.x || character.y;
}

bool beginsRun(const TextCharacter& character, const TextCharacter& before)
{
    return beginsChunk(character) || character.path || character.style != before.style ||
           character.dx || character.dy || character.rotate || before.rotate;
}

} // namespace

void Renderer::drawText(pugi::xml_node node, const State& state)
{
    const TextContent content = readText(document_, node, state.style, state.viewport);
    const std::optional<PathSpace> space = PathSpace::make(state.toDevice, targetCentre());
    if (!space || content.characters.empty() || !affordsGlyphs(node, content, *space)) return;
    context_.transform = space->transform;
    context_.preserveSpace = 1; // what is left of it counts, also where a run begins
    noteMissingGlyphs(node, content);
    if (content.cut) note("more characters in a text than the limit", node);

    std::vector<TextRun> runs;
    size_t chunk = 0; // first run of the chunk
    Point pen;
    const std::vector<TextCharacter>& characters = content.characters;
    for (size_t i = 0; i < characters.size();) {
        const TextCharacter& first = characters[i];
        if (first.path) {
            anchorChunk(runs, chunk);
            i = layOnPath(content, i, state, *space, runs, pen);
            chunk = runs.size();
            continue;
        }
        if (i > 0 && beginsChunk(first)) {
            anchorChunk(runs, chunk);
            chunk = runs.size();
        }
        pen = {first.x.value_or(pen.x) + first.dx.value_or(0),
               first.y.value_or(pen.y) + first.dy.value_or(0)};
        TextRun run;
        run.style = &content.styles[first.style];
        run.start = pen;
        run.turn = first.rotate.value_or(0);
        do {
            run.text.push_back(characters[i].code);
            ++i;
        } while (i < characters.size() && run.text.size() < kMostPerRun &&
                 run.style->letterSpacing == 0 && !beginsRun(characters[i], characters[i - 1]));
        setFont(*run.style, *space);
        const auto length = static_cast<uint16_t>(run.text.size());
        run.width = toDouble(context_.getTextWidth(run.text.data(), length)) / space->scale +
                    run.style->letterSpacing;
        pen.x += run.width; // a turn changes nothing about where the next character stands
        runs.push_back(std::move(run));
    }
    anchorChunk(runs, chunk);

    Box bounds;
    for (const TextRun& run : runs) {
        const double size = run.style->fontSize;
        const Box cells = run.toUser().mapBox({0, -kAscent * size, run.width, kDescent * size});
        bounds.include(cells);
    }
    for (const TextRun& run : runs) {
        if (run.style->underline && setTextPaint(*run.style, state, bounds, 0))
            drawUnderline(run, state);
    }
    const Style* style = nullptr; // that the paint is set for
    bool painted = false;
    for (const TextRun& run : runs) {
        if (run.style != style)
            painted = setTextPaint(*run.style, state, bounds, run.style->fontSize);
        style = run.style;
        if (painted) drawRun(run, state);
    }
}

bool Renderer::affordsGlyphs(pugi::xml_node node, const TextContent& content,
                             const PathSpace& space)
{
    double pixels = session_.glyphPixels;
    for (const TextCharacter& character : content.characters) {
        const double em = content.styles[character.style].fontSize * space.pixelSize;
        if (!(em <= kLargeGlyph)) pixels += em * em;
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
    }
}

// Moves the runs from first on, laid out from where the chunk begins, to where its anchor wants
// them.
void Renderer::anchorChunk(std::vector<TextRun>& runs, size_t first)
{
    if (first == runs.size()) return;
    const int anchor = runs[first].style->textAnchor;
    const double width = runs.back().start.x + runs.back().width - runs[first].start.x;
    for (size_t i = first; i < runs.size(); ++i)
        runs[i].start.x -= width * anchor / 2;
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
    if (stroked) note("outline of text", current_);
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

void Renderer::drawUnderline(const TextRun& run, const State& state)
{
    const Affine toDevice = state.toDevice * run.toUser();
    const std::optional<PathSpace> space = PathSpace::make(toDevice, targetCentre());
    if (!space) return;
    const double size = run.style->fontSize;
    const Box line{0, kUnderlineOffset * size, run.width,
                   (kUnderlineOffset + kUnderlineWidth) * size};
    Shape shape;
    shape.outline = Outline::rectangle(line);
    context_.strokePaint.paintType = kPaintNone;
    drawGeometry(shape, *space);
}

// A paragraph, broken into lines of the element's width by the library.
void Renderer::drawTextArea(pugi::xml_node node, const State& state)
{
    const TextContent content = readText(document_, node, state.style, state.viewport);
    const std::optional<PathSpace> space = PathSpace::make(state.toDevice, targetCentre());
    if (!space || content.characters.empty() || !affordsGlyphs(node, content, *space)) return;
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
    context_.textDecoration = style.underline;
    context_.strokePaint.paintOpacity = context_.fillPaint.paintOpacity; // for the underline
    context_.preserveSpace = style.preserveSpace;
    context_.drawWrappedText(text.data(), 0, 0);
    uniteBounds();
}

} // namespace Svg
} // namespace KAVO
