// SPDX-License-Identifier: MIT
// Shapes: their outlines, paints and pens.
#include "svg2png/Renderer.h"

#include "svg2png/ShiftedTarget.h"

using namespace KAVO;

using namespace KAVO::Graphics2D;

namespace {

bool mixesWithNeighbours(const MMPaint& paint)
{
    return paint.paintType != kPaintSolid && paint.paintType != kPaintNone;
}

} // namespace

void Renderer::drawShape(pugi::xml_node node, const State& state)
{
    if (!state.style.visible) return;
    const Shape shape = makeShape(node, state.viewport, state.style.fontSize);
    if (shape.malformed) shortcomings_.insert("malformed path data");
    if (!shape.outline.empty()) drawOutline(shape, state);
}

void Renderer::drawOutline(const Shape& shape, const State& state)
{
    const std::optional<PathSpace> space = PathSpace::make(state.toDevice, pictureCentre());
    if (!space) return;
    const Box bounds = shape.outline.bounds();
    const bool filled = setFill(state, bounds);
    const bool stroked = setStroke(state, bounds);
    if (!filled && !stroked) return;

    Box drawn = bounds;
    if (stroked) {
        const double reach = state.style.strokeWidth * std::max(state.style.miterLimit, 1.5);
        drawn = {bounds.left - reach, bounds.top - reach, bounds.right + reach,
                 bounds.bottom + reach};
        setPen(state, *space);
    }
    const Box deviceBox = state.toDevice.mapBox(drawn);
    if (isOutside(deviceBox)) return;

    setTransform(*space);
    context_.fillRule = state.style.evenOdd ? kFillEvenOdd : kFillNonZero;
    if (!mixesWithNeighbours(context_.fillPaint) && !mixesWithNeighbours(context_.strokePaint)) {
        drawGeometry(shape, *space, stroked);
        return;
    }
    const MMPaint strokePaint = context_.strokePaint;
    context_.strokePaint.paintType = kPaintNone;
    if (filled) drawOnePaint(shape, *space, deviceBox, false);
    context_.fillPaint.paintType = kPaintNone;
    context_.strokePaint = strokePaint;
    if (stroked) drawOnePaint(shape, *space, deviceBox, true);
}

// With only one of the paints set.
void Renderer::drawOnePaint(const Shape& shape, const PathSpace& space, const Box& deviceBox,
                            bool stroked)
{
    std::optional<ShiftedTarget> shifted;
    if (mixesWithNeighbours(stroked ? context_.strokePaint : context_.fillPaint))
        shifted.emplace(context_, picture_, shadow_, deviceBox);
    drawGeometry(shape, space, stroked);
}

void Renderer::drawGeometry(const Shape& shape, const PathSpace& space, bool stroked)
{
    const bool dashed = stroked && context_.dashArray;
    if (!(shape.box && !dashed && drawRoundedBox(*shape.box, space)))
        drawOutline(shape.outline, space);
    uniteBounds(true);
}

void Renderer::drawOutline(const Outline& outline, const PathSpace& space)
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

void Renderer::setTransform(const PathSpace& space)
{
    context_.transform = space.transform;
    // Anti-aliased pixels are centred on whole coordinates, those of SVG lie between them.
    if (options_.antiAlias) context_.transform.translate(-kFixedHalf, -kFixedHalf);
}

void Renderer::setPen(const State& state, const PathSpace& space)
{
    const Style& style = state.style;
    context_.strokeHalfWidth = std::max(1, space.length(style.strokeWidth / 2));
    context_.miterLimit = toFixed(style.miterLimit);
    context_.joinStyle = style.join;
    context_.capStyle = style.cap;
    setDashes(style, space);
}

void Renderer::setDashes(const Style& style, const PathSpace& space)
{
    dashes_.clear();
    double period = 0;
    for (size_t rounds = style.dashes.size() % 2 == 0 ? 1 : 2; rounds > 0; --rounds) {
        for (const double dash : style.dashes) {
            dashes_.push_back(space.length(dash));
            period += dash;
        }
    }
    context_.dashArray = nullptr;
    if (dashes_.empty() || dashes_.size() > 0xFFFF) return;
    context_.dashArray = dashes_.data();
    context_.dashCount = static_cast<uint16_t>(dashes_.size());
    context_.dashOffset = toFixed(std::fmod(style.dashOffset, period) * space.scale);
    // For the library a first dash without length is over before the line begins; SVG draws it.
    if (dashes_[0] == 0 && context_.dashOffset == 0) context_.dashOffset = -1;
}

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
    return style.strokeWidth > 0 &&
           setPaint(context_.strokePaint, strokeStore_, style.stroke,
                    style.strokeOpacity * style.opacity, state, userBounds);
}

bool Renderer::setPaint(MMPaint& paint, PaintStore& store, const PaintValue& value, double opacity,
                        const State& state, const Box& userBounds)
{
    paint.paintType = kPaintNone;
    paint.paintOpacity = static_cast<uint8_t>(std::lround(opacity * 255));
    if (value.kind == PaintValue::None || paint.paintOpacity == 0) return false;
    const pugi::xml_node server = document_.find(value.server);
    if (value.kind == PaintValue::Server && server)
        return setServer(paint, store, server, state, userBounds);
    if (value.kind == PaintValue::Server && !value.hasFallback) return false;
    paint.paintType = kPaintSolid;
    paint.paintColour = value.colour;
    return true;
}

// A gradient or a pattern.
bool Renderer::setServer(MMPaint& paint, PaintStore& store, pugi::xml_node server,
                         const State& state, const Box& userBounds)
{
    // Seen through glyphs, these paints take their opacity twice.
    if (state.glyphOverhang > 0)
        paint.paintOpacity =
            static_cast<uint8_t>(std::lround(std::sqrt(255.0 * paint.paintOpacity)));
    const std::string_view name = localName(server.name());
    if (name == "pattern") return setTiles(paint, store.tiles, server, state, userBounds);
    std::optional<Gradient> gradient =
        readGradient(document_, server, state.viewport, state.style.colour, shortcomings_);
    if (!gradient) {
        shortcomings_.insert("paint from <" + std::string(name) + ">");
        return false;
    }
    if (state.glyphOverhang > 0) gradient->adaptToGlyphs();
    const double shift = options_.antiAlias ? -0.5 : 0;
    const Affine toDevice = translation(shift, shift) * state.toDevice;
    return store.gradient.set(paint, std::move(*gradient), toDevice, userBounds);
}
