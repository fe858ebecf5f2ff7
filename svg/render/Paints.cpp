// SPDX-License-Identifier: MIT
// The context's paints from the values of fill and stroke.
#include "graphics2d/PaintSetup.h"
#include "svg/document/References.h"
#include "svg/render/Renderer.h"
#include "svg/values/TransformParser.h"

#include <cmath>
#include <utility>

namespace KAVO {
namespace Svg {

using namespace Graphics2D;

namespace {

uint8_t byteOf(double opacity)
{
    return static_cast<uint8_t>(std::lround(opacity * 255));
}

} // namespace

// Each sets up the paint for something with these bounds in user space; false when it paints
// nothing.
bool Renderer::setFill(const State& state, const Box& userBounds)
{
    const Style& style = state.style;
    return setPaint(context_.fillPaint, fillStore_, style.fill, style.fillOpacity * style.opacity,
                    state, userBounds);
}

bool Renderer::setStroke(const State& state, const Box& userBounds)
{
    const Style& style = state.style;
    context_.strokePaint.paintType = kPaintNone;
    return !clipping_ && style.strokeWidth > 0 &&
           setPaint(context_.strokePaint, strokeStore_, style.stroke,
                    style.strokeOpacity * style.opacity, state, userBounds);
}

bool Renderer::setPaint(MMPaint& paint, PaintStore& store, const PaintValue& value, double opacity,
                        const State& state, const Box& userBounds)
{
    if (clipping_) {
        paint.paintType = kPaintSolid;
        paint.paintColour = 0xFFFFFFFF;
        paint.paintOpacity = 255;
        return true;
    }
    paint.paintType = kPaintNone;
    if (value.kind == PaintValue::None || byteOf(opacity) == 0) return false;
    if (value.kind == PaintValue::ContextFill || value.kind == PaintValue::ContextStroke) {
        if (!state.contextPaints) return false;
        // Of the element that the marker or the use stands for, in its own space.
        const ContextPaints& paints = *state.contextPaints;
        const Style& style = paints.state.style;
        const bool fill = value.kind == PaintValue::ContextFill;
        return setPaint(paint, store, fill ? style.fill : style.stroke, opacity, paints.state,
                        paints.bounds.empty() ? userBounds : paints.bounds);
    }
    if (session_.pick) {
        paint.paintType = kPaintPicking;
        paint.paintOpacity = 255;
        return true;
    }
    if (value.kind == PaintValue::Server) {
        const pugi::xml_node server = document_.find(value.server);
        const std::string_view name = server.name();
        if (name == "pattern" || name == "linearGradient" || name == "radialGradient") {
            const bool isSet = setServer(paint, store, server, state, userBounds, opacity);
            if (isSet || !value.hasFallback) return isSet;
        } else if (server) {
            note("paint from <" + std::string(name) + ">", server);
        } else if (!value.hasFallback && !value.fallbackNone) {
            note("paint that is not there", current_);
        }
        if (!value.hasFallback) return false;
    }
    paint.paintType = kPaintSolid;
    paint.paintColour = value.colour;
    paint.paintOpacity = byteOf(opacity);
    return value.colour >> 24 != 0;
}

// What a gradient or a pattern asks for and does not get.
void Renderer::noteServer(pugi::xml_node server)
{
    const Properties properties(server, document_.sheet());
    noteUndrawn(server, properties);
    if (!properties.unknownFunction().empty())
        note("a value that " + std::string(properties.unknownFunction()) + ") computes", server);
    if (server.name() != std::string_view("pattern")) return;
    static constexpr std::pair<Property, const char*> kEffects[] = {
        {Property::ClipPath, "clip-path of a pattern"},
        {Property::Mask, "mask of a pattern"},
        {Property::Filter, "filter of a pattern"}};
    for (const auto& [property, what] : kEffects) {
        const std::string_view value = properties[property];
        if (!value.empty() && value != "none") note(what, server);
    }
}

// A gradient or a pattern; false when it is in error, as one without an extent, and a fallback may
// stand for it.
bool Renderer::setServer(MMPaint& paint, PaintStore& store, pugi::xml_node server,
                         const State& state, const Box& userBounds, double opacity)
{
    paint.paintOpacity = byteOf(opacity);
    noteServer(server);
    const ReferenceChain chain(document_, server);
    for (const char* name : {"gradientTransform", "patternTransform"}) {
        const LengthContext lengths = state.style.lengths(state.viewport);
        if (!parseTransformAttribute(chain[name], lengths)) note("malformed transform", server);
    }
    context_.patternFilter = kFilterNearest; // for what lies pixel on pixel
    if (server.name() == std::string_view("pattern"))
        return setTiles(paint, store.tiles, server, state, userBounds);
    Gradient gradient = readGradient(document_, server, state.viewport);
    if (gradient.stops.empty()) return true; // the same as none, also where there is a fallback
    return store.gradient.set(paint, std::move(gradient), state.toDevice, userBounds,
                              visiblePart(userBounds, state));
}

// The device pixels that a paint may be asked for.
Box Renderer::visiblePart(const Box& userBounds, const State& state) const
{
    const Style& style = state.style;
    const double unit = style.fixedStroke ? 1 : state.toDevice.norm();
    const double reach = (style.strokeReach() + state.glyphOverhang) * unit + 1;
    const Box box = state.toDevice.mapBox(userBounds);
    return {std::max<double>(box.left - reach, context_.clipLeft),
            std::max<double>(box.top - reach, context_.clipTop),
            std::min<double>(box.right + reach, context_.clipRight),
            std::min<double>(box.bottom + reach, context_.clipBottom)};
}

} // namespace Svg
} // namespace KAVO
