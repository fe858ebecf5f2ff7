// SPDX-License-Identifier: MIT
// Shapes: their fills, strokes and pens.
#include "svg/geometry/MiterClip.h"
#include "svg/geometry/PathWalk.h"
#include "svg/render/ClipGuard.h"
#include "svg/render/Renderer.h"

#include <algorithm>
#include <cmath>

namespace KAVO {
namespace Svg {

using namespace Graphics2D;

namespace {

constexpr double kCrowd = 1 << 13; // lines that cross a row, from which on rows count more

// Anti-aliasing off for the length of a scope, if wanted.
class CrispEdges {
public:
    CrispEdges(MMContext2D& context, bool wanted) : context_(context), before_(context.antiAlias)
    {
        if (wanted) context.antiAlias = 0;
    }
    ~CrispEdges() { context_.antiAlias = before_; }
    CrispEdges(const CrispEdges&) = delete;
    CrispEdges& operator=(const CrispEdges&) = delete;

private:
    MMContext2D& context_;
    uint8_t before_;
};

} // namespace

void Renderer::drawShape(pugi::xml_node node, const Properties& properties, const State& state)
{
    const Shape shape = makeShape(node, properties, state.style.lengths(state.viewport));
    if (shape.malformed)
        note(node.attribute("points") ? "malformed points" : "malformed path data", node);
    const std::string_view name = node.name();
    if (!shape.outline.empty())
        drawOutline(shape, state,
                    name == "path" || name == "line" || name == "polyline" || name == "polygon");
}

void Renderer::drawOutline(const Shape& shape, const State& state, bool markers)
{
    paintShape(shape, shape.outline.bounds(), state, markers);
}

// In the order that its style says. bounds: what the paints extend over, user space.
void Renderer::paintShape(const Shape& shape, const Box& bounds, const State& state, bool markers)
{
    const std::optional<PathSpace> space = PathSpace::make(state.toDevice, targetCentre());
    const CrispEdges crisp(context_, state.style.crisp);
    for (const PaintStep step : state.style.paintOrder) {
        if (!state.style.visible) return;
        if (step == PaintStep::Markers && markers && !clipping_) drawMarkers(shape.outline, state);
        if (!space || bounds.empty()) continue;
        if (step == PaintStep::Fill) drawFill(shape, *space, state, bounds);
        if (step == PaintStep::Stroke) drawStroke(shape, *space, state, bounds);
    }
}

void Renderer::drawFill(const Shape& shape, const PathSpace& space, const State& state,
                        const Box& bounds)
{
    const Box deviceBox = state.toDevice.mapBox(bounds.grown(state.glyphOverhang));
    if (isOutside(deviceBox) || !setFill(state, bounds)) return;
    context_.strokePaint.paintType = kPaintNone;
    const bool evenOdd = clipping_ ? state.style.clipEvenOdd : state.style.evenOdd;
    context_.fillRule = evenOdd ? kFillEvenOdd : kFillNonZero;
    drawGeometry(shape, space);
}

void Renderer::drawStroke(const Shape& shape, const PathSpace& space, const State& state,
                          const Box& bounds)
{
    const Style& style = state.style;
    if (clipping_ || style.strokeWidth <= 0 || style.stroke.kind == PaintValue::None) return;
    const double reach = style.strokeReach() + state.glyphOverhang;
    if (style.fixedStroke) {
        // The pen is a circle of device pixels.
        Shape mapped;
        mapped.outline = shape.outline.mapped(state.toDevice);
        mapped.pathLength = shape.pathLength;
        const std::optional<PathSpace> device = PathSpace::make(Affine(), targetCentre());
        if (setStroke(state, bounds)) drawPen(mapped, *device, state, bounds);
        return;
    }
    const Box deviceBox = state.toDevice.mapBox(bounds.grown(reach));
    if (isOutside(deviceBox) || !setStroke(state, bounds)) return;
    drawPen(shape, space, state, bounds);
}

// With the paint of the stroke set.
void Renderer::drawPen(const Shape& shape, const PathSpace& space, const State& state,
                       const Box& bounds)
{
    const Style& style = state.style;
    setPen(shape, state, space);
    context_.fillPaint.paintType = kPaintNone;
    if (style.curvesMiters && shape.outline.hasCurves()) note("arcs joins", current_);
    Shape miters;
    if (style.clipsMiters && style.dashes)
        note("miter-clip joins of dashes", current_);
    else if (style.clipsMiters)
        miters.outline = clippedMiters(shape.outline, style.strokeWidth, style.miterLimit);
    if (miters.outline.empty()) {
        drawGeometry(shape, space);
        return;
    }
    const ClipGuard guard(context_);
    clipTo(visiblePart(bounds, state));
    drawAsOne(context_.strokePaint, [&](const MMPaint& paint) {
        context_.strokePaint = paint;
        context_.fillPaint.paintType = kPaintNone;
        drawGeometry(shape, space);
        context_.strokePaint.paintType = kPaintNone;
        context_.fillPaint = paint;
        context_.fillRule = kFillNonZero;
        drawGeometry(miters, space);
    });
}

// With one of the paints set.
void Renderer::drawGeometry(const Shape& shape, const PathSpace& space)
{
    context_.transform = space.transform;
    clearBounds();
    if (!affordsRows(shape.outline, space)) {
        note("a shape of more lines than the limit", current_);
        return;
    }
    const bool dashed = context_.strokePaint.paintType != kPaintNone && context_.dashArray;
    if (!(shape.box && !dashed && drawRoundedBox(*shape.box, space)))
        drawPath(shape.outline, space);
    uniteBounds();
}

// Whether the lines of an outline, and of curves the lines through their controls, cross no more
// visible rows than the limit. Rows that many lines cross count more, as the work in them grows
// faster than the lines.
bool Renderer::affordsRows(const Outline& outline, const PathSpace& space) const
{
    const double top = context_.clipTop;
    const double bottom = context_.clipBottom;
    const bool stroked = context_.strokePaint.paintType != kPaintNone;
    const double most = static_cast<double>(session_.limits.shapeRows) / (stroked ? 4 : 1);
    if (static_cast<double>(outline.segments().size()) * 3 * (bottom - top + 1) <= most)
        return true;
    const Matrix2D& m = space.transform;
    const auto rowOf = [&](Point user) {
        const Point p = (user - space.origin) * space.scale;
        return std::clamp(toDouble(m.b) * p.x + toDouble(m.d) * p.y + toDouble(m.f), top, bottom);
    };
    double rows = 0;
    double unseen = 0; // lines above or below the picture
    double from = top;
    double highest = bottom;
    double lowest = top;
    for (const Outline::Segment& segment : outline.segments()) {
        const int count = segment.verb == Outline::Curve   ? 3
                          : segment.verb == Outline::Close ? 0
                                                           : 1;
        for (int i = 0; i < count; ++i) {
            const double to = rowOf(segment.points[i]);
            if (segment.verb != Outline::Move) rows += std::fabs(to - from) + 1;
            if (to == from && (to == top || to == bottom)) unseen += 1;
            from = to;
            highest = std::min(highest, to);
            lowest = std::max(lowest, to);
        }
    }
    const double lines = (rows - unseen) / (std::max(lowest - highest, 0.0) + 1); // in a row
    return rows * std::max(1.0, lines / kCrowd) <= most;
}

void Renderer::drawPath(const Outline& outline, const PathSpace& space)
{
    const MMPathBuilder path = encodePath(outline, space);
    if (path.outOfMemory()) context_.outOfMemory |= kScratchExhausted;
    context_.drawPath(path.words());
}

// By the library's own operation, unless the box reaches too far out.
bool Renderer::drawRoundedBox(const RoundedBox& box, const PathSpace& space)
{
    const Point centre = (box.centre - space.origin) * space.scale;
    const double halfWidth = box.halfWidth * space.scale;
    const double halfHeight = box.halfHeight * space.scale;
    if (!(std::fabs(centre.x) + halfWidth < PathSpace::kReach &&
          std::fabs(centre.y) + halfHeight < PathSpace::kReach))
        return false;
    context_.drawEllipticalRect(toFixed(centre.x), toFixed(centre.y), toFixed(halfWidth),
                                toFixed(halfHeight), toFixed(box.rx * space.scale),
                                toFixed(box.ry * space.scale));
    return true;
}

void Renderer::setPen(const Shape& shape, const State& state, const PathSpace& space)
{
    const Style& style = state.style;
    context_.strokeHalfWidth = std::max(1, space.length(style.strokeWidth / 2));
    context_.miterLimit = toFixed(std::max(1.0, style.miterLimit));
    context_.joinStyle = style.join;
    context_.capStyle = style.cap;
    setDashes(shape, style, space);
}

void Renderer::setDashes(const Shape& shape, const Style& style, const PathSpace& space)
{
    dashes_.clear();
    context_.dashArray = nullptr;
    if (!style.dashes) return;
    // Of the dashes, in user units.
    const double unit =
        shape.pathLength > 0 ? PathWalk(shape.outline).length() / shape.pathLength : 1;
    double period = 0;
    for (size_t rounds = style.dashes->size() % 2 == 0 ? 1 : 2; rounds > 0; --rounds) {
        for (const double dash : *style.dashes) {
            dashes_.push_back(space.length(dash * unit));
            period += dash;
        }
    }
    if (dashes_.size() > 0xFFFF) return;
    context_.dashArray = dashes_.data();
    context_.dashCount = static_cast<uint16_t>(dashes_.size());
    const double offset = std::fmod(style.dashOffset, period);
    context_.dashOffset = toFixed((offset < 0 ? offset + period : offset) * unit * space.scale);
}

} // namespace Svg
} // namespace KAVO
