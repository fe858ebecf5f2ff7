// SPDX-License-Identifier: MIT
// From end points, radii, stops, images and transforms to the fields that the strip fillers read.
//
// The gradient fillers follow their parameter in 16.16 steps and the radial one in half units, so
// its scale decides how finely they draw. This file therefore chooses the unit of the parameter
// itself and scales the stop offsets to it. It runs once per paint, so intermediate results are
// 64 bits wide, and its functions are marked as cold, so that they are compiled for size.
#include "graphics2d/PaintSetup.h"

#include "graphics2d/RampWriter.h"
#include "math/Inverse.h"
#include "math/WideMath.h"

#include <algorithm>
#include <initializer_list>

namespace KAVO {
namespace Graphics2D {

namespace {

// The linear parameter's step along the axis where it changes faster, per device pixel. Thirteen
// bits keep the slope, and two targets of 32,768 pixels across still do not wrap.
constexpr int64_t kLinearStep = 0x2000;

// The refined fillers follow their parameters in 64 bits: offsets as large as they may be are best.
constexpr int64_t kRefinedStep = 0x40000000;

// A ramp's colour step per pixel is its length's reciprocal in 16 bits, so a wide segment drifts:
// by up to 1/256 of its length in pixels, in units of a channel, over its whole width. Cutting it
// into n pieces divides that by n * n.
constexpr int64_t kLongestPiece = 256; // pixels along the row

// The radial parameter counts quarters of a device pixel where the circle is widest, or eighths
// where it is narrowest if that is coarser, as long as its square's slope, 2 * radius * unit *
// unit, stays within 16.16: for a circle, up to a radius of 1,023 pixels. Offsets from the centre
// are mapped into 16.16 too, so a target must not reach further than 4,096 pixels from it, or 8,192
// for a circle.
constexpr int64_t kRadialUnits = 4;
constexpr int64_t kMostRadialUnits = 8;
constexpr int64_t kGreatestSlope = 0x7FFF;

struct Vector {
    int64_t x;
    int64_t y;

    // Scaled by a power of two so that the longer component has 29 bits.
    Vector normalized() const
    {
        const int32_t shift = shiftTo29Bits(std::max(absolute(x), absolute(y)));
        return {shiftDown(x, -shift), shiftDown(y, -shift)};
    }
};

// The linear part applied to a vector of at most 32 bits, 16.16. Halved on the way: the sum of two
// full products would not fit.
Vector mapped(const Matrix2D& m, Vector v)
{
    return {((m.a * v.x >> 1) + (m.c * v.y >> 1)) >> 15,
            ((m.b * v.x >> 1) + (m.d * v.y >> 1)) >> 15};
}

// a . b of 16.16 numbers.
int64_t dot(Vector a, Vector b)
{
    return (a.x * b.x + a.y * b.y) >> 16;
}

bool isUsable(const GradientStops& stops, const GradientRamp& ramp)
{
    return stops.count != 0 && stops.colours != nullptr && stops.offsets != nullptr &&
           ramp.colours != nullptr && ramp.offsets != nullptr;
}

// One colour everywhere, for gradients without extent.
void addLastStop(RampWriter& writer, const GradientStops& stops)
{
    writer.add(stops.colours[stops.count - 1], 0);
}

// A power of two so small that its products with the vectors fit, at most kRefinedStep.
int64_t greatestStep(std::initializer_list<Vector> vectors)
{
    int64_t step = kRefinedStep;
    for (const Vector& v : vectors)
        while (step > 1 && std::max(absolute(v.x), absolute(v.y)) > (int64_t{1} << 61) / step)
            step >>= 1;
    return step;
}

} // namespace

[[gnu::cold]] void setLinearGradient(MMPaint& paint, MMPoint2D start, MMPoint2D end,
                                     const Matrix2D& transform, const GradientStops& stops,
                                     const GradientRamp& ramp, bool refined)
{
    paint.paintType = kPaintLinearGradient;
    paint.gradientOriginX = paint.gradientOriginY = 0;
    paint.gradientStepX = paint.gradientStepY = 0;
    RampWriter writer(paint, ramp);
    if (!isUsable(stops, ramp)) return;

    // Lines of equal colour run along the image of the gradient's perpendicular; the parameter
    // grows across them.
    const Vector from = mapped(transform, {start.x, start.y});
    const Vector to = mapped(transform, {end.x, end.y});
    const Vector along = {to.x - from.x, to.y - from.y};
    const Vector own = Vector{int64_t{end.x} - start.x, int64_t{end.y} - start.y}.normalized();
    const Vector line = mapped(transform, {-own.y, own.x}).normalized();
    const Vector across = {line.y, -line.x};
    const int64_t longer = std::max(absolute(across.x), absolute(across.y));
    if (longer == 0) return addLastStop(writer, stops);

    // An origin far outside is replaced by one at hand, and the offsets by as much.
    const Vector origin = {from.x + transform.e, from.y + transform.f};
    const Vector near = {std::clamp(origin.x, -kGreatestOffset, kGreatestOffset - 1),
                         std::clamp(origin.y, -kGreatestOffset, kGreatestOffset - 1)};
    const Vector moved = {origin.x - near.x, origin.y - near.y};
    Vector step;
    int64_t length; // of the gradient, in units of the parameter
    int64_t offset; // of its start
    int64_t longerStep = refined ? greatestStep({along, moved}) : kLinearStep;
    do {
        step = {divideRounded(across.x * longerStep, longer),
                divideRounded(across.y * longerStep, longer)};
        length = dot(step, along);
        offset = dot(step, moved);
        longerStep >>= 1;
    } while (std::max(absolute(length), refined ? absolute(offset) : int64_t{0}) >
                 kGreatestOffset &&
             longerStep != 0);
    if (length == 0) return addLastStop(writer, stops);
    if (length < 0) {
        step = {-step.x, -step.y};
        length = -length;
        offset = dot(step, moved);
    }

    paint.gradientOriginX = static_cast<Fixed>(near.x);
    paint.gradientOriginY = static_cast<Fixed>(near.y);
    paint.gradientStepX = static_cast<Fixed>(step.x);
    paint.gradientStepY = static_cast<Fixed>(step.y);
    const bool isCut = !refined && step.x != 0;
    const int64_t piece = isCut ? absolute(step.x) * kLongestPiece : INT64_MAX;
    writer.addAll(stops, offset, std::min(length, kGreatestOffset), piece,
                  refined ? kNoAlpha : leastRaisedAlpha(paint.paintOpacity));
}

[[gnu::cold]] void setRadialGradient(MMPaint& paint, MMPoint2D centre, Fixed radius,
                                     const Matrix2D& transform, const GradientStops& stops,
                                     const GradientRamp& ramp, bool refined)
{
    paint.paintType = kPaintRadialGradient;
    paint.radialXToU = paint.radialYToV = kFixedOne;
    paint.radialXToV = paint.radialYToU = 0;
    const Vector middle = mapped(transform, {centre.x, centre.y});
    paint.radialCenterX =
        static_cast<Fixed>(std::clamp(middle.x + transform.e, -kGreatestOffset, kGreatestOffset));
    paint.radialCenterY =
        static_cast<Fixed>(std::clamp(middle.y + transform.f, -kGreatestOffset, kGreatestOffset));
    RampWriter writer(paint, ramp);
    if (!isUsable(stops, ramp)) return;

    // The transform's greatest and smallest stretch are the singular values: half the sum of two
    // lengths, and the determinant divided by that. The elements are scaled by 2^shift.
    const int64_t greatest = std::max({absolute(transform.a), absolute(transform.b),
                                       absolute(transform.c), absolute(transform.d)});
    const int32_t shift = shiftTo29Bits(greatest);
    const int64_t a = shiftDown(transform.a, -shift);
    const int64_t b = shiftDown(transform.b, -shift);
    const int64_t c = shiftDown(transform.c, -shift);
    const int64_t d = shiftDown(transform.d, -shift);
    const int64_t turning =
        integerRoot(static_cast<uint64_t>((a + d) * (a + d) + (b - c) * (b - c)));
    const int64_t mirroring =
        integerRoot(static_cast<uint64_t>((a - d) * (a - d) + (b + c) * (b + c)));
    const int64_t widest = (turning + mirroring) / 2;
    if (radius <= 0 || widest == 0) return addLastStop(writer, stops);
    const int64_t narrowest = absolute(a * d - b * c) / widest;

    if (narrowest == 0) return addLastStop(writer, stops);

    // Units per device pixel where the circle is narrowest, 16.16.
    const int64_t narrowRadius = shiftDown(radius * narrowest, 16 + shift);
    const int64_t devicePixels = shiftDown(radius * widest, 32 + shift) + 1;
    const int64_t units = refined
                              ? std::min(kRefinedStep, (kGreatestOffset << 16) / (narrowRadius + 1))
                              : std::min(std::min(kRadialUnits * kFixedOne * widest / narrowest,
                                                  kMostRadialUnits * kFixedOne),
                                         int64_t{integerRoot(static_cast<uint64_t>(
                                             (kGreatestSlope << 32) / (2 * devicePixels)))});
    const int64_t outer = shiftDown(narrowRadius * units, 16);
    if (outer == 0) return addLastStop(writer, stops);

    // The inverse without its determinant, which the unit makes up for.
    paint.radialXToU = static_cast<Fixed>(divideRounded(d * units, widest));
    paint.radialXToV = static_cast<Fixed>(divideRounded(-b * units, widest));
    paint.radialYToU = static_cast<Fixed>(divideRounded(-c * units, widest));
    paint.radialYToV = static_cast<Fixed>(divideRounded(a * units, widest));
    writer.addAll(stops, 0, std::min(outer, kGreatestOffset), INT64_MAX, kNoAlpha);
}

[[gnu::cold]] void setPattern(MMPaint& paint, const MMPixmap& image, const Matrix2D& transform,
                              MMPatternFilter filter, bool refined)
{
    // Either argument may be the paint's own.
    const MMPixmap pixmap = image;
    Matrix2D inverse;
    const bool drawable = pixmap.pixels != nullptr && pixmap.width != 0 && pixmap.height != 0 &&
                          invertRounded(transform, inverse);
    paint.paintType = drawable ? kPaintPattern : kPaintNone;
    if (!drawable) return;
    paint.patternImage = pixmap;
    paint.patternHasAlpha = static_cast<uint8_t>(pixmap.pixmapExtra);
    paint.patternTransform = inverse;
    if (refined || filter == kFilterNearest) return;
    // The other filters sample at the pixel's corner and have a texel's colour at its corner, both
    // half a unit before the centres.
    paint.patternTransform.translate((inverse.a + inverse.c - kFixedOne) >> 1,
                                     (inverse.b + inverse.d - kFixedOne) >> 1);
}

} // namespace Graphics2D
} // namespace KAVO
