// SPDX-License-Identifier: MIT
// Quantities that change evenly across the target, on their way into a source.
#include "graphics2d/sources/AffineForm.h"

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr int32_t kTargetBits = 15; // of a row or column

// Of a fixed-point product, without rounding.
ScaledNumber product(Fixed a, Fixed b)
{
    return {int64_t{a} * b, -32};
}

} // namespace

AffineForm AffineForm::operator*(const ScaledNumber& factor) const
{
    return {atOrigin * factor, perColumn * factor, perRow * factor};
}

AffineForm AffineForm::operator+(const AffineForm& other) const
{
    return {atOrigin + other.atOrigin, perColumn + other.perColumn, perRow + other.perRow};
}

AffineForm AffineForm::operator+(const ScaledNumber& constant) const
{
    return {atOrigin + constant, perColumn, perRow};
}

int32_t AffineForm::bits() const
{
    const ScaledNumber steps = (perColumn.magnitude() + perRow.magnitude()).shifted(kTargetBits);
    return (atOrigin.magnitude() + steps).bits();
}

MMSourceAxis AffineForm::fixed(int32_t fractionBits) const
{
    return {atOrigin.fixed(fractionBits), perColumn.fixed(fractionBits),
            perRow.fixed(fractionBits)};
}

bool OwnCoordinates::invert(const Matrix2D& m, MMPoint2D origin)
{
    const ScaledNumber determinant = product(m.a, m.d) - product(m.b, m.c);
    if (determinant.isZero()) return false;
    const ScaledNumber half(1, -1);
    // From the origin's place on the target to the first pixel's centre.
    const ScaledNumber dx =
        half - (product(m.a, origin.x) + product(m.c, origin.y) + numberOf(m.e));
    const ScaledNumber dy =
        half - (product(m.b, origin.x) + product(m.d, origin.y) + numberOf(m.f));
    const ScaledNumber a = numberOf(m.a) / determinant;
    const ScaledNumber b = numberOf(m.b) / determinant;
    const ScaledNumber c = numberOf(m.c) / determinant;
    const ScaledNumber d = numberOf(m.d) / determinant;
    x = {d * dx - c * dy, d, -c};
    y = {a * dy - b * dx, -b, a};
    return true;
}

} // namespace Graphics2D
} // namespace KAVO
