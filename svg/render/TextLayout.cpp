// SPDX-License-Identifier: MIT
// Where the characters of a text stand: runs of them, from chunk to chunk.
#include "svg/render/TextRun.h"
#include "svg/values/TextScanner.h"

namespace KAVO {
namespace Svg {

using namespace Graphics2D;

namespace {

constexpr size_t kMostPerRun = 0xFFFF; // renderText counts in 16 bits

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

// Nothing extra stands between the character and the next one.
bool isTight(const Style& style, uint16_t code)
{
    return style.letterSpacing == 0 && (code != ' ' || style.wordSpacing == 0);
}

} // namespace

// With the font of the run's style set.
void Renderer::measure(TextRun& run, const PathSpace& space)
{
    const Style& style = *run.style;
    setFont(style, space);
    const auto length = static_cast<uint16_t>(run.text.size());
    run.width = toDouble(context_.getTextWidth(run.text.data(), length)) / space.scale +
                style.letterSpacing;
    if (run.text.back() == ' ') run.width += style.wordSpacing;
}

std::vector<Renderer::TextRun> Renderer::layOut(const TextContent& content, const State& state,
                                                const PathSpace& space)
{
    std::vector<TextRun> runs;
    size_t chunk = 0; // first run of the chunk
    Point pen;
    const std::vector<TextCharacter>& characters = content.characters;
    for (size_t i = 0; i < characters.size();) {
        const TextCharacter& first = characters[i];
        if (first.path) {
            anchorChunk(runs, chunk);
            i = layOnPath(content, i, state, space, runs, pen);
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
        run.start = {pen.x, pen.y - first.rise};
        run.turn = first.rotate.value_or(0);
        do {
            run.text.push_back(characters[i].code);
            ++i;
        } while (i < characters.size() && run.text.size() < kMostPerRun &&
                 isTight(*run.style, run.text.back()) &&
                 !beginsRun(characters[i], characters[i - 1]));
        measure(run, space);
        pen.x += run.width; // a turn changes nothing about where the next character stands
        runs.push_back(std::move(run));
    }
    anchorChunk(runs, chunk);
    return runs;
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

// Lays the text out again so that it is as long as textLength says: by space between its
// characters, or by stretching them.
void Renderer::fitLength(pugi::xml_node node, TextContent& content, const State& state,
                         const PathSpace& space, std::vector<TextRun>& runs)
{
    const LengthContext lengths = state.style.lengths(state.viewport);
    const std::optional<double> wanted =
        findLength(node.attribute("textLength").value(), lengths, Axis::X);
    if (!wanted || !(*wanted > 0) || runs.empty()) return;
    std::vector<TextCharacter>& characters = content.characters;
    for (size_t i = 0; i < characters.size(); ++i) {
        if (characters[i].path || (i > 0 && beginsChunk(characters[i]))) {
            note("textLength of several pieces", node);
            return;
        }
    }
    const auto widthOf = [](const std::vector<TextRun>& line) {
        return line.back().start.x + line.back().width - line.front().start.x;
    };
    const double width = widthOf(runs);
    if (!(width > 0)) return;
    const int anchor = runs.front().style->textAnchor;
    if (node.attribute("lengthAdjust").value() == std::string_view("spacingAndGlyphs")) {
        const double stretch = *wanted / width;
        const double from = runs.front().start.x;
        const double left = from + (width - *wanted) * anchor / 2;
        for (TextRun& run : runs) {
            run.start.x = left + (run.start.x - from) * stretch;
            run.stretch = stretch;
        }
        return;
    }
    if (characters.size() < 2) return;
    const double extra = (*wanted - width) / static_cast<double>(characters.size() - 1);
    for (Style& style : content.styles)
        style.letterSpacing += extra;
    runs = layOut(content, state, space);
    for (TextRun& run : runs)
        run.start.x += extra * anchor / 2; // there is none after the last character
}

} // namespace Svg
} // namespace KAVO
