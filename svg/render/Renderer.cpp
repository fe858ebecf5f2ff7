// SPDX-License-Identifier: MIT
// The walk over the elements of a document.
#include "svg/render/Renderer.h"

#include "svg/document/ElementNames.h"
#include "svg/document/References.h"
#include "svg/geometry/ViewBox.h"
#include "svg/render/ClipGuard.h"
#include "svg/style/Validity.h"
#include "svg/values/TextScanner.h"
#include "svg/values/TransformParser.h"

#include <algorithm>

namespace KAVO {
namespace Svg {

namespace {

template <size_t N>
bool contains(const std::string_view (&names)[N], std::string_view name)
{
    return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

// Elements that draw nothing of their own, or that only other elements refer to.
bool isSilent(std::string_view name)
{
    static constexpr std::string_view kSilent[] = {
        "",       "clipPath",   "color-profile", "cursor",    "defs",
        "desc",   "filter",     "font",          "font-face", "linearGradient",
        "marker", "mask",       "metadata",      "pattern",   "radialGradient",
        "script", "solidColor", "stop",          "style",     "symbol",
        "title",  "view"};
    return contains(kSilent, name) || name.find(':') != name.npos;
}

// Elements that draw something where they stand.
bool isDrawn(std::string_view name)
{
    static constexpr std::string_view kDrawn[] = {"a",      "g",    "image",    "svg",
                                                  "switch", "text", "textArea", "use"};
    return contains(kDrawn, name) || isShape(name);
}

} // namespace

Renderer::Renderer(const SvgDocument& document, Graphics2D::MMContext2D& context, Session& session,
                   Report& report)
    : document_(document), context_(context), session_(session), report_(report),
      images_(std::make_shared<ImageStore>(document))
{
}

bool Renderer::isActive(pugi::xml_node node) const
{
    return std::find(active_.begin(), active_.end(), node) != active_.end();
}

void Renderer::drawChildren(pugi::xml_node node, const State& state)
{
    for (const pugi::xml_node child : node.children())
        drawElement(child, state);
}

void Renderer::drawElement(pugi::xml_node node, const State& parent)
{
    const std::string_view name = node.name();
    if (isSilent(name)) return;
    if (isAnimation(name)) {
        note("animation", node);
        return;
    }
    const Properties properties(node, document_.sheet());
    State state = parent;
    if (!enter(node, properties, state)) return;
    drawLayered(node, properties, state, [&](Renderer& renderer, const State& inner) {
        renderer.drawEntered(node, properties, inner);
    });
}

bool Renderer::enter(pugi::xml_node node, const Properties& properties, State& state)
{
    if (session_.elementsLeft == 0) {
        note("more elements than the limit, through uses of uses", node);
        return false;
    }
    --session_.elementsLeft;
    if (static_cast<uint32_t>(state.depth) >= session_.limits.depth) {
        note("elements nested too deeply", node);
        return false;
    }
    ++state.depth;
    state.style = state.style.child(properties, state.viewport);
    // A symbol that is used is always displayed.
    const bool displayed = state.style.displayed || node.name() == std::string_view("symbol");
    if (!displayed || !document_.meetsConditions(node)) return false;
    if (!properties.unknownFunction().empty()) {
        note("a value that " + std::string(properties.unknownFunction()) + ") computes", node);
        return false;
    }
    noteUndrawn(node, properties);
    applyTransform(node, properties, state);
    return true;
}

// A use element moves what it shows after all else, so that it moves its clip path and mask, too.
void Renderer::applyTransform(pugi::xml_node node, const Properties& properties, State& state)
{
    applyOwnTransform(node, properties, state);
    if (node.name() != std::string_view("use")) return;
    const LengthContext lengths = state.style.lengths(state.viewport);
    state.toDevice =
        state.toDevice * translation(parseLength(properties[Property::X], lengths, Axis::X, 0),
                                     parseLength(properties[Property::Y], lengths, Axis::Y, 0));
}

// A transform that cannot be read counts as none.
void Renderer::applyOwnTransform(pugi::xml_node node, const Properties& properties, State& state)
{
    const Style& style = state.style;
    if (!style.isTransformed()) return;
    const LengthContext lengths = style.lengths(state.viewport);
    Box box{0, 0, state.viewport.width, state.viewport.height};
    if (const bool strokes =
            style.transformBox == "stroke-box" || style.transformBox == "border-box";
        strokes || style.transformBox == "fill-box" || style.transformBox == "content-box") {
        State measured = state;
        measured.strokesCount = strokes;
        box = boundsOf(node, properties, measured);
    }
    Affine before; // of the transform itself
    for (const auto& [name, value] :
         {std::pair{"translate", style.translate}, std::pair{"rotate", style.rotate},
          std::pair{"scale", style.scale}}) {
        const std::optional<Affine> single = parseSingleTransform(name, value, lengths, box);
        if (!single) note(name, node);
        before = before * single.value_or(Affine());
    }
    const std::optional<Affine> transform = parseTransform(style.transform, lengths, box);
    if (!transform) {
        note("malformed transform", node);
        return;
    }
    const std::optional<Point> origin = parseTransformOrigin(style.transformOrigin, lengths, box);
    if (!origin) note("malformed transform-origin", node);
    const Point o = origin.value_or(Point());
    state.toDevice = state.toDevice * around(o, before * *transform);
}

void Renderer::drawEntered(pugi::xml_node node, const Properties& properties, const State& state)
{
    const std::string_view name = node.name();
    const pugi::xml_node outer = current_;
    current_ = node;
    if (name == "g" || name == "a")
        drawChildren(node, state);
    else if (name == "svg")
        drawViewport(node, state, frameOfSvg(properties, state));
    else if (name == "use")
        drawUse(node, properties, state);
    else if (name == "switch")
        drawSwitch(node, state);
    else if (name == "text")
        drawText(node, state);
    else if (name == "textArea")
        drawTextArea(node, state);
    else if (name == "image")
        drawImage(node, properties, state);
    else if (isShape(name))
        drawShape(node, properties, state);
    else
        note("<" + std::string(name) + ">", node);
    current_ = outer;
}

// The first child whose conditions are met, but for what we could not draw, which is named when
// there is nothing in its place.
void Renderer::drawSwitch(pugi::xml_node node, const State& state)
{
    pugi::xml_node passedOver;
    for (const pugi::xml_node child : node.children()) {
        const std::string_view name = child.name();
        if (isSilent(name) || isAnimation(name) || !document_.meetsConditions(child)) continue;
        if (isDrawn(name)) {
            drawElement(child, state);
            return;
        }
        if (!passedOver) passedOver = child;
    }
    if (passedOver) drawElement(passedOver, state);
}

void Renderer::noteUndrawn(pugi::xml_node node, const Properties& properties)
{
    static constexpr struct {
        Property property;
        const char* name;
    } kUndrawn[] = {{Property::WritingMode, "writing-mode"},
                    {Property::ColorInterpolation, "color-interpolation"},
                    {Property::Direction, "direction"},
                    {Property::UnicodeBidi, "unicode-bidi"},
                    {Property::TextTransform, "text-transform"},
                    {Property::FontStretch, "font-stretch"},
                    {Property::FontVariant, "font-variant"}};
    for (const auto& undrawn : kUndrawn) {
        const std::string_view value = properties[undrawn.property];
        static constexpr std::string_view kPlain[] = {
            "", "none", "normal", "auto", "sRGB", "lr-tb", "lr", "horizontal-tb", "ltr", "inherit"};
        const bool isKnown = undrawn.property == Property::ColorInterpolation &&
                             node.name() == std::string_view("mask");
        if (!contains(kPlain, value) && !isKnown) note(undrawn.name, node);
    }
    for (const std::string_view name : properties.undrawn())
        note(std::string(name), node);
    noteUndrawnValues(node, properties);
    // What stands inside a shape is not walked through.
    if (!isShape(node.name())) return;
    for (const pugi::xml_node child : node.children()) {
        if (isAnimation(child.name())) note("animation", child);
    }
}

// Of properties that are known, and of attributes that are none.
void Renderer::noteUndrawnValues(pugi::xml_node node, const Properties& properties)
{
    for (const Property colour : {Property::Color, Property::Fill, Property::Stroke,
                                  Property::StopColor, Property::FloodColor}) {
        const std::string_view value = properties[colour];
        const size_t bracket = value.find('(');
        if (bracket == value.npos || isUrl(value) || isValid(colour, value)) continue;
        note("the colour " + std::string(value.substr(0, bracket)) + "()", node);
    }
    for (const Property marker :
         {Property::MarkerStart, Property::MarkerMid, Property::MarkerEnd}) {
        if (isUrl(properties[marker]) && referenceIn(properties[marker]).empty())
            note("marker of another document", node);
    }
    forWords(properties[Property::TextDecoration], [&](std::string_view word) {
        static constexpr std::string_view kKnown[] = {"auto", "blink",    "inherit", "line-through",
                                                      "none", "overline", "solid",   "underline"};
        if (!contains(kKnown, word) && !isValid(Property::Color, word))
            note("text-decoration: " + std::string(word), node);
    });
    const std::string_view effect = properties[Property::VectorEffect];
    for (const std::string_view name : {"fixed-position", "non-rotation", "non-scaling-size"}) {
        if (effect.find(name) != effect.npos) note("vector-effect: " + std::string(name), node);
    }
    for (const pugi::xml_attribute attribute : node.attributes()) {
        const std::string_view value = attribute.value();
        if (value.substr(0, 5) == "calc(" && !findProperty(attribute.name()))
            note("a value that calc() computes", node);
    }
}

} // namespace Svg
} // namespace KAVO
