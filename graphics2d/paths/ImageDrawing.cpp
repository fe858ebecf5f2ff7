// SPDX-License-Identifier: MIT
// Drawing images: the image becomes the current pattern paint, and the rectangle it is drawn into a
// quadrilateral on the target.
#include "graphics2d/MMContext2D.h"
#include "math/FixedMath.h"

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

// Fills what the transform makes of a rectangle.
void fillRectangle(MMContext2D& context, Fixed x0, Fixed y0, Fixed x1, Fixed y1)
{
    MMPoint2D quad[4] = {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
    context.transform.transform(quad, quad, 4);
    context.rasterMonotonePolygon(quad, 4);
}

} // namespace

void MMContext2D::drawImage(const MMPixmap* image, Fixed x, Fixed y, Fixed w, Fixed h,
                            uint8_t offsetByPosition)
{
    if (image == nullptr) return;
    const ImagePaintScope scope(*this, *image);
    currentPaint.patternHasAlpha = static_cast<uint8_t>(image->pixmapExtra);
    Matrix2D& toTexels = currentPaint.patternTransform;
    toTexels = transform;
    if (offsetByPosition != 0) toTexels.translate(x, y);
    toTexels.invert();
    fillRectangle(*this, x, y, wrapAdd(x, w), wrapAdd(y, h));
}

void MMContext2D::drawImage(const MMPixmap* image, const MMFixedRegion* source,
                            const MMPixmap* destination, const MMFixedRegion* destinationRect,
                            Degrees angle)
{
    if (image == nullptr || source == nullptr || destination == nullptr ||
        destinationRect == nullptr)
        return;
    const MMFixedRegion from = *source;
    const MMFixedRegion to = *destinationRect;
    clipLeft = 0;
    clipTop = 0;
    clipRight = clipEnd(destination->width);
    clipBottom = clipEnd(destination->height);
    target = *destination;

    const ImagePaintScope scope(*this, *image);
    transform = kIdentityMatrix;
    Matrix2D& toTexels = currentPaint.patternTransform;
    toTexels = kIdentityMatrix;
    toTexels.translate(wrapNeg(to.x0), wrapNeg(to.y0));
    if (angle != 0) {
        transform.rotateCenter(wrapSub(kDegrees360, angle), to.x0, to.y0);
        toTexels.rotate(angle);
    }
    toTexels.scale(fixDiv(wrapSub(from.x1, from.x0), wrapSub(to.x1, to.x0)),
                   fixDiv(wrapSub(from.y1, from.y0), wrapSub(to.y1, to.y0)));
    toTexels.translate(from.x0, from.y0);
    fillRectangle(*this, to.x0, to.y0, to.x1, to.y1);
}

} // namespace Graphics2D
} // namespace KAVO
