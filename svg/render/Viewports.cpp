// SPDX-License-Identifier: MIT
// Viewports: the whole drawing, nested svg elements, symbols, and what use elements bring in.
#include "svg/document/References.h"
#include "svg/geometry/ViewBox.h"
#include "svg/render/Renderer.h"
#include "svg/values/TextScanner.h"

#include <utility>

namespace KAVO {
namespace Svg {

namespace {

bool isViewport(std::string_view name)
{
    return name == "svg" || name == "symbol";
}

bool isWithin(pugi::xml_node node, pugi::xml_node outer)
{
    for (; node; node = node.parent()) {
        if (node == outer) return true;
    }
    return false;
}

// A length, or one of three places in a box from 0 to size.
double referencePoint(std::string_view text, const LengthContext& lengths, Axis axis, double size)
{
    if (text == "left" || text == "top") return 0;
    if (text == "center") return size / 2;
    if (text == "right" || text == "bottom") return size;
    return parseLength(text, lengths, axis, 0);
}

} // namespace

void Renderer::draw(const Affine& frame, const Size& viewport, const char* aspectRatio,
                    double opacity, int depth)
{
    const pugi::xml_node root = document_.root();
    const bool fitsAny = aspectRatio && !document_.hasExtent();
    const Box box = fitsAny ? Box{0, 0, viewport.width, viewport.height} : document_.viewBox();
    State state;
    state.toDevice = frame;
    state.depth = depth;
    state.style.opacity = opacity;
    state.viewport = {box.width(), box.height(), document_.size().width, document_.size().height};
    const Properties properties(root, document_.sheet());
    if (!enter(root, properties, state)) return;
    state.viewport.rootFontSize = state.style.fontSize;
    if (!aspectRatio) aspectRatio = root.attribute("preserveAspectRatio").value();
    const Affine fit = fitViewBox(aspectRatio, box, viewport.width, viewport.height);
    // An image shows no more than its view box.
    Box shown{0, 0, viewport.width, viewport.height};
    if (depth > 0) shown = shown.common(fit.mapBox(box));
    shown = clippedViewport(shown, state.style.clip, state.style.lengths(state.viewport));
    // Back from the root's own transform, which does not move the viewport.
    const Affine toFrame = state.toDevice.inverse().value_or(Affine()) * frame;
    const Active active(*this, root);
    drawLayered(root, properties, state, [&](Renderer& renderer, const State& entered) {
        State inner = entered;
        inner.toDevice = entered.toDevice * fit;
        const Affine place = entered.toDevice * toFrame;
        renderer.drawInside(shown, place, [&] { renderer.drawChildren(root, inner); });
    });
}

// A nested one; as large as the viewport around it unless it says otherwise.
Renderer::Frame Renderer::frameOfSvg(const Properties& properties, const State& state)
{
    const LengthContext lengths = state.style.lengths(state.viewport);
    const Viewport& outer = state.viewport;
    const double x = parseLength(properties[Property::X], lengths, Axis::X, 0);
    const double y = parseLength(properties[Property::Y], lengths, Axis::Y, 0);
    const auto side = [&](Property property, Axis axis, double whole) {
        const double given = parseLength(properties[property], lengths, axis, whole);
        return given < 0 ? whole : given;
    };
    return {{side(Property::Width, Axis::X, outer.width),
             side(Property::Height, Axis::Y, outer.height)},
            translation(x, y)};
}

// The frame that a use element, whose properties these are, gives to an svg or symbol element: a
// size that it names goes before the target's own.
Renderer::Frame Renderer::frameOfUsed(const Properties& properties, const State& outer,
                                      const Properties& ofTarget, const State& state)
{
    const LengthContext lengths = outer.style.lengths(outer.viewport);
    const LengthContext inner = state.style.lengths(state.viewport);
    const auto length = [&](Property property, Axis axis, double whole) {
        if (const auto given = findLength(properties[property], lengths, axis)) return *given;
        return parseLength(ofTarget[property], inner, axis, whole);
    };
    return {{length(Property::Width, Axis::X, outer.viewport.width),
             length(Property::Height, Axis::Y, outer.viewport.height)},
            translation(parseLength(ofTarget[Property::X], inner, Axis::X, 0),
                        parseLength(ofTarget[Property::Y], inner, Axis::Y, 0))};
}

// Goes into the viewport that an svg or symbol element opens. False when nothing can be seen in it.
bool Renderer::enterViewport(pugi::xml_node node, const Frame& frame, State& state, Affine& outer)
{
    const Size& size = frame.size;
    if (!(size.width > 0 && size.height > 0)) return false;
    if (isEmptyViewBox(node.attribute("viewBox").value())) return false;
    outer = state.toDevice * frame.place;
    state.toDevice = outer;
    state.viewport.width = size.width;
    state.viewport.height = size.height;
    if (const std::optional<Box> box = parseViewBox(node.attribute("viewBox").value())) {
        state.toDevice = outer * fitViewBox(node.attribute("preserveAspectRatio").value(), *box,
                                            size.width, size.height);
        state.viewport.width = box->width();
        state.viewport.height = box->height();
    }
    if (node.name() != std::string_view("symbol")) return true;
    const LengthContext lengths = state.style.lengths(state.viewport);
    const double x =
        referencePoint(node.attribute("refX").value(), lengths, Axis::X, state.viewport.width);
    const double y =
        referencePoint(node.attribute("refY").value(), lengths, Axis::Y, state.viewport.height);
    // The viewport moves along with the point that refX and refY name.
    const Point moved = state.toDevice.mapVector({-x, -y});
    state.toDevice = translation(moved.x, moved.y) * state.toDevice;
    outer = translation(moved.x, moved.y) * outer;
    return true;
}

// Draws the children of an svg or symbol element into a viewport of its own, clipped.
void Renderer::drawViewport(pugi::xml_node node, State state, const Frame& frame)
{
    Affine outer;
    const LengthContext lengths = state.style.lengths(state.viewport);
    if (!enterViewport(node, frame, state, outer)) return;
    if (state.style.overflows()) {
        drawChildren(node, state);
        return;
    }
    const Box whole{0, 0, frame.size.width, frame.size.height};
    drawInside(clippedViewport(whole, state.style.clip, lengths), outer,
               [&] { drawChildren(node, state); });
}

void Renderer::drawUse(pugi::xml_node node, const Properties& properties, const State& outer)
{
    const std::string_view href = trimmed(hrefOf(node));
    const pugi::xml_node target = document_.target(node);
    if (!href.empty() && href[0] != '#')
        drawUseOfFile(node, properties, outer);
    else if (!target)
        note("use of something that is not there", node);
    else if (isActive(target) || isWithin(node, target))
        note("use of an element inside itself", node);
    else
        drawUsed(target, properties, outer, boundsForContexts(node, properties, outer));
}

// The box that paints of a use element extend over where context-fill and context-stroke stand for
// them; empty when nothing asks for it.
Box Renderer::boundsForContexts(pugi::xml_node use, const Properties& properties,
                                const State& state)
{
    const auto isServer = [](const PaintValue& p) { return p.kind == PaintValue::Server; };
    const bool asked = document_.namesContexts() && !clipping_ &&
                       (isServer(state.style.fill) || isServer(state.style.stroke));
    return asked ? boundsOf(use, properties, state) : Box();
}

// An element of another document, or the whole of it, drawn by that document's style sheet.
void Renderer::drawUseOfFile(pugi::xml_node node, const Properties& properties, const State& outer)
{
    const std::string href(trimmed(hrefOf(node)));
    const size_t hash = href.find('#');
    const LoadedImage& file = images_->loadDocument(href.substr(0, hash), session_.imagePixelsLeft);
    const pugi::xml_node target = !file.drawing       ? pugi::xml_node()
                                  : hash == href.npos ? file.drawing->root()
                                                      : file.drawing->find(href.substr(hash + 1));
    if (!target) {
        note("use of what is not there: " + href.substr(0, 40), node);
        return;
    }
    State state = outer;
    state.depth += kPatternDepth; // it may use this document in turn
    if (static_cast<uint32_t>(state.depth) >= session_.limits.depth) {
        note("uses of documents without end", node);
        return;
    }
    session_.elementsLeft += file.drawing->nodeCount();
    Report report;
    const pugi::xml_node picked = std::exchange(session_.picked, {});
    Renderer renderer(*file.drawing, context_, session_, report);
    renderer.clipping_ = clipping_;
    renderer.layers_ = layers_;
    renderer.drawUsed(target, properties, state, {});
    session_.picked = session_.picked ? current_ : picked;
    for (const Shortcoming& shortcoming : report.list())
        note(shortcoming.what + " in another document", node);
}

// The target is drawn as if it were a child of the use element, whose properties these are and
// whose style it inherits. bounds are those of its paints.
void Renderer::drawUsed(pugi::xml_node target, const Properties& properties, const State& outer,
                        const Box& bounds)
{
    const Active active(*this, target);
    State state = outer;
    const ContextPaints paints{outer, bounds};
    state.contextPaints = &paints;
    if (!isViewport(target.name())) {
        // What clips has one element between the two at most: none that holds others.
        const std::string_view name = target.name();
        if (!clipping_ || isShape(name) || name == "text") drawElement(target, state);
        return;
    }
    if (clipping_) return;
    const Properties ofTarget(target, document_.sheet());
    if (!enter(target, ofTarget, state)) return;
    const Frame frame = frameOfUsed(properties, outer, ofTarget, state);
    const pugi::xml_node before = current_;
    current_ = target;
    drawLayered(target, ofTarget, state, [&](Renderer& renderer, const State& entered) {
        renderer.drawViewport(target, entered, frame);
    });
    current_ = before;
}

// The box of what an element fills, in its own user space; empty for what has no geometry.
Box Renderer::boundsOf(pugi::xml_node node, const Properties& properties, const State& state)
{
    const LengthContext lengths = state.style.lengths(state.viewport);
    if (isShape(node.name())) {
        const Box box = makeShape(node, properties, lengths).outline.bounds();
        const bool stroked = state.strokesCount && state.style.stroke.kind != PaintValue::None;
        return stroked && !box.empty() ? box.grown(state.style.strokeWidth / 2) : box;
    }
    if (node.name() == std::string_view("image")) {
        const double x = parseLength(properties[Property::X], lengths, Axis::X, 0);
        const double y = parseLength(properties[Property::Y], lengths, Axis::Y, 0);
        return {x, y, x + parseLength(properties[Property::Width], lengths, Axis::X, 0),
                y + parseLength(properties[Property::Height], lengths, Axis::Y, 0)};
    }
    if (node.name() == std::string_view("text")) return boundsOfText(node, state);
    if (state.depth >= static_cast<int>(session_.limits.depth)) return {};
    if (node.name() == std::string_view("svg") && node != document_.root())
        return boundsInViewport(node, frameOfSvg(properties, state), state);
    if (node.name() == std::string_view("use")) return boundsOfUsed(node, properties, state);
    Box box;
    for (const pugi::xml_node child : node.children())
        includeBounds(child, state, box);
    return box;
}

// What a child is measured in, its own transform included; nothing for what is no element, or when
// no more elements may be visited.
std::optional<Renderer::State> Renderer::measuring(pugi::xml_node child,
                                                   const Properties& properties, const State& state)
{
    if (child.type() != pugi::node_element || session_.elementsLeft == 0) return std::nullopt;
    --session_.elementsLeft;
    State inner = state;
    inner.toDevice = Affine();
    ++inner.depth;
    inner.style = state.style.child(properties, state.viewport);
    applyTransform(child, properties, inner);
    return inner;
}

// Makes the box include what a child fills.
void Renderer::includeBounds(pugi::xml_node child, const State& state, Box& box)
{
    const Properties properties(child, document_.sheet());
    const std::optional<State> inner = measuring(child, properties, state);
    if (!inner || !inner->style.displayed) return;
    const Box bounds = boundsOf(child, properties, *inner);
    if (!bounds.empty()) box.include(inner->toDevice.mapBox(bounds));
}

// In the user space around the viewport.
Box Renderer::boundsInViewport(pugi::xml_node node, const Frame& frame, State state)
{
    state.toDevice = Affine();
    Box box;
    Affine outer;
    if (!enterViewport(node, frame, state, outer)) return box;
    for (const pugi::xml_node child : node.children())
        includeBounds(child, state, box);
    return box.empty() ? box : state.toDevice.mapBox(box);
}

Box Renderer::boundsOfUsed(pugi::xml_node node, const Properties& properties, const State& state)
{
    Box box;
    const pugi::xml_node target = document_.target(node);
    if (!isViewport(target.name())) {
        includeBounds(target, state, box);
        return box;
    }
    const Properties ofTarget(target, document_.sheet());
    const std::optional<State> inner = measuring(target, ofTarget, state);
    if (!inner) return box;
    box = boundsInViewport(target, frameOfUsed(properties, state, ofTarget, *inner), *inner);
    return box.empty() ? box : inner->toDevice.mapBox(box);
}

} // namespace Svg
} // namespace KAVO
