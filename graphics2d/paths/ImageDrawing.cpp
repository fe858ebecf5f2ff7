// SPDX-License-Identifier: MIT
// Drawing images: the image becomes the current pattern paint, and the rectangle it is drawn into a
// quadrilateral on the target.
#include "graphics2d/ImageReduction.h"
#include "graphics2d/MMContext2D.h"
#include "graphics2d/PixelBox.h"
#include "math/FixedMath.h"
#include "math/Inverse.h"
#include "memory/ScratchArray.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

// Makes the image the current paint until the scope ends; its parameters stay behind.
class ImagePaintScope {
public:
    ImagePaintScope(MMContext2D& context, const MMPixmap& image)
        : paint_(context.currentPaint), previousType_(paint_.paintType)
    {
        paint_.paintType = kPaintPattern;
        paint_.paintOpacity = context.imageOpacity;
        paint_.patternImage = image;
    }
    ~ImagePaintScope() { paint_.paintType = previousType_; }
    ImagePaintScope(const ImagePaintScope&) = delete;
    ImagePaintScope& operator=(const ImagePaintScope&) = delete;

private:
    MMPaint& paint_;
    uint32_t previousType_;
};

// A size as the end of the clip rectangle, which cannot reach beyond 32,767.
int16_t clipEnd(uint16_t size)
{
    return static_cast<int16_t>(size < INT16_MAX ? size : INT16_MAX);
}

struct Quad {
    MMPoint2D points[4];
};

// What the transform makes of a rectangle.
Quad quadOf(const Matrix2D& transform, Fixed x0, Fixed y0, Fixed x1, Fixed y1)
{
    Quad quad = {{{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}}};
    transform.transform(quad.points, quad.points, 4);
    return quad;
}

bool isVisible(const MMContext2D& context, const Quad& quad)
{
    const PixelBox box = drawableBox(context);
    const auto range = [&](Fixed MMPoint2D::*axis, int32_t low, int32_t high) {
        const auto& [p, q, r, s] = quad.points;
        const Fixed first = std::min({p.*axis, q.*axis, r.*axis, s.*axis});
        const Fixed last = std::max({p.*axis, q.*axis, r.*axis, s.*axis});
        return first <= fixFromInt(high) && last >= fixFromInt(low - 1);
    };
    return !box.empty() && context.drawSuppressed == 0 &&
           range(&MMPoint2D::x, box.left, box.right) && range(&MMPoint2D::y, box.top, box.bottom);
}

// Fills a quadrilateral with the image under a transform of its texels by the refined rules, from a
// reduced copy where there is room for it. The paint keeps the image itself.
void fillRefined(MMContext2D& context, Quad& quad, const Matrix2D& toDevice)
{
    MMPaint& paint = context.currentPaint;
    if (!invertRounded(toDevice, paint.patternTransform)) return;
    MMPixmap image = paint.patternImage;
    image.pixmapExtra = paint.patternHasAlpha;
    const bool mixes = context.patternFilter != kFilterNearest;
    const uint32_t words =
        mixes && isVisible(context, quad) ? reducedImageRoom(image, toDevice) : 0;
    if (words == 0) return context.rasterMonotonePolygon(quad.points, 4);

    ScratchArray<Pixel> room(context.scratchStack, words);
    Matrix2D reduced = toDevice;
    reduceImage(image, reduced, room.data());
    const MMPaint kept = paint;
    paint.patternImage = image;
    invertRounded(reduced, paint.patternTransform); // fits as its double did
    context.rasterMonotonePolygon(quad.points, 4);
    paint.patternImage = kept.patternImage;
    paint.patternTransform = kept.patternTransform;
}

} // namespace

void MMContext2D::drawImage(const MMPixmap* image, Fixed x, Fixed y, Fixed w, Fixed h,
                            uint8_t offsetByPosition)
{
    if (image == nullptr) return;
    const MMPixmap pixmap = *image; // which may be a part of this context
    const ImagePaintScope scope(*this, pixmap);
    currentPaint.patternHasAlpha = static_cast<uint8_t>(pixmap.pixmapExtra);
    Matrix2D toDevice = transform;
    if (offsetByPosition != 0) toDevice.translate(x, y);
    Quad quad = quadOf(transform, x, y, wrapAdd(x, w), wrapAdd(y, h));
    if (refined != 0) return fillRefined(*this, quad, toDevice);
    currentPaint.patternTransform = toDevice;
    currentPaint.patternTransform.invert();
    rasterMonotonePolygon(quad.points, 4);
}

void MMContext2D::drawImage(const MMPixmap* image, const MMFixedRegion* source,
                            const MMPixmap* destination, const MMFixedRegion* destinationRect,
                            Degrees angle)
{
    if (image == nullptr || source == nullptr || destination == nullptr ||
        destinationRect == nullptr)
        return;
    // Any of them may be a part of this context.
    const MMPixmap pixmap = *image;
    const MMFixedRegion from = *source;
    const MMFixedRegion to = *destinationRect;
    target = *destination;
    clipMask = nullptr;
    maskTarget = nullptr;
    layer = nullptr;
    clipLeft = 0;
    clipTop = 0;
    clipRight = clipEnd(target.width);
    clipBottom = clipEnd(target.height);

    const ImagePaintScope scope(*this, pixmap);
    transform = kIdentityMatrix;
    if (angle != 0) transform.rotateCenter(wrapSub(kDegrees360, angle), to.x0, to.y0);
    Quad quad = quadOf(transform, to.x0, to.y0, to.x1, to.y1);
    const Fixed width = wrapSub(to.x1, to.x0);
    const Fixed height = wrapSub(to.y1, to.y0);
    const Fixed sourceWidth = wrapSub(from.x1, from.x0);
    const Fixed sourceHeight = wrapSub(from.y1, from.y0);
    if (refined != 0) {
        Matrix2D toDevice = kIdentityMatrix;
        toDevice.translate(wrapNeg(from.x0), wrapNeg(from.y0));
        toDevice.scale(fixDiv(width, sourceWidth), fixDiv(height, sourceHeight));
        toDevice.translate(to.x0, to.y0);
        toDevice *= transform;
        return fillRefined(*this, quad, toDevice);
    }
    Matrix2D& toTexels = currentPaint.patternTransform;
    toTexels = kIdentityMatrix;
    toTexels.translate(wrapNeg(to.x0), wrapNeg(to.y0));
    if (angle != 0) toTexels.rotate(angle);
    toTexels.scale(fixDiv(sourceWidth, width), fixDiv(sourceHeight, height));
    toTexels.translate(from.x0, from.y0);
    rasterMonotonePolygon(quad.points, 4);
}

} // namespace Graphics2D
} // namespace KAVO
