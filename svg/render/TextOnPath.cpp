// SPDX-License-Identifier: MIT
// textPath elements: every character stands with its middle on the path and turns with it.
#include "svg/document/References.h"
#include "svg/geometry/PathWalk.h"
#include "svg/render/TextRun.h"
#include "svg/values/PathParser.h"
#include "svg/values/TextScanner.h"

namespace KAVO {
namespace Svg {

namespace {

// An offset along the path; percentages are of its length, and numbers are in the unit that
// pathLength says.
double startOffset(std::string_view text, const LengthContext& lengths, double length,
                   double authorLength)
{
    text = trimmed(text);
    const bool isShare = !text.empty() && text.back() == '%';
    const Viewport along = lengths.viewport.sized(length, length);
    const double offset = parseLength(text, {along, lengths.fontSize}, Axis::X, 0);
    return isShare || authorLength <= 0 ? offset : offset * length / authorLength;
}

} // namespace

// In the user space of the text: the path attribute, or the shape referred to under its own
// transform.
Outline Renderer::outlineForText(pugi::xml_node textPath, const State& state)
{
    Outline outline;
    if (const pugi::xml_attribute path = textPath.attribute("path")) {
        if (!parsePath(path.value(), outline)) note("malformed path data", textPath);
        return outline;
    }
    const pugi::xml_node shape = document_.target(textPath);
    if (!isShape(shape.name())) {
        note("text on a path that is not there", textPath);
        return outline;
    }
    const Properties properties(shape, document_.sheet());
    State inner;
    inner.viewport = state.viewport;
    inner.style = document_.styleOf(shape, state.viewport);
    applyTransform(shape, properties, inner);
    const LengthContext lengths = inner.style.lengths(state.viewport);
    return makeShape(shape, properties, lengths).outline.mapped(inner.toDevice);
}

// Lays out the characters of the text path from index on and gives the index behind them. The pen
// is left at the end of the path.
size_t Renderer::layOnPath(const TextContent& content, size_t index, const State& state,
                           const PathSpace& space, std::vector<TextRun>& runs, Point& pen)
{
    const std::optional<size_t> path = content.characters[index].path;
    const pugi::xml_node node = content.paths[*path];
    if (node.attribute("method").value() == std::string_view("stretch"))
        note("stretched text on a path", node);
    const size_t first = runs.size();
    double advance = 0; // along the path, and away from it
    double rise = 0;
    std::vector<Point> places; // of the runs, along and away
    for (; index < content.characters.size() && content.characters[index].path == path; ++index) {
        const TextCharacter& character = content.characters[index];
        advance = character.x.value_or(advance) + character.dx.value_or(0);
        rise += character.dy.value_or(0);
        TextRun run;
        run.text.push_back(character.code);
        run.style = &content.styles[character.style];
        run.turn = character.rotate.value_or(0);
        measure(run, space);
        places.push_back({advance, rise - character.rise});
        advance += run.width;
        runs.push_back(std::move(run));
    }

    const PathWalk walk(outlineForText(node, state));
    // On its other side text runs along the path from its end on.
    const bool isReversed = node.attribute("side").value() == std::string_view("right");
    const Style& style = *runs[first].style;
    const double authorLength = document_.target(node).attribute("pathLength").as_double();
    const double offset = startOffset(node.attribute("startOffset").value(),
                                      style.lengths(state.viewport), walk.length(), authorLength) -
                          advance * style.textAnchor / 2;
    // What lies beyond the ends of the path is not drawn.
    size_t kept = first;
    for (size_t i = first; i < runs.size(); ++i) {
        TextRun& run = runs[i];
        const Point place = places[i - first];
        const double distance = offset + place.x + run.width / 2;
        std::optional<PathWalk::Place> middle =
            walk.at(isReversed ? walk.length() - distance : distance);
        if (!middle) continue;
        if (isReversed) middle->direction += 180;
        const Affine onPath =
            translation(middle->point.x, middle->point.y) * rotation(middle->direction);
        run.start = onPath.map({-run.width / 2, place.y});
        run.turn += middle->direction;
        if (kept != i) runs[kept] = std::move(run);
        ++kept;
    }
    runs.resize(kept);
    if (const std::optional<PathWalk::Place> end = walk.at(isReversed ? 0 : walk.length()))
        pen = end->point;
    return index;
}

} // namespace Svg
} // namespace KAVO
