// SPDX-License-Identifier: MIT
#include "svg2png/Renderer.h"

#include "svg2png/ClipGuard.h"
#include "svg2png/TransformParser.h"

using namespace KAVO::Graphics2D;

namespace {

// A small file can describe uses of uses without end: no more elements are drawn than it holds and
// these besides.
constexpr size_t kMostUsedElements = 200000;

// Elements that draw nothing of their own, or that only other elements refer to.
bool isSilent(std::string_view name)
{
    static constexpr std::string_view kSilent[] = {"",
                                                   "defs",
                                                   "title",
                                                   "desc",
                                                   "metadata",
                                                   "linearGradient",
                                                   "radialGradient",
                                                   "stop",
                                                   "symbol",
                                                   "script",
                                                   "style",
                                                   "clipPath",
                                                   "mask",
                                                   "filter",
                                                   "pattern",
                                                   "marker",
                                                   "cursor",
                                                   "view",
                                                   "set",
                                                   "animate",
                                                   "animateColor",
                                                   "animateMotion",
                                                   "animateTransform",
                                                   "font",
                                                   "font-face",
                                                   "color-profile",
                                                   "solidColor"};
    return std::find(std::begin(kSilent), std::end(kSilent), name) != std::end(kSilent) ||
           name.find(':') != name.npos;
}

} // namespace

Renderer::Renderer(const SvgDocument& document, Picture& picture, const RenderOptions& options)
    : document_(document), picture_(picture), options_(options), images_(document.directory()),
      elementsLeft_(document.nodeCount() + kMostUsedElements)
{
    const auto width = static_cast<uint16_t>(picture.width);
    const auto height = static_cast<uint16_t>(picture.height);
    context_.target = {width, height, width * 4u, 0, picture.pixels.data(), 0};
    context_.clipRight = static_cast<int16_t>(width);
    context_.clipBottom = static_cast<int16_t>(height);
    context_.antiAlias = options.antiAlias;
    context_.accumulateBounds = 1;
}

void Renderer::draw(const ViewportSize& viewport)
{
    const pugi::xml_node root = document_.root();
    State state;
    state.viewport = viewport;
    const Properties properties(root);
    state.style.apply(properties, viewport.diagonal());
    noteUnsupported(root, properties);
    if (properties["display"] != "none") {
        const Box whole{0, 0, document_.width(), document_.height()};
        const Box box = parseViewBox(root.attribute("viewBox").value()).value_or(whole);
        state.toDevice = fitViewBox(root.attribute("preserveAspectRatio").value(), box,
                                    viewport.width, viewport.height);
        state.viewport = {box.width(), box.height()};
        drawChildren(root, state);
    }
    if (elementsLeft_ == 0) shortcomings_.insert("endless uses");
}

void Renderer::drawChildren(pugi::xml_node node, const State& state)
{
    for (const pugi::xml_node child : node.children())
        drawElement(child, state);
}

void Renderer::drawElement(pugi::xml_node node, const State& parent)
{
    const std::string_view name = localName(node.name());
    if (isSilent(name) || elementsLeft_ == 0) return;
    --elementsLeft_;
    if (parent.depth >= kMostDepth) {
        shortcomings_.insert("elements nested too deeply");
        return;
    }
    const Properties properties(node);
    if (properties["display"] == "none") return;

    State state = parent;
    ++state.depth;
    state.style.apply(properties, state.viewport.diagonal());
    noteUnsupported(node, properties);
    if (const pugi::xml_attribute list = node.attribute("transform")) {
        if (const std::optional<Affine> transform = parseTransform(list.value()))
            state.toDevice = state.toDevice * *transform;
        else
            shortcomings_.insert("malformed transform");
    }

    if (name == "g" || name == "a")
        drawChildren(node, state);
    else if (name == "svg")
        drawViewport(node, state, state.viewport.width, state.viewport.height);
    else if (name == "use")
        drawUse(node, state);
    else if (name == "switch")
        drawSwitch(node, state);
    else if (name == "text")
        drawText(node, state);
    else if (name == "textArea")
        drawTextArea(node, state);
    else if (name == "image")
        drawImage(node, state);
    else if (isShape(name))
        drawShape(node, state);
    else
        shortcomings_.insert("<" + std::string(name) + ">");
}

// A nested svg element or the symbol of a use: its own viewport, of the given size unless it asks
// for another, clipped.
void Renderer::drawViewport(pugi::xml_node node, const State& outer, double width, double height)
{
    State state = outer;
    const double fontSize = state.style.fontSize;
    const auto length = [&](const char* name, double percentBase, double fallback) {
        return parseLength(node.attribute(name).value(), {percentBase, fontSize}, fallback);
    };
    const double x = length("x", outer.viewport.width, 0);
    const double y = length("y", outer.viewport.height, 0);
    width = length("width", outer.viewport.width, width);
    height = length("height", outer.viewport.height, height);
    if (!(width > 0 && height > 0)) return;

    state.toDevice = state.toDevice * translation(x, y);
    const Box clip = state.toDevice.mapBox({0, 0, width, height});
    state.viewport = {width, height};
    if (const std::optional<Box> box = parseViewBox(node.attribute("viewBox").value())) {
        state.toDevice = state.toDevice * fitViewBox(node.attribute("preserveAspectRatio").value(),
                                                     *box, width, height);
        state.viewport = {box->width(), box->height()};
    }

    const ClipGuard guard(context_);
    const std::string_view overflow = Properties(node)["overflow"];
    if (overflow != "visible" && overflow != "auto") clipTo(clip);
    drawChildren(node, state);
}

// The target is drawn as if it were a child of the use element, whose style it inherits.
void Renderer::drawUse(pugi::xml_node node, const State& outer)
{
    const pugi::xml_node target = document_.target(node);
    if (!target) {
        shortcomings_.insert("use of something that is not there");
        return;
    }
    State state = outer;
    const LengthContext horizontal{outer.viewport.width, outer.style.fontSize};
    const LengthContext vertical{outer.viewport.height, outer.style.fontSize};
    state.toDevice =
        state.toDevice * translation(parseLength(node.attribute("x").value(), horizontal, 0),
                                     parseLength(node.attribute("y").value(), vertical, 0));
    if (localName(target.name()) != "symbol") {
        drawElement(target, state);
        return;
    }
    ++state.depth;
    if (state.depth >= kMostDepth) return;
    state.style.apply(Properties(target), state.viewport.diagonal());
    drawViewport(target, state,
                 parseLength(node.attribute("width").value(), horizontal, outer.viewport.width),
                 parseLength(node.attribute("height").value(), vertical, outer.viewport.height));
}

// The first child without conditions that we could fail.
void Renderer::drawSwitch(pugi::xml_node node, const State& state)
{
    for (const pugi::xml_node child : node.children()) {
        const std::string_view name = localName(child.name());
        if (isSilent(name) || name == "foreignObject" || child.attribute("requiredExtensions"))
            continue;
        drawElement(child, state);
        return;
    }
}

// Also to the pixels that the box touches.
void Renderer::clipTo(const Box& box)
{
    const auto pixel = [](double v) {
        return static_cast<int16_t>(std::max(0.0, std::min<double>(v, kLargestSide)));
    };
    context_.clipLeft = std::max(context_.clipLeft, pixel(std::floor(box.left + 0.01)));
    context_.clipTop = std::max(context_.clipTop, pixel(std::floor(box.top + 0.01)));
    context_.clipRight = std::min(context_.clipRight, pixel(std::ceil(box.right - 0.01)));
    context_.clipBottom = std::min(context_.clipBottom, pixel(std::ceil(box.bottom - 0.01)));
}

void Renderer::noteUnsupported(pugi::xml_node, const Properties& properties)
{
    for (const char* name :
         {"clip-path", "mask", "filter", "marker", "marker-start", "marker-mid", "marker-end"}) {
        const std::string_view value = properties[name];
        if (!value.empty() && value != "none") shortcomings_.insert(name);
    }
}

void Renderer::clearBounds()
{
    context_.boundsMinX = context_.boundsMinY = kEmptyBoundsMin;
    context_.boundsMaxX = context_.boundsMaxY = kEmptyBoundsMax;
}

// shifted: through a transform of setTransform.
void Renderer::uniteBounds(bool shifted)
{
    if (context_.boundsMinX > context_.boundsMaxX) return;
    const double shift = shifted && options_.antiAlias ? 0.5 : 0;
    bounds_.include({toDouble(context_.boundsMinX) + shift, toDouble(context_.boundsMinY) + shift});
    bounds_.include({toDouble(context_.boundsMaxX) + shift, toDouble(context_.boundsMaxY) + shift});
}

bool Renderer::isOutside(const Box& box) const
{
    return !(box.right >= -1 && box.bottom >= -1 && box.left <= picture_.width + 1 &&
             box.top <= picture_.height + 1);
}
