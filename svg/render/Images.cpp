// SPDX-License-Identifier: MIT
// Image elements: pictures, and drawings inside the drawing.
#include "graphics2d/ImageReduction.h"
#include "svg/document/References.h"
#include "svg/geometry/ViewBox.h"
#include "svg/render/PicturePixmap.h"
#include "svg/render/Renderer.h"
#include "svg/values/TextScanner.h"

#include <cmath>
#include <utility>

namespace KAVO {
namespace Svg {

using namespace Graphics2D;

namespace {

Picture halfOf(const Picture& picture)
{
    MMPixmap pixmap = pixmapOf(picture, picture.hasAlpha);
    Matrix2D once = {kFixedHalf, 0, 0, kFixedHalf, 0, 0};
    Picture half((picture.width + 1) / 2, (picture.height + 1) / 2, 0);
    half.hasAlpha = picture.hasAlpha;
    reduceImage(pixmap, once, half.pixels.data());
    return half;
}

// A picture as small as it may be for the transform, which is then that of its own texels, each of
// them texelSize of the picture's. An image that is shown many times is made smaller once.
MMPixmap reduced(const LoadedImage& image, Matrix2D& transform, double& texelSize)
{
    const Picture* picture = &image.picture;
    for (size_t i = 0; reducedImageRoom(pixmapOf(*picture, picture->hasAlpha), transform) > 0;
         ++i) {
        if (i == image.halves.size()) {
            Picture half = halfOf(*picture);
            image.halves.push_back(std::move(half));
        }
        picture = &image.halves[i];
        texelSize *= 2;
        for (Fixed* element : {&transform.a, &transform.b, &transform.c, &transform.d})
            *element *= 2; // below half of their range
    }
    return pixmapOf(*picture, picture->hasAlpha);
}

} // namespace

// What an element refers to; null when that is nothing that can be shown.
const LoadedImage* Renderer::imageOf(pugi::xml_node node)
{
    const std::string href(trimmed(hrefOf(node)));
    if (href.empty()) return nullptr;
    const LoadedImage& image = images_->loadImage(href, session_.imagePixelsLeft);
    if (image.problem.empty()) return &image;
    note("image that " + image.problem + ": " + href.substr(0, 40), node);
    return image.picture.pixels.empty() ? nullptr : &image; // as far as it goes
}

void Renderer::drawImage(pugi::xml_node node, const Properties& properties, const State& state)
{
    const LengthContext lengths = state.style.lengths(state.viewport);
    const LoadedImage* image = state.style.visible ? imageOf(node) : nullptr;
    if (!image) return;

    // A side that is not given follows from the other by the image's proportions.
    const Size own = image->drawing ? image->drawing->size()
                                    : Size{static_cast<double>(image->picture.width),
                                           static_cast<double>(image->picture.height)};
    const std::optional<double> width = findSize(properties[Property::Width], lengths, Axis::X);
    const std::optional<double> height = findSize(properties[Property::Height], lengths, Axis::Y);
    Size size{width.value_or(own.width), height.value_or(own.height)};
    if (width && !height) size.height = size.width * own.height / own.width;
    if (height && !width) size.width = size.height * own.width / own.height;
    const double x = parseLength(properties[Property::X], lengths, Axis::X, 0);
    const double y = parseLength(properties[Property::Y], lengths, Axis::Y, 0);
    drawImageIn(node, *image, {x, y, x + size.width, y + size.height}, state);
}

// Into a box of user space.
void Renderer::drawImageIn(pugi::xml_node node, const LoadedImage& image, const Box& box,
                           const State& state)
{
    const Size size{box.width(), box.height()};
    if (!(size.width > 0 && size.height > 0)) return;
    const Affine frame = state.toDevice * translation(box.left, box.top);
    const char* aspectRatio = node.attribute("preserveAspectRatio").value();
    const bool overflows = !image.drawing && state.style.overflows();
    if (!overflows && isOutside(frame.mapBox({0, 0, size.width, size.height}))) return;

    if (!image.drawing) {
        drawPicture(image, frame, size, aspectRatio, state.style);
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
    renderer.draw(frame, size, aspectRatio, state.style.opacity, state.depth + kPatternDepth);
    session_.picked = session_.picked ? current_ : picked;
    for (const Shortcoming& shortcoming : report.list())
        note(shortcoming.what + " in an image", node);
}

void Renderer::drawPicture(const LoadedImage& image, const Affine& frame, const Size& size,
                           const char* aspectRatio, const Style& style)
{
    const Picture& picture = image.picture;
    const Box texels{0, 0, static_cast<double>(picture.width), static_cast<double>(picture.height)};
    const Affine fit = fitViewBox(aspectRatio, texels, size.width, size.height);
    const Box placed = fit.mapBox(texels);
    const Box shown = style.overflows() ? placed : placed.common({0, 0, size.width, size.height});
    if (session_.pick) {
        const std::optional<PathSpace> space = PathSpace::make(frame, targetCentre());
        if (!space) return;
        Shape shape;
        shape.outline = Outline::rectangle(shown);
        context_.fillPaint.paintType = kPaintPicking;
        context_.strokePaint.paintType = kPaintNone;
        drawGeometry(shape, *space);
        return;
    }
    const std::optional<Affine> toTexels = fit.inverse();
    if (!toTexels) return;
    const Affine toDevice = frame * fit;
    Matrix2D transform = {toFixed(toDevice.a), toFixed(toDevice.b), toFixed(toDevice.c),
                          toFixed(toDevice.d), toFixed(toDevice.e), toFixed(toDevice.f)};
    double texelSize = 1;
    const MMPixmap pixmap = reduced(image, transform, texelSize);
    const Box part = toTexels->mapBox(shown);
    context_.patternFilter = static_cast<uint8_t>(style.imageFilter);
    context_.imageOpacity = static_cast<uint8_t>(std::lround(style.opacity * 255));
    context_.transform = transform;
    clearBounds();
    context_.drawImage(&pixmap, toFixed(part.left / texelSize), toFixed(part.top / texelSize),
                       toFixed(part.width() / texelSize), toFixed(part.height() / texelSize), 0);
    uniteBounds();
}

} // namespace Svg
} // namespace KAVO
