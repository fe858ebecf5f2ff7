// SPDX-License-Identifier: MIT
// From points, circles and angles to the fields that rows of gradients read.
#include "graphics2d/sources/AffineForm.h"
#include "graphics2d/sources/GradientRows.h"
#include "graphics2d/sources/RampTable.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

// A row's numbers lie in the high words of its axes, below 2^29.
constexpr int32_t kNumberBits = 29;
constexpr int32_t kAxisBits = 32 + kNumberBits;

// Circles count as touching where the squares of their centres' distance and of their radii's
// difference differ by less than a 64th.
constexpr int32_t kTouchBits = 6;

bool isUsable(const GradientStops& stops)
{
    return stops.count != 0 && stops.colours != nullptr && stops.offsets != nullptr;
}

bool isOpaque(const GradientStops& stops)
{
    return std::all_of(stops.colours, stops.colours + stops.count,
                       [](Pixel colour) { return colour >> 24 == 0xFF; });
}

void drawNothing(MMPaint& paint)
{
    paint.paintType = kPaintNone;
}

void drawBy(MMPaint& paint, const MMGradientSource& source, MMPaintFunction function, bool opaque)
{
    paint.paintType = kPaintSource;
    paint.sourceFunction = function;
    paint.sourceState = &source;
    paint.sourceIsOpaque = opaque ? 1 : 0;
}

// Of places; kSpreadPad for what is no spread.
void setSpread(MMGradientSource& source, MMSpread spread)
{
    const bool isReflected = spread == kSpreadReflect;
    const bool isRepeated = spread == kSpreadRepeat;
    source.spread = isReflected || isRepeated ? spread : kSpreadPad;
    source.mask = isReflected  ? (2u << kPlaceBits) - 1
                  : isRepeated ? (1u << kPlaceBits) - 1
                               : UINT32_MAX;
    source.isNegative = 0;
}

// The last stop everywhere.
void drawLastStop(MMPaint& paint, MMGradientSource& source, const GradientStops& stops)
{
    const GradientStops last = {stops.colours + stops.count - 1, stops.offsets, 1};
    setSpread(source, kSpreadPad);
    source.axes[0] = {};
    layOutRamp(source, last);
    drawBy(paint, source, writeLinearRow, isOpaque(last));
}

struct Vector {
    ScaledNumber x;
    ScaledNumber y;
};

// Without rounding.
Vector between(MMPoint2D from, MMPoint2D to)
{
    return {{int64_t{to.x} - from.x, -16}, {int64_t{to.y} - from.y, -16}};
}

ScaledNumber squareOf(const Vector& v)
{
    return v.x * v.x + v.y * v.y;
}

// Two circles by the numbers of RadialSource.cpp.
class CirclePair {
public:
    CirclePair(const MMSourceCircle& start, const MMSourceCircle& end)
        : way_(between(start.centre, end.centre)), startRadius_(std::max(start.radius, 0), -16),
          growth_(int64_t{std::max(end.radius, 0)} - std::max(start.radius, 0), -16),
          distanceSquare_(squareOf(way_)), distance_(distanceSquare_.root()),
          excess_(distanceSquare_ - growth_ * growth_)
    {
    }

    bool isEmpty() const
    {
        return growth_.isZero() && (distance_.isZero() || startRadius_.isZero());
    }
    bool areNested() const { return excess_.isNegative(); }
    bool shrink() const { return growth_.isNegative(); }
    bool touch() const
    {
        return !distance_.isZero() && excess_.bits() + kTouchBits <= distanceSquare_.bits();
    }

    // b, u and v of a pixel.
    void axes(const OwnCoordinates& own, AffineForm (&forms)[3]) const
    {
        const ScaledNumber one(1, 0);
        const ScaledNumber size = excess_.magnitude().root();
        const AffineForm along = alongForm(own);
        forms[0] = (along * distance_ + startRadius_ * growth_) * (one / excess_);
        forms[1] = (along * growth_ + startRadius_ * distance_) * (one / excess_);
        forms[2] = acrossForm(own) * (one / size);
    }

    // x, y and the parameter of the point where the circles touch.
    void touchingAxes(const OwnCoordinates& own, AffineForm (&forms)[3]) const
    {
        const ScaledNumber perDistance = ScaledNumber(1, 0) / distance_;
        const ScaledNumber base = -(startRadius_ / growth_);
        const ScaledNumber side(shrink() ? -1 : 1, 0);
        forms[0] = (alongForm(own) * perDistance + -base) * side;
        forms[1] = acrossForm(own) * perDistance;
        forms[2] = {base, {}, {}};
    }

    ScaledNumber excess() const { return excess_ / distanceSquare_; }

private:
    // Concentric circles have no line of centres: any will do.
    AffineForm alongForm(const OwnCoordinates& own) const
    {
        if (distance_.isZero()) return own.x;
        return own.x * (way_.x / distance_) + own.y * (way_.y / distance_);
    }
    AffineForm acrossForm(const OwnCoordinates& own) const
    {
        if (distance_.isZero()) return own.y;
        return own.y * (way_.x / distance_) + own.x * -(way_.y / distance_);
    }

    Vector way_;
    ScaledNumber startRadius_;
    ScaledNumber growth_;
    ScaledNumber distanceSquare_;
    ScaledNumber distance_;
    ScaledNumber excess_;
};

// Brings three forms to a common scale that fits, with a ramp of at most 2^24 and at least 1.
void setAxes(MMGradientSource& source, const AffineForm (&forms)[3])
{
    const int32_t bits = std::max({forms[0].bits(), forms[1].bits(), forms[2].bits()});
    const int32_t fractionBits = std::min(kNumberBits - bits, kPlaceBits);
    for (int k = 0; k < 3; ++k)
        source.axes[k] = forms[k].fixed(fractionBits + kAxisBits - kNumberBits);
    const int32_t rampBits = std::max(fractionBits, 0);
    source.shift = static_cast<uint32_t>(kPlaceBits - rampBits);
    const bool isPadded = source.spread == kSpreadPad;
    source.least = isPadded ? -1 : INT32_MIN;
    source.greatest = isPadded ? 1 << rampBits : INT32_MAX;
}

void setTouchingFactors(MMGradientSource& source, const ScaledNumber& excess)
{
    constexpr int64_t kGreatestInverse = 1 << 30;
    const ScaledNumber inverse = ScaledNumber(1, 0) / excess.magnitude();
    source.factors[kTouchBase] = source.axes[2].atOrigin >> 32;
    source.factors[kTouchExcess] = excess.fixed(32);
    source.factors[kTouchInverse] = std::min(inverse.fixed(12), kGreatestInverse);
}

} // namespace

[[gnu::cold]] void setLinearSource(MMPaint& paint, MMGradientSource& source, MMPoint2D start,
                                   MMPoint2D end, const Matrix2D& transform,
                                   const GradientStops& stops, MMSpread spread)
{
    if (!isUsable(stops)) return drawNothing(paint);
    OwnCoordinates own;
    const Vector way = between(start, end);
    const ScaledNumber square = squareOf(way);
    if (square.isZero() || !own.invert(transform, start)) return drawLastStop(paint, source, stops);

    setSpread(source, spread);
    layOutRamp(source, stops);
    const AffineForm parameter = own.x * (way.x / square) + own.y * (way.y / square);
    // A padded ramp narrower than 2^-14 pixels is drawn as one that is not.
    const bool isPadded = source.spread == kSpreadPad;
    const int32_t fits = std::min(kNumberBits - parameter.bits(), 0);
    source.axes[0] =
        parameter.fixed(32 + (isPadded ? fits : 0) - (source.spread == kSpreadReflect ? 1 : 0));
    drawBy(paint, source, writeLinearRow, isOpaque(stops));
}

[[gnu::cold]] void setRadialSource(MMPaint& paint, MMGradientSource& source,
                                   const MMSourceCircle& start, const MMSourceCircle& end,
                                   const Matrix2D& transform, const GradientStops& stops,
                                   MMSpread spread)
{
    const CirclePair circles(start, end);
    if (!isUsable(stops) || circles.isEmpty()) return drawNothing(paint);
    OwnCoordinates own;
    if (!own.invert(transform, start.centre)) return drawLastStop(paint, source, stops);

    setSpread(source, spread);
    layOutRamp(source, stops);
    source.isNegative = circles.shrink() ? 1 : 0;
    AffineForm forms[3];
    if (circles.touch()) {
        circles.touchingAxes(own, forms);
        setAxes(source, forms);
        setTouchingFactors(source, circles.excess());
        return drawBy(paint, source, writeTouchingRow, false);
    }
    circles.axes(own, forms);
    setAxes(source, forms);
    if (circles.areNested()) return drawBy(paint, source, writeNestedRow, isOpaque(stops));
    drawBy(paint, source, writeConeRow, false);
}

[[gnu::cold]] void setConicSource(MMPaint& paint, MMGradientSource& source, MMPoint2D centre,
                                  Degrees start, Degrees end, const Matrix2D& transform,
                                  const GradientStops& stops, MMSpread spread)
{
    if (!isUsable(stops)) return drawNothing(paint);
    OwnCoordinates own;
    if (start == end || !own.invert(transform, centre)) return drawLastStop(paint, source, stops);

    setSpread(source, spread);
    layOutRamp(source, stops);
    source.isNegative = end < start ? 1 : 0;
    const int32_t bits = std::max(own.x.bits(), own.y.bits());
    source.axes[0] = own.x.fixed(kAxisBits - bits);
    source.axes[1] = own.y.fixed(kAxisBits - bits);
    // From 2^32 to a turn to 2^24 to the ramp, by a factor of 31 bits.
    const ScaledNumber turn(kDegrees360, 0);
    const ScaledNumber ramp(int64_t{end} - start, 0);
    const ScaledNumber scale = (turn / ramp.magnitude()).shifted(kPlaceBits - 32);
    source.factors[kConicStart] =
        static_cast<int64_t>((static_cast<uint64_t>(reducedAngle(start)) << 32) / kDegrees360);
    source.factors[kConicScale] = scale.fixed(31 - scale.bits());
    source.factors[kConicShift] = 31 - scale.bits();
    drawBy(paint, source, writeConicRow, isOpaque(stops));
}

} // namespace Graphics2D
} // namespace KAVO
