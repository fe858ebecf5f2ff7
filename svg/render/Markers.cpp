// SPDX-License-Identifier: MIT
// Markers on the vertices of shapes.
#include "svg/geometry/Vertices.h"
#include "svg/geometry/ViewBox.h"
#include "svg/render/Renderer.h"
#include "svg/values/TextScanner.h"

namespace KAVO {
namespace Svg {

namespace {

// Degrees that a marker is turned by.
double angleOf(std::string_view orient, const Vertex& vertex, bool first)
{
    if (orient == "auto") return vertex.direction;
    if (orient == "auto-start-reverse") return vertex.direction + (first ? 180 : 0);
    TextScanner scanner(orient);
    double angle = 0;
    if (!scanner.number(angle)) return 0;
    const std::string_view unit = scanner.rest();
    if (unit == "rad") return angle * 180 / std::acos(-1.0);
    if (unit == "grad") return angle * 0.9;
    if (unit == "turn") return angle * 360;
    return angle;
}

} // namespace

void Renderer::drawMarkers(const Outline& outline, const State& state)
{
    pugi::xml_node markers[3];
    bool any = false;
    for (size_t i = 0; i < 3; ++i) {
        const std::string_view id = state.style.markers[i];
        if (id.empty()) continue;
        const pugi::xml_node node = document_.find(id);
        if (node.name() == std::string_view("marker"))
            markers[i] = node;
        else
            note("marker that is not there", current_);
        any = any || markers[i];
    }
    if (!any) return;
    const std::vector<Vertex> vertices = verticesOf(outline);
    const ContextPaints paints{state, outline.bounds()};
    for (size_t i = 0; i < vertices.size() && session_.elementsLeft > 0; ++i) {
        const bool first = i == 0;
        const bool last = i + 1 == vertices.size();
        if (first) drawMarker(markers[0], vertices[i], true, state, paints);
        if (!first && !last) drawMarker(markers[1], vertices[i], false, state, paints);
        if (last) drawMarker(markers[2], vertices[i], false, state, paints);
    }
}

void Renderer::drawMarker(pugi::xml_node marker, const Vertex& vertex, bool first,
                          const State& state, const ContextPaints& paints)
{
    if (!marker || isActive(marker) || session_.elementsLeft == 0) return;
    --session_.elementsLeft;
    const Active active(*this, marker);
    State inner;
    inner.depth = state.depth + 1;
    inner.viewport = state.viewport;
    inner.style = document_.styleOf(marker, state.viewport);
    inner.style.opacity = state.style.opacity * inner.style.ownOpacity;
    inner.contextPaints = &paints;

    const LengthContext lengths = inner.style.lengths(state.viewport);
    const auto length = [&](const char* name, Axis axis, double fallback) {
        return parseLength(marker.attribute(name).value(), lengths, axis, fallback);
    };
    const Size size{length("markerWidth", Axis::X, 3), length("markerHeight", Axis::Y, 3)};
    if (!(size.width > 0 && size.height > 0)) return;
    if (isEmptyViewBox(marker.attribute("viewBox").value())) return;
    const bool inStrokes =
        marker.attribute("markerUnits").value() != std::string_view("userSpaceOnUse");
    const double unit = inStrokes ? state.style.strokeWidth : 1;
    inner.toDevice = state.toDevice * translation(vertex.place.x, vertex.place.y) *
                     rotation(angleOf(trimmed(marker.attribute("orient").value()), vertex, first)) *
                     Affine{unit, 0, 0, unit, 0, 0};
    inner.viewport.width = size.width;
    inner.viewport.height = size.height;
    Box visible{0, 0, size.width, size.height};
    if (const std::optional<Box> box = parseViewBox(marker.attribute("viewBox").value())) {
        const Affine fit = fitViewBox(marker.attribute("preserveAspectRatio").value(), *box,
                                      size.width, size.height);
        visible = fit.inverse().value_or(Affine()).mapBox(visible);
        inner.viewport.width = box->width();
        inner.viewport.height = box->height();
        // refX and refY decide where the content lies: only the scale is taken over.
        inner.toDevice = inner.toDevice * Affine{fit.a, 0, 0, fit.d, 0, 0};
    }
    const auto reference = [&](const char* name, Axis axis, double from, double span) {
        const std::string_view text = trimmed(marker.attribute(name).value());
        if (text == "left" || text == "top") return from;
        if (text == "center") return from + span / 2;
        if (text == "right" || text == "bottom") return from + span;
        return parseLength(text, inner.style.lengths(inner.viewport), axis, 0);
    };
    const double x = reference("refX", Axis::X, visible.left, visible.width());
    const double y = reference("refY", Axis::Y, visible.top, visible.height());
    inner.toDevice = inner.toDevice * translation(-x, -y);
    if (!inner.toDevice.isFinite()) return;

    const Properties properties(marker, document_.sheet());
    drawLayered(marker, properties, inner, [&](Renderer& renderer, const State& content) {
        const auto draw = [&] { renderer.drawChildren(marker, content); };
        if (content.style.overflows())
            draw();
        else
            renderer.drawInside(clippedViewport(visible, content.style.clip, lengths),
                                content.toDevice, draw);
    });
}

} // namespace Svg
} // namespace KAVO
