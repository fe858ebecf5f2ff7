// SPDX-License-Identifier: MIT
// Quantities that change evenly across the target, on their way into a source. Internal.
#pragma once

#include "graphics2d/sources/MMSourceAxis.h"
#include "graphics2d/sources/ScaledNumber.h"
#include "math/Matrix2D.h"

namespace KAVO {
namespace Graphics2D {

inline ScaledNumber numberOf(Fixed v)
{
    return {v, -16};
}

struct AffineForm {
    ScaledNumber atOrigin; // at the centre of the pixel (0, 0)
    ScaledNumber perColumn;
    ScaledNumber perRow;

    AffineForm operator*(const ScaledNumber& factor) const;
    AffineForm operator+(const AffineForm& other) const;
    AffineForm operator+(const ScaledNumber& constant) const;

    // An integer part of that many bits holds its magnitude on a target of 32,768 pixels each way.
    int32_t bits() const;

    MMSourceAxis fixed(int32_t fractionBits) const;
};

// The coordinates of pixels in the space that a transform maps from, relative to one of its points.
struct OwnCoordinates {
    AffineForm x;
    AffineForm y;

    // False, and nothing is written, for a singular transform.
    bool invert(const Matrix2D& transform, MMPoint2D origin);
};

} // namespace Graphics2D
} // namespace KAVO
