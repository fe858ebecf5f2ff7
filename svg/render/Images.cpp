// SPDX-License-Identifier: MIT
// Image elements: pictures, and drawings inside the drawing.
#include "graphics2d/PaintSetup.h"
#include "svg/document/References.h"
#include "svg/geometry/ViewBox.h"
#include "svg/render/ClipGuard.h"
#include "svg/render/Renderer.h"
#include "svg/render/ShiftedTarget.h"
#include "svg/values/TextScanner.h"

#include <cmath>
#include <utility>

namespace KAVO {
namespace Svg {

using namespace Graphics2D;

void Renderer::drawImage(pugi::xml_node node, const Properties& properties, const State& state)
{
    const Style& style = state.style;
    const LengthContext lengths = style.lengths(state.viewport);
    const std::string href(trimmed(hrefOf(node)));
    if (!style.visible || href.empty()) return;
    const LoadedImage& image = images_.load(href, session_.imagePixelsLeft);
    if (!image.problem.empty()) {
        note("image that " + image.problem + ": " + href.substr(0, 40), node);
        return;
    }

    // A side that is not given follows from the other by the image's proportions.
    const Size own = image.drawing ? image.drawing->size()
                                   : Size{static_cast<double>(image.picture.width),
                                          static_cast<double>(image.picture.height)};
    const std::optional<double> width = findLength(properties[Property::Width], lengths, Axis::X);
    const std::optional<double> height = findLength(properties[Property::Height], lengths, Axis::Y);
    Size size{width.value_or(own.width), height.value_or(own.height)};
    if (width && !height) size.height = size.width * own.height / own.width;
    if (height && !width) size.width = size.height * own.width / own.height;
    if (!(size.width > 0 && size.height > 0)) return;
    const Affine frame =
        state.toDevice * translation(parseLength(properties[Property::X], lengths, Axis::X, 0),
                                     parseLength(properties[Property::Y], lengths, Axis::Y, 0));
    if (isOutside(frame.mapBox({0, 0, size.width, size.height}))) return;
    const char* aspectRatio = node.attribute("preserveAspectRatio").value();

    if (!image.drawing) {
        drawPicture(image.picture, frame, size, aspectRatio, style);
        return;
    }
    if (static_cast<uint32_t>(state.depth + kPatternDepth) >= session_.limits.depth) {
        note("drawings inside drawings without end", node);
        return;
    }
    session_.elementsLeft += image.drawing->nodeCount();
    Report report;
    const pugi::xml_node picked = std::exchange(session_.picked, {});
    Renderer renderer(*image.drawing, context_, session_, report);
    renderer.draw(frame, size, aspectRatio, style.opacity, state.depth + kPatternDepth);
    session_.picked = session_.picked ? current_ : picked;
    for (const Shortcoming& shortcoming : report.list())
        note(shortcoming.what + " in an image", node);
}

// Pixels of an image are not shifted as paths are under anti-aliasing: an upright image is drawn by
// drawImage with sharp edges, any other as a path with smooth edges that a pattern fills.
void Renderer::drawPicture(const Picture& whole, const Affine& frame, const Size& size,
                           const char* aspectRatio, const Style& style)
{
    const Picture* picture = &whole;
    const Box texels{0, 0, static_cast<double>(whole.width), static_cast<double>(whole.height)};
    const Affine fit = fitViewBox(aspectRatio, texels, size.width, size.height);
    const Box fitted = fit.mapBox(texels);
    const Box shown{std::max(fitted.left, 0.0), std::max(fitted.top, 0.0),
                    std::min(fitted.right, size.width), std::min(fitted.bottom, size.height)};
    const Box shownBox = frame.mapBox(shown);
    Affine toDevice = frame * fit;
    if (session_.pick) {
        const std::optional<PathSpace> space = PathSpace::make(frame, targetCentre());
        if (!space) return;
        Shape shape;
        shape.outline = Outline::rectangle(shown);
        context_.fillPaint.paintType = kPaintPicking;
        context_.strokePaint.paintType = kPaintNone;
        drawGeometry(shape, *space, shownBox);
        return;
    }

    // The filters look at a few texels around a point, too few when an image shrinks a lot.
    Picture reduced;
    while (picture->width > 1 && picture->height > 1 && toDevice.norm() < 0.5 &&
           style.imageFilter != ImageFilter::Nearest) {
        Picture half = halved(*picture);
        toDevice = toDevice * Affine{static_cast<double>(picture->width) / half.width,   0, 0,
                                     static_cast<double>(picture->height) / half.height, 0, 0};
        reduced = std::move(half);
        picture = &reduced;
    }
    if (picture == &reduced) spreadColours(reduced);

    const auto pictureWidth = static_cast<uint16_t>(picture->width);
    const auto pictureHeight = static_cast<uint16_t>(picture->height);
    MMPixmap pixmap = {pictureWidth,
                       pictureHeight,
                       pictureWidth * 4u,
                       0,
                       const_cast<Pixel*>(picture->pixels.data()),
                       picture->hasAlpha};
    const Matrix2D texelsToDevice = {toFixed(toDevice.a), toFixed(toDevice.b), toFixed(toDevice.c),
                                     toFixed(toDevice.d), toFixed(toDevice.e), toFixed(toDevice.f)};
    const ClipGuard guard(context_);
    clipTo(frame.mapBox({0, 0, size.width, size.height}));
    const ShiftedTarget shifted(context_, shadow_, shownBox);
    context_.patternFilter = static_cast<uint8_t>(style.imageFilter);
    const auto opacity = static_cast<uint8_t>(std::lround(style.opacity * 255));
    clearBounds();
    if (toDevice.b == 0 && toDevice.c == 0 && style.imageFilter == ImageFilter::Nearest) {
        const uint8_t antiAlias = context_.antiAlias;
        context_.imageOpacity = opacity;
        context_.antiAlias = 0;
        context_.transform = texelsToDevice;
        context_.drawImage(&pixmap, 0, 0, fixFromInt(pictureWidth), fixFromInt(pictureHeight), 0);
        context_.antiAlias = antiAlias;
        uniteBounds(false);
        return;
    }
    const std::optional<PathSpace> space = PathSpace::make(frame, targetCentre());
    if (!space) return;
    setPattern(context_.fillPaint, pixmap, texelsToDevice,
               static_cast<MMPatternFilter>(context_.patternFilter));
    context_.fillPaint.paintOpacity = opacity;
    context_.strokePaint.paintType = kPaintNone;
    setTransform(*space);
    drawPath(Outline::rectangle(shown), *space);
    uniteBounds(true);
}

} // namespace Svg
} // namespace KAVO
