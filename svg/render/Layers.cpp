// SPDX-License-Identifier: MIT
// What is drawn aside first: groups with an opacity, and what clip paths and masks cut.
#include "svg/document/References.h"
#include "svg/render/ClipGuard.h"
#include "svg/render/Renderer.h"
#include "svg/values/TransformParser.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace KAVO {
namespace Svg {

using namespace Graphics2D;

namespace {

constexpr int kMostLayers = 50; // inside one another: each takes a picture of its own

int channelOf(Pixel pixel, int shift)
{
    return static_cast<int>(pixel >> shift & 0xFF);
}

// Of light times alpha, 0 to 255, by the weights of the standard in 16 bits.
int luminanceOf(Pixel pixel)
{
    return (channelOf(pixel, 16) * 13926 + channelOf(pixel, 8) * 46884 +
            channelOf(pixel, 0) * 4726 + 32768) >>
           16;
}

// One premultiplied pixel over another, by a weight up to 255.
Pixel over(Pixel above, Pixel below, int weight)
{
    constexpr int kWhole = 255 * 255;
    const int shown = kWhole - channelOf(above, 24) * weight; // of what is below
    Pixel result = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const int sum = channelOf(below, shift) * shown + channelOf(above, shift) * weight * 255;
        result |= static_cast<Pixel>(std::min(255, (sum + kWhole / 2) / kWhole)) << shift;
    }
    return result;
}

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

// The context draws into a premultiplied picture of the clip rectangle instead, which keeps its
// coordinates: its pixels are addressed from where the target's first one would be.
class Renderer::Redirection {
public:
    Redirection(MMContext2D& context, Picture& picture) : context_(context), target_(context.target)
    {
        const size_t width = static_cast<size_t>(picture.width);
        const size_t before =
            static_cast<size_t>(context.clipTop) * width + static_cast<size_t>(context.clipLeft);
        context.target.pixels = reinterpret_cast<Pixel*>(
            reinterpret_cast<uintptr_t>(picture.pixels.data()) - before * sizeof(Pixel));
        context.target.rowBytes = static_cast<uint32_t>(width * sizeof(Pixel));
    }
    ~Redirection() { context_.target = target_; }
    Redirection(const Redirection&) = delete;
    Redirection& operator=(const Redirection&) = delete;

private:
    MMContext2D& context_;
    MMPixmap target_;
};

template <class Function>
Picture Renderer::drawAside(Function draw)
{
    Picture picture(context_.clipRight - context_.clipLeft, context_.clipBottom - context_.clipTop,
                    0);
    const ClipGuard guard(context_);
    const Redirection redirection(context_, picture);
    draw();
    return picture;
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
    std::vector<uint8_t> coverage;
    multiply(coverByBox(box, toDevice), coverage, [](Pixel pixel) { return channelOf(pixel, 24); });
    if (session_.pick) { // a single pixel
        if (coverage[0] >= 128) draw();
        return;
    }
    ++layers_;
    const Picture layer = drawAside(draw);
    --layers_;
    composite(layer, coverage, 1);
}

Picture Renderer::coverByBox(const Box& box, const Affine& toDevice)
{
    const std::optional<PathSpace> space = PathSpace::make(toDevice, targetCentre());
    Shape shape;
    shape.outline = Outline::rectangle(box);
    const Box drawn = session_.bounds;
    Picture picture = drawAside([&] {
        if (!space) return;
        context_.fillPaint.paintType = kPaintSolid;
        context_.fillPaint.paintColour = 0xFFFFFFFF;
        context_.fillPaint.paintOpacity = 255;
        context_.strokePaint.paintType = kPaintNone;
        context_.fillRule = kFillNonZero;
        drawGeometry(shape, *space);
    });
    session_.bounds = drawn;
    return picture;
}

// A shape whose fill and stroke overlap, or a group of several: only then it matters whether the
// opacity is taken by the whole or by its parts.
bool Renderer::overlaps(pugi::xml_node node, const Style& style) const
{
    const std::string_view name = node.name();
    if (isShape(name)) {
        const bool filled = style.fill.kind != PaintValue::None;
        const bool stroked = style.stroke.kind != PaintValue::None && style.strokeWidth > 0;
        return filled + stroked + hasMarkers(style) > 1;
    }
    return name != "text" && name != "textArea" && name != "image" && name != "use" &&
           visibleChildren(node) > 1;
}

void Renderer::drawLayered(pugi::xml_node node, const Properties& properties, const State& state)
{
    const pugi::xml_node clip = referenced(node, properties[Property::ClipPath], "clipPath");
    const pugi::xml_node mask = referenced(node, properties[Property::Mask], "mask");
    const bool faded = state.style.opacity < 1 && !clipping_ && overlaps(node, state.style);
    if (!clip && !mask && (!faded || session_.pick)) {
        drawEntered(node, properties, state);
        return;
    }
    if (isActive(clip) || isActive(mask)) return;
    if (layers_ == kMostLayers) {
        note("clips, masks and opacities inside one another beyond the limit", node);
        if (!clip && !mask) drawEntered(node, properties, state);
        return;
    }
    const ClipGuard guard(context_);
    const Box bounds = boundsOf(node, properties, state);
    if (isShape(node.name()) && !hasMarkers(state.style)) clipTo(visiblePart(bounds, state));
    if (clip) narrowTo(clip, state, bounds);
    if (context_.clipLeft >= context_.clipRight || context_.clipTop >= context_.clipBottom) return;
    std::vector<uint8_t> coverage;
    if (clip && !coverByClip(clip, state, bounds, coverage)) return;
    if (session_.pick) { // a single pixel
        if (coverage.empty() || coverage[0] >= 128) drawEntered(node, properties, state);
        return;
    }
    if (mask && !coverByMask(mask, state, bounds, coverage)) return;

    State inner = state;
    inner.style.opacity = 1;
    ++layers_;
    const Picture layer = drawAside([&] { drawEntered(node, properties, inner); });
    --layers_;
    composite(layer, coverage, state.style.opacity);
}

pugi::xml_node Renderer::referenced(pugi::xml_node node, std::string_view value,
                                    std::string_view wanted)
{
    if (value.empty() || value == "none" || value == "inherit") return {};
    const pugi::xml_node found = document_.find(referenceIn(value));
    if (found.name() == wanted) return found;
    note(std::string(wanted) + (referenceIn(value).empty() ? " of a basic shape or another document"
                                                           : " that is not there"),
         node);
    return {};
}

void Renderer::composite(const Picture& layer, const std::vector<uint8_t>& coverage, double opacity)
{
    const MMPixmap& target = context_.target;
    const int weight = static_cast<int>(std::lround(opacity * 255));
    for (int y = 0; y < layer.height; ++y) {
        Pixel* row = target.pixels +
                     static_cast<size_t>(context_.clipTop + y) * (target.rowBytes / sizeof(Pixel));
        for (int x = 0; x < layer.width; ++x) {
            const Pixel above = layer.at(x, y);
            if (above >> 24 == 0) continue;
            const size_t i =
                static_cast<size_t>(y) * static_cast<size_t>(layer.width) + static_cast<size_t>(x);
            const int covered = coverage.empty() ? weight : (weight * coverage[i] + 127) / 255;
            Pixel& pixel = row[context_.clipLeft + x];
            pixel = over(above, pixel, covered);
        }
    }
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
    if (!applyTransform(clip, properties, inner)) return false;
    if (clip.attribute("clipPathUnits").value() != std::string_view("objectBoundingBox"))
        return true;
    if (!bounds.hasArea()) {
        if (bounds.empty()) note("bounding box of text", clip);
        return false;
    }
    inner.toDevice =
        inner.toDevice * Affine{bounds.width(), 0, 0, bounds.height(), bounds.left, bounds.top};
    return true;
}

// Nothing outside of the shapes of a clip path needs to be drawn.
void Renderer::narrowTo(pugi::xml_node clip, const State& state, const Box& bounds)
{
    State inner;
    const auto isText = [](pugi::xml_node n) { return n.name() == std::string_view("text"); };
    if (!clipState(clip, state, bounds, inner) || clip.find_child(isText)) return;
    const Box box = boundsOf(clip, Properties(clip, document_.sheet()), inner);
    clipTo(box.empty() ? Box{0, 0, 0, 0} : inner.toDevice.mapBox(box));
}

// Multiplies the coverage of each pixel of the clip rectangle by what the clip path covers; false
// when that is nothing.
bool Renderer::coverByClip(pugi::xml_node clip, const State& state, const Box& bounds,
                           std::vector<uint8_t>& coverage)
{
    const Active active(*this, clip);
    State inner;
    if (!clipState(clip, state, bounds, inner)) return false;
    const Properties properties(clip, document_.sheet());
    if (const pugi::xml_node outer = referenced(clip, properties[Property::ClipPath], "clipPath")) {
        if (isActive(outer) || !coverByClip(outer, state, bounds, coverage)) return false;
    }
    const bool clippingBefore = std::exchange(clipping_, true);
    const Picture picture = drawAside([&] {
        for (const pugi::xml_node child : clip.children()) {
            const std::string_view name = child.name();
            if (isShape(name) || name == "text" || name == "use") drawElement(child, inner);
        }
    });
    clipping_ = clippingBefore;
    multiply(picture, coverage, [](Pixel pixel) { return channelOf(pixel, 24); });
    return true;
}

bool Renderer::coverByMask(pugi::xml_node mask, const State& state, const Box& bounds,
                           std::vector<uint8_t>& coverage)
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
    if (inBox && !bounds.hasArea()) {
        if (bounds.empty()) note("bounding box of text", mask);
        return false;
    }
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
    if (const pugi::xml_node outer = referenced(mask, properties[Property::Mask], "mask")) {
        if (isActive(outer) || !coverByMask(outer, state, bounds, coverage)) return false;
    }
    // Outside of its rectangle a mask is black.
    const bool clippingBefore = std::exchange(clipping_, false);
    ++layers_;
    const Picture picture =
        drawAside([&] { drawInside(region, state.toDevice, [&] { drawChildren(mask, inner); }); });
    if (properties[Property::MaskType] == "alpha")
        multiply(picture, coverage, [](Pixel pixel) { return channelOf(pixel, 24); });
    else
        multiply(picture, coverage, luminanceOf);
    --layers_;
    clipping_ = clippingBefore;
    return true;
}

template <class Function>
void Renderer::multiply(const Picture& picture, std::vector<uint8_t>& coverage, Function valueOf)
{
    if (coverage.empty()) coverage.assign(picture.pixels.size(), 255);
    std::transform(picture.pixels.begin(), picture.pixels.end(), coverage.begin(), coverage.begin(),
                   [&](Pixel pixel, uint8_t covered) {
                       return static_cast<uint8_t>((valueOf(pixel) * covered + 127) / 255);
                   });
}

} // namespace Svg
} // namespace KAVO
