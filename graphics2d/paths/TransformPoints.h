// SPDX-License-Identifier: MIT
// Mapping of long runs of points. Internal.
#pragma once

#include "math/Matrix2D.h"

namespace KAVO {
namespace Graphics2D {

// As Matrix2D::transform, for more points than its 16-bit count can say.
inline void transformPoints(const Matrix2D& transform, MMPoint2D* dst, const MMPoint2D* src,
                            uint32_t count)
{
    constexpr uint16_t kPiece = 0x8000;
    for (; count > kPiece; count -= kPiece, dst += kPiece, src += kPiece)
        transform.transform(dst, src, kPiece);
    transform.transform(dst, src, static_cast<uint16_t>(count));
}

} // namespace Graphics2D
} // namespace KAVO
