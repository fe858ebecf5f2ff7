// SPDX-License-Identifier: MIT
// From end points, radii, stops, images and transforms to the fields that the strip fillers read.
//
// The gradient fillers follow their parameter in 16.16 steps and the radial one in half units, so
// its scale decides how finely they draw. This file therefore chooses the unit of the parameter
// itself and scales the stop offsets to it. It runs once per paint, so intermediate results are
// 64 bits wide, and its functions are marked as cold, so that they are compiled for size.
#include "graphics2d/PaintSetup.h"

#include "math/WideMath.h"

#include <initializer_list>

namespace KAVO {
namespace Graphics2D {

namespace {

// The linear parameter's step along the axis where it changes faster, per device pixel. Thirteen
// bits keep the slope, and two targets of 32,768 pixels across still do not wrap.
constexpr int64_t kLinearStep = 0x2000;
constexpr int64_t kGreatestOffset = 0x40000000;

// A ramp's colour step per pixel is its length's reciprocal in 16 bits, so a wide segment drifts:
// by up to 1/256 of its length in pixels, in units of a channel, over its whole width. Cutting it
// into n pieces divides that by n * n.
constexpr int64_t kLongestPiece = 256; // pixels along the row
constexpr int64_t kMostPieces = 8;     // of all that lies between two stops

// The radial parameter counts quarters of a device pixel where the circle is widest, or eighths
// where it is narrowest if that is coarser, as long as its square's slope, 2 * radius * unit *
// unit, stays within 16.16: for a circle, up to a radius of 1,023 pixels. Offsets from the centre
// are mapped into 16.16 too, so a target must not reach further than 4,096 pixels from it, or 8,192
// for a circle.
constexpr int64_t kRadialUnits = 4;
constexpr int64_t kMostRadialUnits = 8;
constexpr int64_t kGreatestSlope = 0x7FFF;

int64_t larger(int64_t a, int64_t b)
{
    return a > b ? a : b;
}

int64_t clampTo(int64_t v, int64_t low, int64_t high)
{
    return v < low ? low : v > high ? high : v;
}

// v / 2^shift, or v * 2^-shift, rounded to nearest.
int64_t shiftDown(int64_t v, int32_t shift)
{
    if (shift <= 0) return v * (int64_t{1} << -shift);
    if (shift > 62) return 0;
    return (v >> shift) + ((v >> (shift - 1)) & 1);
}

// v / divisor, rounded to nearest; the divisor is positive.
int64_t divideRounded(int64_t v, int64_t divisor)
{
    const int64_t quotient = v / divisor;
    const int64_t rest = v - quotient * divisor;
    if (2 * absolute(rest) < divisor) return quotient;
    return v < 0 ? quotient - 1 : quotient + 1;
}

// How far to shift a number left so that its magnitude has 29 bits; 0 for 0.
int32_t shiftTo29Bits(int64_t v)
{
    int32_t shift = 0;
    for (uint64_t m = static_cast<uint64_t>(absolute(v)); m != 0 && m >> 28 == 0; m <<= 1)
        ++shift;
    for (uint64_t m = static_cast<uint64_t>(absolute(v)); m >> 29 != 0; m >>= 1)
        --shift;
    return shift;
}

struct Vector {
    int64_t x;
    int64_t y;

    // Scaled by a power of two so that the longer component has 29 bits.
    Vector normalized() const
    {
        const int32_t shift = shiftTo29Bits(larger(absolute(x), absolute(y)));
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

int64_t smaller(int64_t a, int64_t b)
{
    return a < b ? a : b;
}

Pixel mixed(Pixel from, Pixel to, int64_t part, int64_t whole)
{
    Pixel result = 0;
    for (uint32_t shift = 0; shift < 32; shift += 8) {
        const int64_t a = (from >> shift) & 0xFF;
        const int64_t b = (to >> shift) & 0xFF;
        result |= static_cast<Pixel>(a + divideRounded((b - a) * part, whole)) << shift;
    }
    return result;
}

constexpr uint32_t kNoAlpha = 256; // more than any

// The least alpha whose weight under the opacity is 128 or more, so that the fillers raise it by
// one. A linear segment's weights are extrapolated from its first three pixels: if the weight were
// raised just between these, every further pixel would be one too high.
uint32_t leastRaisedAlpha(uint32_t opacity)
{
    return opacity > 128 ? 0x8000 / opacity + 1 : kNoAlpha;
}

uint32_t alphaByte(Pixel colour)
{
    return colour >> 24;
}

Pixel withAlpha(Pixel colour, uint32_t alpha)
{
    return (colour & 0x00FFFFFF) | alpha << 24;
}

// The scaled stops as they are collected in the caller's arrays.
class RampWriter {
public:
    RampWriter(MMPaint& paint, const GradientRamp& ramp) : paint_(paint), ramp_(ramp)
    {
        paint_.gradientStopCount = 0;
        paint_.gradientStopColors = ramp.colours;
        paint_.gradientStopOffsets = ramp.offsets;
        paint_.paintHasAlpha = 0;
    }

    void add(Pixel colour, int64_t offset)
    {
        ramp_.colours[paint_.gradientStopCount] = colour;
        ramp_.offsets[paint_.gradientStopCount] =
            static_cast<Fixed>(clampTo(offset, -kGreatestOffset, kGreatestOffset));
        ++paint_.gradientStopCount;
        if (alphaByte(colour) != 0xFF) paint_.paintHasAlpha = 1;
    }

    // All stops, offset 0 at start and 1.0 at start + length. What lies between two stops is cut
    // into segments no longer than piece, and where the alpha reaches raisedAlpha.
    void addAll(const GradientStops& stops, int64_t start, int64_t length, int64_t piece,
                uint32_t raisedAlpha)
    {
        Stop previous = {};
        int64_t least = 0;
        for (uint32_t i = 0; i < stops.count; ++i) {
            least = clampTo(stops.offsets[i], least, kFixedOne);
            const Stop stop = {stops.colours[i], start + shiftDown(length * least, 16)};
            if (i > 0) {
                const int64_t shortest = (stop.offset - previous.offset) / kMostPieces + 1;
                addBetween(previous, stop, larger(piece, shortest), raisedAlpha);
            }
            add(stop.colour, stop.offset);
            previous = stop;
        }
    }

private:
    struct Stop {
        Pixel colour;
        int64_t offset;
    };

    void addBetween(Stop from, Stop to, int64_t piece, uint32_t raisedAlpha)
    {
        const int64_t first = alphaByte(from.colour);
        const int64_t last = alphaByte(to.colour);
        const bool rises = first < raisedAlpha;
        if (rises == (last < raisedAlpha)) return cut(from, to, piece);

        // Halfway between the two alphas that are neighbours there.
        const int64_t part = absolute(2 * int64_t{raisedAlpha} - 1 - 2 * first);
        const int64_t whole = absolute(2 * (last - first));
        const Pixel colour = mixed(from.colour, to.colour, part, whole);
        const int64_t offset = from.offset + (to.offset - from.offset) * part / whole;
        const Stop before = {withAlpha(colour, rises ? raisedAlpha - 1 : raisedAlpha), offset};
        const Stop after = {withAlpha(colour, rises ? raisedAlpha : raisedAlpha - 1), offset};
        cut(from, before, piece);
        add(before.colour, offset);
        add(after.colour, offset);
        cut(after, to, piece);
    }

    void cut(Stop from, Stop to, int64_t piece)
    {
        const int64_t distance = to.offset - from.offset;
        const int64_t pieces = distance / piece + 1;
        for (int64_t i = 1; i < pieces; ++i)
            add(mixed(from.colour, to.colour, i, pieces), from.offset + distance * i / pieces);
    }

    MMPaint& paint_;
    GradientRamp ramp_;
};

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

// False for a matrix whose inverse does not exist or fit. Far translations end at the edge of the
// range, where an image is off any target.
bool invert(const Matrix2D& m, Matrix2D& inverse)
{
    // Halved like the products of mapped(), so that 1.0 is 2^31.
    const int64_t determinant = (int64_t{m.a} * m.d >> 1) - (int64_t{m.b} * m.c >> 1);
    if (determinant == 0) return false;
    const int64_t one = determinant < 0 ? -(int64_t{1} << 31) : int64_t{1} << 31;
    const int64_t size = absolute(determinant);
    const int64_t a = divideRounded(m.d * one, size);
    const int64_t b = divideRounded(-int64_t{m.b} * one, size);
    const int64_t c = divideRounded(-int64_t{m.c} * one, size);
    const int64_t d = divideRounded(m.a * one, size);
    for (int64_t element : {a, b, c, d})
        if (absolute(element) > kGreatestOffset) return false;
    inverse = {static_cast<Fixed>(a),
               static_cast<Fixed>(b),
               static_cast<Fixed>(c),
               static_cast<Fixed>(d),
               0,
               0};
    const Vector origin = mapped(inverse, {-int64_t{m.e}, -int64_t{m.f}});
    inverse.e = static_cast<Fixed>(clampTo(origin.x, -kGreatestOffset, kGreatestOffset));
    inverse.f = static_cast<Fixed>(clampTo(origin.y, -kGreatestOffset, kGreatestOffset));
    return true;
}

} // namespace

[[gnu::cold]] void setLinearGradient(MMPaint& paint, MMPoint2D start, MMPoint2D end,
                                     const Matrix2D& transform, const GradientStops& stops,
                                     const GradientRamp& ramp)
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
    const int64_t longer = larger(absolute(across.x), absolute(across.y));
    if (longer == 0) return addLastStop(writer, stops);

    Vector step;
    int64_t length; // of the gradient, in units of the parameter
    int64_t longerStep = kLinearStep;
    do {
        step = {divideRounded(across.x * longerStep, longer),
                divideRounded(across.y * longerStep, longer)};
        length = dot(step, along);
        longerStep >>= 1;
    } while (absolute(length) > kGreatestOffset && longerStep != 0);
    if (length == 0) return addLastStop(writer, stops);
    if (length < 0) {
        step = {-step.x, -step.y};
        length = -length;
    }

    // An origin far outside is replaced by one at hand, and the offsets by as much.
    const Vector origin = {from.x + transform.e, from.y + transform.f};
    const Vector near = {clampTo(origin.x, -kGreatestOffset, kGreatestOffset - 1),
                         clampTo(origin.y, -kGreatestOffset, kGreatestOffset - 1)};
    paint.gradientOriginX = static_cast<Fixed>(near.x);
    paint.gradientOriginY = static_cast<Fixed>(near.y);
    paint.gradientStepX = static_cast<Fixed>(step.x);
    paint.gradientStepY = static_cast<Fixed>(step.y);
    const int64_t offset = dot(step, {origin.x - near.x, origin.y - near.y});
    const int64_t piece = step.x != 0 ? absolute(step.x) * kLongestPiece : INT64_MAX;
    writer.addAll(stops, offset, clampTo(length, 0, kGreatestOffset), piece,
                  leastRaisedAlpha(paint.paintOpacity));
}

[[gnu::cold]] void setRadialGradient(MMPaint& paint, MMPoint2D centre, Fixed radius,
                                     const Matrix2D& transform, const GradientStops& stops,
                                     const GradientRamp& ramp)
{
    paint.paintType = kPaintRadialGradient;
    paint.radialXToU = paint.radialYToV = kFixedOne;
    paint.radialXToV = paint.radialYToU = 0;
    const Vector middle = mapped(transform, {centre.x, centre.y});
    paint.radialCenterX =
        static_cast<Fixed>(clampTo(middle.x + transform.e, -kGreatestOffset, kGreatestOffset));
    paint.radialCenterY =
        static_cast<Fixed>(clampTo(middle.y + transform.f, -kGreatestOffset, kGreatestOffset));
    RampWriter writer(paint, ramp);
    if (!isUsable(stops, ramp)) return;

    // The transform's greatest and smallest stretch are the singular values: half the sum of two
    // lengths, and the determinant divided by that. The elements are scaled by 2^shift.
    const int64_t greatest = larger(larger(absolute(transform.a), absolute(transform.b)),
                                    larger(absolute(transform.c), absolute(transform.d)));
    const int32_t shift = shiftTo29Bits(greatest);
    const int64_t a = shiftDown(transform.a, -shift);
    const int64_t b = shiftDown(transform.b, -shift);
    const int64_t c = shiftDown(transform.c, -shift);
    const int64_t d = shiftDown(transform.d, -shift);
    const int64_t turning = integerRoot((a + d) * (a + d) + (b - c) * (b - c));
    const int64_t mirroring = integerRoot((a - d) * (a - d) + (b + c) * (b + c));
    const int64_t widest = (turning + mirroring) / 2;
    if (radius <= 0 || widest == 0) return addLastStop(writer, stops);
    const int64_t narrowest = absolute(a * d - b * c) / widest;

    if (narrowest == 0) return addLastStop(writer, stops);

    // Units per device pixel where the circle is narrowest, 16.16.
    const int64_t devicePixels = shiftDown(radius * widest, 32 + shift) + 1;
    const int64_t units = smaller(
        smaller(kRadialUnits * kFixedOne * widest / narrowest, kMostRadialUnits * kFixedOne),
        int64_t{integerRoot((kGreatestSlope << 32) / (2 * devicePixels))});
    const int64_t outer = shiftDown(shiftDown(radius * narrowest, 16 + shift) * units, 16);
    if (outer == 0) return addLastStop(writer, stops);

    // The inverse without its determinant, which the unit makes up for.
    paint.radialXToU = static_cast<Fixed>(divideRounded(d * units, widest));
    paint.radialXToV = static_cast<Fixed>(divideRounded(-b * units, widest));
    paint.radialYToU = static_cast<Fixed>(divideRounded(-c * units, widest));
    paint.radialYToV = static_cast<Fixed>(divideRounded(a * units, widest));
    writer.addAll(stops, 0, clampTo(outer, 0, kGreatestOffset), INT64_MAX, kNoAlpha);
}

[[gnu::cold]] void setPattern(MMPaint& paint, const MMPixmap& image, const Matrix2D& transform,
                              MMPatternFilter filter)
{
    // Either argument may be the paint's own.
    const MMPixmap pixmap = image;
    Matrix2D inverse;
    const bool drawable = pixmap.pixels != nullptr && pixmap.width != 0 && pixmap.height != 0 &&
                          invert(transform, inverse);
    paint.paintType = drawable ? kPaintPattern : kPaintNone;
    if (!drawable) return;
    paint.patternImage = pixmap;
    paint.patternHasAlpha = static_cast<uint8_t>(pixmap.pixmapExtra);
    paint.patternTransform = inverse;
    if (filter == kFilterNearest) return;
    // The other filters sample at the pixel's corner and have a texel's colour at its corner, both
    // half a unit before the centres.
    paint.patternTransform.translate((inverse.a + inverse.c - kFixedOne) >> 1,
                                     (inverse.b + inverse.d - kFixedOne) >> 1);
}

} // namespace Graphics2D
} // namespace KAVO
