// SPDX-License-Identifier: MIT
// What is drawn aside first: groups with an opacity or a blend mode, and what clip paths and masks
// cut.
#include "svg/document/References.h"
#include "svg/render/ClipGuard.h"
#include "svg/render/Renderer.h"
#include "svg/values/BlendModes.h"
#include "svg/values/TextScanner.h"
#include "svg/values/TransformParser.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace KAVO {
namespace Svg {

using namespace Graphics2D;

namespace {

bool hasMarkers(const Style& style)
{
    return std::any_of(std::begin(style.markers), std::end(style.markers),
                       [](std::string_view marker) { return !marker.empty(); });
}

int visibleChildren(pugi::xml_node node)
{
    int count = 0;
    for (const pugi::xml_node child : node.children())
        count += child.type() == pugi::node_element;
    return count;
}

} // namespace

// Levels of the pixels in the clip rectangle as it is.
class Renderer::Coverage {
public:
    explicit Coverage(const MMContext2D& context, uint8_t level = 0)
        : levels_(static_cast<size_t>(std::max(0, context.clipRight - context.clipLeft)) *
                  static_cast<size_t>(std::max(0, context.clipBottom - context.clipTop))),
          mask_(makeMask(levels_.data(), context.clipLeft, context.clipTop, context.clipRight,
                         context.clipBottom))
    {
        fillMask(mask_, level);
    }
    Coverage(const Coverage&) = delete;
    Coverage& operator=(const Coverage&) = delete;

    const MMMask& mask() const { return mask_; }
    // While picking, the rectangle is a single pixel.
    bool coversPick() const { return !levels_.empty() && levels_[0] >= 128; }

    // Keeps what draw() covers.
    template <class Function>
    void cutTo(MMContext2D& context, Function draw)
    {
        Coverage drawn(context);
        MMMask* const outer = std::exchange(context.maskTarget, &drawn.mask_);
        draw();
        context.maskTarget = outer;
        intersectMask(mask_, drawn.mask_);
    }

    // Keeps what the pixels that draw() draws say.
    template <class Function>
    void cutBy(MMContext2D& context, MMMaskSource source, Function draw)
    {
        Coverage drawn(context);
        MMLayer layer(context);
        draw();
        layer.fill(drawn.mask_, source);
        layer.discard();
        intersectMask(mask_, drawn.mask_);
    }

private:
    std::vector<uint8_t> levels_;
    MMMask mask_;
};

template <class Function>
void Renderer::drawInLayer(const MMLayerOptions& options, Function draw)
{
    ++layers_;
    {
        const MMLayer layer(context_, options);
        draw();
    }
    --layers_;
}

// A box that lies square on the pixels needs no more than the context's clip rectangle.
void Renderer::drawInside(const Box& box, const Affine& toDevice, const std::function<void()>& draw)
{
    const ClipGuard guard(context_);
    clipTo(toDevice.mapBox(box));
    if (context_.clipLeft >= context_.clipRight || context_.clipTop >= context_.clipBottom) return;
    const bool square =
        (toDevice.b == 0 && toDevice.c == 0) || (toDevice.a == 0 && toDevice.d == 0);
    if (square || layers_ == kMostLayers) {
        draw();
        return;
    }
    Coverage coverage(context_, 255);
    coverage.cutTo(context_, [&] { coverOutline(Outline::rectangle(box), false, toDevice); });
    if (session_.pick) {
        if (coverage.coversPick()) draw();
        return;
    }
    MMLayerOptions options;
    options.mask = &coverage.mask();
    drawInLayer(options, draw);
}

void Renderer::coverOutline(const Outline& outline, bool evenOdd, const Affine& toDevice)
{
    const std::optional<PathSpace> space = PathSpace::make(toDevice, targetCentre());
    if (!space) return;
    Shape shape;
    shape.outline = outline;
    const Box drawn = session_.bounds;
    context_.fillPaint.paintType = kPaintSolid;
    context_.fillPaint.paintColour = 0xFFFFFFFF;
    context_.fillPaint.paintOpacity = 255;
    context_.strokePaint.paintType = kPaintNone;
    context_.fillRule = evenOdd ? kFillEvenOdd : kFillNonZero;
    drawGeometry(shape, *space);
    session_.bounds = drawn;
}

// Paints what draw() covers with the paint that it is given, once also where its parts overlap.
void Renderer::drawAsOne(const MMPaint& paint,
                         const std::function<void(const MMPaint& paint)>& draw)
{
    const MMPaint wanted = paint;
    const bool opaque = wanted.paintType == kPaintSolid && wanted.paintOpacity == 255 &&
                        wanted.paintColour >> 24 == 255;
    if (opaque || session_.pick || layers_ == kMostLayers) {
        draw(wanted);
        return;
    }
    MMPaint covering = wanted;
    covering.paintType = kPaintSolid;
    covering.paintColour = 0xFFFFFFFF;
    covering.paintOpacity = 255;
    Coverage coverage(context_, 255);
    coverage.cutTo(context_, [&] { draw(covering); });
    MMLayerOptions options;
    options.mask = &coverage.mask();
    drawInLayer(options, [&] { fillClip(wanted); });
}

// All that the clip rectangle holds.
void Renderer::fillClip(const MMPaint& paint)
{
    const std::optional<PathSpace> space = PathSpace::make(Affine(), targetCentre());
    Shape shape;
    shape.outline = Outline::rectangle(
        {static_cast<double>(context_.clipLeft), static_cast<double>(context_.clipTop),
         static_cast<double>(context_.clipRight), static_cast<double>(context_.clipBottom)});
    const Box drawn = session_.bounds;
    context_.fillPaint = paint;
    context_.strokePaint.paintType = kPaintNone;
    context_.fillRule = kFillNonZero;
    drawGeometry(shape, *space);
    session_.bounds = drawn;
}

// Whether the text, or a span in it that says so itself, is drawn with its outlines.
bool Renderer::strokesText(pugi::xml_node node, const Style& style) const
{
    if (style.stroke.kind != PaintValue::None) return true;
    return node.find_node([&](pugi::xml_node inner) {
        return inner.type() == pugi::node_element &&
               !Properties(inner, document_.sheet())[Property::Stroke].empty();
    });
}

// A shape or a text whose fill and stroke overlap, or a group of several: only then it matters
// whether the opacity is taken by the whole or by its parts.
bool Renderer::overlaps(pugi::xml_node node, const Style& style) const
{
    const std::string_view name = node.name();
    if (isShape(name)) {
        const bool filled = style.fill.kind != PaintValue::None;
        const bool stroked = style.stroke.kind != PaintValue::None && style.strokeWidth > 0;
        return filled + stroked + hasMarkers(style) > 1;
    }
    if (name == "text") return strokesText(node, style);
    return name != "textArea" && name != "image" && name != "use" && visibleChildren(node) > 1;
}

void Renderer::drawLayered(pugi::xml_node node, const Properties& properties, const State& state,
                           const Content& content)
{
    const Clip clip = clipOf(node, properties, state);
    const pugi::xml_node mask =
        clipping_ ? pugi::xml_node() : referenced(node, properties[Property::Mask], "mask");
    MMLayerOptions options;
    if (!clipping_) {
        options.blendMode = blendModeOf(properties[Property::MixBlendMode]);
        options.opacity = static_cast<uint8_t>(std::lround(state.style.opacity * 255));
    }
    const bool isolated =
        (properties[Property::Isolation] == "isolate" || node == document_.root()) &&
        document_.blends();
    const bool filtered = isFiltered(properties);
    const bool faded =
        options.opacity < 255 && (filtered || document_.blends() || overlaps(node, state.style));
    const bool aside = faded || isolated || options.blendMode != kBlendNormal;
    if (!clip && !mask && (!aside || session_.pick)) {
        drawFiltered(node, properties, state, content);
        return;
    }
    if (layers_ == kMostLayers) {
        note("clips, masks and opacities inside one another beyond the limit", node);
        if (!clip && !mask) content(*this, state);
        return;
    }
    const ClipGuard guard(context_);
    const Box bounds = boundsOf(node, properties, state);
    if (isShape(node.name()) && !hasMarkers(state.style) && !filtered)
        clipTo(visiblePart(bounds, state));
    if (clip) narrowTo(clip, state, bounds);
    if (context_.clipLeft >= context_.clipRight || context_.clipTop >= context_.clipBottom) return;
    std::optional<Coverage> coverage;
    if (clip || mask) {
        coverage.emplace(context_, 255);
        options.mask = &coverage->mask();
    }
    if (clip && !coverByClip(clip, state, bounds, *coverage)) return;
    if (session_.pick) {
        if (!clip || coverage->coversPick()) content(*this, state);
        return;
    }
    if (mask && !coverByMask(mask, state, bounds, *coverage)) return;

    State inner = state;
    inner.style.opacity = 1;
    drawInLayer(options, [&] { drawFiltered(node, properties, inner, content); });
}

Renderer::Clip Renderer::clipOf(pugi::xml_node node, const Properties& properties,
                                const State& state)
{
    Clip clip;
    const std::string_view value = properties[Property::ClipPath];
    if (value.empty() || value == "none" || value == "inherit") return clip;
    if (const std::optional<BasicShape> shape = parseBasicShape(value); shape && !isUrl(value)) {
        Box box{0, 0, state.viewport.width, state.viewport.height};
        if (shape->box != ShapeBox::View) {
            State measured = state;
            measured.strokesCount = shape->box == ShapeBox::Stroke;
            box = boundsOf(node, properties, measured);
        }
        clip.shape = outlineOf(*shape, box, state.style.lengths(state.viewport));
        if (clip.shape) return clip;
    }
    clip.element = referenced(node, value, "clipPath");
    return clip;
}

pugi::xml_node Renderer::referenced(pugi::xml_node node, std::string_view value,
                                    std::string_view wanted)
{
    if (value.empty() || value == "none" || value == "inherit") return {};
    const pugi::xml_node found = document_.find(referenceIn(value));
    const bool isWanted = found.name() == wanted;
    if (isWanted && !isActive(found)) return found;
    note(std::string(wanted) + (isWanted                     ? " inside itself"
                                : !isUrl(value)              ? " of an unknown kind"
                                : referenceIn(value).empty() ? " of another document"
                                                             : " that is not there"),
         node);
    return {};
}

// How the children of a clip path are drawn; false when they cover nothing.
bool Renderer::clipState(pugi::xml_node clip, const State& state, const Box& bounds, State& inner)
{
    inner.depth = state.depth + 1;
    inner.viewport = state.viewport;
    inner.style = document_.styleOf(clip, state.viewport);
    inner.style.opacity = 1;
    inner.toDevice = state.toDevice;
    const Properties properties(clip, document_.sheet());
    applyTransform(clip, properties, inner);
    if (clip.attribute("clipPathUnits").value() != std::string_view("objectBoundingBox"))
        return true;
    if (!bounds.hasArea()) return false;
    inner.toDevice =
        inner.toDevice * Affine{bounds.width(), 0, 0, bounds.height(), bounds.left, bounds.top};
    return true;
}

// Nothing outside of the shapes of a clip path needs to be drawn.
void Renderer::narrowTo(const Clip& clip, const State& state, const Box& bounds)
{
    if (clip.shape) {
        const Box box = clip.shape->outline.bounds();
        clipTo(box.empty() ? Box{0, 0, 0, 0} : state.toDevice.mapBox(box));
        return;
    }
    State inner;
    // Letters reach beyond the box of their text, which may be used, too.
    const auto mayBeText = [](pugi::xml_node n) {
        return n.name() == std::string_view("text") || n.name() == std::string_view("use");
    };
    if (!clipState(clip.element, state, bounds, inner) || clip.element.find_child(mayBeText))
        return;
    const Box box = boundsOf(clip.element, Properties(clip.element, document_.sheet()), inner);
    clipTo(box.empty() ? Box{0, 0, 0, 0} : inner.toDevice.mapBox(box));
}

// Multiplies the coverage of each pixel of the clip rectangle by what the clip path covers; false
// when that is nothing.
bool Renderer::coverByClip(const Clip& clip, const State& state, const Box& bounds,
                           Coverage& coverage)
{
    if (clip.shape) {
        const ShapeOutline& shape = *clip.shape;
        coverage.cutTo(context_,
                       [&] { coverOutline(shape.outline, shape.evenOdd, state.toDevice); });
        return true;
    }
    const Active active(*this, clip.element);
    State inner;
    if (!clipState(clip.element, state, bounds, inner)) return false;
    const Properties properties(clip.element, document_.sheet());
    if (const Clip outer = clipOf(clip.element, properties, state)) {
        if (!coverByClip(outer, state, bounds, coverage)) return false;
    }
    const bool clippingBefore = std::exchange(clipping_, true);
    coverage.cutTo(context_, [&] {
        for (const pugi::xml_node child : clip.element.children()) {
            const std::string_view name = child.name();
            if (isShape(name) || name == "text" || name == "use") drawElement(child, inner);
        }
    });
    clipping_ = clippingBefore;
    return true;
}

bool Renderer::coverByMask(pugi::xml_node mask, const State& state, const Box& bounds,
                           Coverage& coverage)
{
    const Active active(*this, mask);
    State inner;
    inner.depth = state.depth + 1;
    inner.viewport = state.viewport;
    inner.style = document_.styleOf(mask, state.viewport);
    inner.style.opacity = 1;
    inner.toDevice = state.toDevice;

    // The mask's own rectangle.
    const bool inBox = mask.attribute("maskUnits").value() != std::string_view("userSpaceOnUse");
    if (inBox && !bounds.hasArea()) return false;
    Viewport units = state.viewport;
    if (inBox) units.width = units.height = 1;
    const LengthContext lengths = inner.style.lengths(units);
    const auto length = [&](const char* name, Axis axis, double share) {
        const double whole = axis == Axis::X ? units.width : units.height;
        return parseLength(mask.attribute(name).value(), lengths, axis, share * whole);
    };
    const double x = length("x", Axis::X, -0.1);
    const double y = length("y", Axis::Y, -0.1);
    Box region{x, y, x + length("width", Axis::X, 1.2), y + length("height", Axis::Y, 1.2)};
    const Affine boxUnits{bounds.width(), 0, 0, bounds.height(), bounds.left, bounds.top};
    if (inBox) region = boxUnits.mapBox(region);
    if (!region.hasArea()) return false;
    if (mask.attribute("maskContentUnits").value() == std::string_view("objectBoundingBox")) {
        if (!bounds.hasArea()) return false;
        inner.toDevice = inner.toDevice * boxUnits;
    }

    const Properties properties(mask, document_.sheet());
    noteUndrawn(mask, properties);
    if (const pugi::xml_node outer = referenced(mask, properties[Property::Mask], "mask")) {
        if (!coverByMask(outer, state, bounds, coverage)) return false;
    }
    if (const Clip clip = clipOf(mask, properties, inner)) {
        if (!coverByClip(clip, inner, boundsOf(mask, properties, inner), coverage)) return false;
    }
    // Outside of its rectangle a mask is black.
    const bool clippingBefore = std::exchange(clipping_, false);
    ++layers_;
    const MMMaskSource source = equalsIgnoringCase(properties[Property::MaskType], "alpha")
                                    ? kMaskFromAlpha
                                : inner.style.linearMasks ? kMaskFromLinearLuminance
                                                          : kMaskFromLuminance;
    coverage.cutBy(context_, source,
                   [&] { drawInside(region, state.toDevice, [&] { drawChildren(mask, inner); }); });
    --layers_;
    clipping_ = clippingBefore;
    return true;
}

} // namespace Svg
} // namespace KAVO
