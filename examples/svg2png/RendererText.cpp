// Text: positioned runs of characters, and paragraphs.
#include "svg2png/ClipGuard.h"
#include "svg2png/Renderer.h"
#include "svg2png/ShiftedTarget.h"

using namespace KAVO::Graphics2D;

namespace {

// A font's extents above and below the baseline, and what underlines are like, as parts of the font
// size.
constexpr double kAscent = 0.8;
constexpr double kDescent = 0.25;
constexpr double kUnderlineOffset = 0.11;
constexpr double kUnderlineWidth = 1.0 / 16;
constexpr double kLineSpacing = 1.2;

// A new chunk begins where an absolute position is given; text-anchor places chunks.
bool beginsChunk(const TextCharacter& character)
{
    return character.x || character.y;
}

bool beginsRun(const TextCharacter& character, const TextCharacter& before)
{
    return beginsChunk(character) || character.style != before.style || character.dx != 0 ||
           character.dy != 0 || character.rotate || before.rotate;
}

} // namespace

// Characters that are drawn in one go: one style, no jump inside.
struct Renderer::TextRun {
    std::vector<uint16_t> text;
    const Style* style = nullptr;
    std::optional<double> rotate;
    Point start; // user space
    double width = 0;
};

void Renderer::drawText(pugi::xml_node node, const State& state)
{
    const TextContent content = readText(node, state.style, state.viewport.width);
    const std::optional<PathSpace> space = PathSpace::make(state.toDevice, pictureCentre());
    if (!space || content.characters.empty()) return;
    context_.transform = space->transform; // text takes no part in the half-pixel shift

    std::vector<TextRun> runs;
    size_t chunk = 0; // first run of the chunk
    Point pen;
    const std::vector<TextCharacter>& characters = content.characters;
    for (size_t i = 0; i < characters.size();) {
        const TextCharacter& first = characters[i];
        if (i > 0 && beginsChunk(first)) {
            anchorChunk(runs, chunk);
            chunk = runs.size();
        }
        pen = {first.x.value_or(pen.x) + first.dx, first.y.value_or(pen.y) + first.dy};
        TextRun run;
        run.style = &content.styles[first.style];
        run.rotate = first.rotate;
        run.start = pen;
        do {
            run.text.push_back(characters[i].code);
            ++i;
        } while (i < characters.size() && !beginsRun(characters[i], characters[i - 1]));
        setFont(*run.style, run.rotate, *space);
        const auto length = static_cast<uint16_t>(std::min<size_t>(run.text.size(), 0xFFFF));
        run.width = toDouble(context_.getTextWidth(run.text.data(), length)) / space->scale;
        pen.x += run.width;
        runs.push_back(std::move(run));
    }
    anchorChunk(runs, chunk);

    Box bounds;
    for (const TextRun& run : runs) {
        const double size = run.style->fontSize;
        bounds.include({run.start.x, run.start.y - kAscent * size});
        bounds.include({run.start.x + run.width, run.start.y + kDescent * size});
    }
    for (TextRun& run : runs)
        drawRun(run, *space, state, bounds);
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

void Renderer::setFont(const Style& style, std::optional<double> rotate, const PathSpace& space)
{
    context_.fontSize = space.length(style.fontSize);
    context_.fontWeight = static_cast<uint8_t>(style.fontWeight / 100);
    context_.fontStyle = style.slanted;
    context_.textAnchor = 0;
    context_.updateFont();
    characterTurn_ = toFixed(std::fmod(rotate.value_or(0), 360));
    context_.charRotate = rotate ? &characterTurn_ : nullptr;
    context_.charRotateCount = rotate ? 1 : 0;
}

// Sets the paints for text; false when there is nothing to draw it with.
bool Renderer::setTextPaint(const Style& style, const State& state, const Box& bounds)
{
    State runState = state;
    runState.style = style;
    const bool filled = setFill(runState, bounds);
    const bool stroked = setStroke(runState, bounds);
    if (stroked) shortcomings_.insert("outline of text");
    return style.visible && (filled || stroked);
}

void Renderer::drawRun(TextRun& run, const PathSpace& space, const State& state, const Box& bounds)
{
    const Style& style = *run.style;
    if (!setTextPaint(style, state, bounds)) return;
    context_.transform = space.transform;
    setFont(style, run.rotate, space);
    const MMPoint2D pen = space.point(run.start);
    context_.penX = pen.x;
    context_.penY = pen.y;
    clearBounds();
    {
        const double size = style.fontSize;
        const Box box{run.start.x - 2 * size, run.start.y - 2 * size,
                      run.start.x + run.width + 2 * size, run.start.y + 2 * size};
        const ShiftedTarget shifted(context_, picture_, shadow_, state.toDevice.mapBox(box));
        context_.renderText(run.text.data(),
                            static_cast<uint16_t>(std::min<size_t>(run.text.size(), 0xFFFF)), 1, 0);
    }
    uniteBounds();

    if (style.underline) {
        const double top = run.start.y + kUnderlineOffset * style.fontSize;
        Outline line;
        line.moveTo({run.start.x, top});
        line.lineTo({run.start.x + run.width, top});
        line.lineTo({run.start.x + run.width, top + kUnderlineWidth * style.fontSize});
        line.lineTo({run.start.x, top + kUnderlineWidth * style.fontSize});
        line.close();
        context_.strokePaint.paintType = kPaintNone;
        setTransform(space);
        context_.drawPath(encodePath(line, space).data());
    }
}

// A paragraph, broken into lines of the element's width by the library.
void Renderer::drawTextArea(pugi::xml_node node, const State& state)
{
    TextContent content = readText(node, state.style, state.viewport.width);
    const std::optional<PathSpace> space = PathSpace::make(state.toDevice, pictureCentre());
    if (!space || content.characters.empty()) return;
    const LengthContext horizontal{state.viewport.width, state.style.fontSize};
    const LengthContext vertical{state.viewport.height, state.style.fontSize};
    const double x = parseLength(node.attribute("x").value(), horizontal, 0);
    const double y = parseLength(node.attribute("y").value(), vertical, 0);
    const double width = parseLength(node.attribute("width").value(), horizontal, 1e6);
    const double height = parseLength(node.attribute("height").value(), vertical, 1e6);
    const double spacing = parseLength(node.attribute("line-increment").value(), vertical,
                                       kLineSpacing * state.style.fontSize);

    std::vector<uint16_t> text;
    for (const TextCharacter& character : content.characters)
        text.push_back(character.code);
    text.push_back(0);

    const Box area{x, y, x + width, y + height};
    if (!setTextPaint(state.style, state, area)) return;
    const ClipGuard guard(context_);
    clipTo(state.toDevice.mapBox(area));
    context_.transform = space->transform;
    setFont(state.style, std::nullopt, *space);
    const MMPoint2D origin = space->point({x, y});
    context_.wrapWidth = space->length(width);
    context_.wrapOffsetX = origin.x;
    context_.wrapOffsetY = origin.y;
    context_.penX = 0;
    context_.penY = space->length((spacing + (kAscent - kDescent) * state.style.fontSize) / 2);
    context_.lineHeight = space->length(spacing);
    context_.textDecoration = state.style.underline;
    context_.preserveSpace = state.style.preserveSpace;
    const ShiftedTarget shifted(context_, picture_, shadow_, state.toDevice.mapBox(area));
    context_.drawWrappedText(text.data(), 0, 0);
    uniteBounds();
}
