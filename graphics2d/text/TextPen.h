// SPDX-License-Identifier: MIT
// The pen of a text on its way through device space. Internal.
#pragma once

#include "math/Matrix2D.h"

namespace KAVO {
namespace Graphics2D {

// A place in device space, 16.16, with room for runs of text that no coordinate holds.
struct TextPen {
    int64_t x;
    int64_t y;

    // Whether it is a place that coordinates can say.
    bool fits() const;

    // Its low 32 bits, which is where it stands for those who count in coordinates.
    MMPoint2D wrapped() const
    {
        return {static_cast<Fixed>(static_cast<uint64_t>(x)),
                static_cast<Fixed>(static_cast<uint64_t>(y))};
    }
};

// The exact mapping of a point, rounded to nearest.
TextPen mappedExactly(const Matrix2D& toDevice, const MMPoint2D& p);

// The way back: the nearest point that the transform maps to the pen. A transform without area has
// none and answers false.
bool unmappedExactly(const Matrix2D& toDevice, const TextPen& pen, MMPoint2D& p);

} // namespace Graphics2D
} // namespace KAVO
