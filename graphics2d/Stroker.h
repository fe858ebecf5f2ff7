// Entries of the strokers with 32-bit counts, for paths. Internal.
#pragma once

#include "graphics2d/MMContext2D.h"

namespace KAVO {
namespace Graphics2D {

// As MMContext2D::drawPolyline: strokes one subpath of consecutive records in user space.
void strokeSubpath(MMContext2D& context, const MMLinkPath* records, uint32_t recordCount,
                   bool closed);

// As MMContext2D::drawDashArray: the same cut into dashes.
void dashSubpath(MMContext2D& context, const MMLinkPath* records, uint32_t recordCount,
                 bool closed);

} // namespace Graphics2D
} // namespace KAVO
