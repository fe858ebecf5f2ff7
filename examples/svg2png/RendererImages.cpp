// SPDX-License-Identifier: MIT
// Images.
#include "svg2png/Renderer.h"

#include "svg2png/ClipGuard.h"
#include "svg2png/ShiftedTarget.h"

using namespace KAVO;

using namespace KAVO::Graphics2D;

namespace {

// The part of the viewport of an image element that the image covers, or of the image that the
// viewport shows.
Box visibleImage(pugi::xml_node node, double width, double height, const Box& image)
{
    const Box fitted =
        fitViewBox(node.attribute("preserveAspectRatio").value(), image, width, height)
            .mapBox(image);
    return {std::max(fitted.left, 0.0), std::max(fitted.top, 0.0), std::min(fitted.right, width),
            std::min(fitted.bottom, height)};
}

} // namespace

// An upright image whose pixels are to stay sharp is drawn by drawImage, with sharp edges; any
// other as a path with smooth edges that a pattern fills, for without anti-aliasing the smoothing
// filters look from where a span starts, up to half a pixel beside the pixel's centre.
void Renderer::drawImage(pugi::xml_node node, const State& state)
{
    const Style& style = state.style;
    const LengthContext horizontal{state.viewport.width, style.fontSize};
    const LengthContext vertical{state.viewport.height, style.fontSize};
    const double x = parseLength(node.attribute("x").value(), horizontal, 0);
    const double y = parseLength(node.attribute("y").value(), vertical, 0);
    const std::string href = hrefOf(node);
    const Picture* picture = images_.load(href);
    if (!picture) {
        shortcomings_.insert("image " + href.substr(0, 40));
        return;
    }
    const Box whole{0, 0, static_cast<double>(picture->width),
                    static_cast<double>(picture->height)};
    const double width = parseLength(node.attribute("width").value(), horizontal, whole.right);
    const double height = parseLength(node.attribute("height").value(), vertical, whole.bottom);
    if (!style.visible || !(width > 0 && height > 0)) return;

    Affine frame = state.toDevice * translation(x, y);
    const Box frameBox = frame.mapBox({0, 0, width, height});
    Affine toDevice =
        frame * fitViewBox(node.attribute("preserveAspectRatio").value(), whole, width, height);
    if (isOutside(frameBox)) return;

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
    clipTo(frameBox);
    const ShiftedTarget shifted(context_, picture_, shadow_, frameBox);
    context_.patternFilter = static_cast<uint8_t>(style.imageFilter);
    const auto opacity = static_cast<uint8_t>(std::lround(style.opacity * 255));
    if (toDevice.b == 0 && toDevice.c == 0 && style.imageFilter == ImageFilter::Nearest) {
        context_.imageOpacity = opacity;
        context_.antiAlias = 0;
        context_.transform = texelsToDevice;
        context_.drawImage(&pixmap, 0, 0, fixFromInt(pictureWidth), fixFromInt(pictureHeight), 0);
        context_.antiAlias = options_.antiAlias;
        uniteBounds(false);
    } else {
        const std::optional<PathSpace> space = PathSpace::make(frame, pictureCentre());
        if (!space) return;
        Outline outline;
        const Box drawn = visibleImage(node, width, height, whole);
        outline.moveTo({drawn.left, drawn.top});
        outline.lineTo({drawn.right, drawn.top});
        outline.lineTo({drawn.right, drawn.bottom});
        outline.lineTo({drawn.left, drawn.bottom});
        outline.close();
        setPattern(context_.fillPaint, pixmap, texelsToDevice,
                   static_cast<MMPatternFilter>(context_.patternFilter));
        context_.fillPaint.paintOpacity = opacity;
        context_.strokePaint.paintType = kPaintNone;
        setTransform(*space);
        drawOutline(outline, *space);
        uniteBounds(true);
    }
}
