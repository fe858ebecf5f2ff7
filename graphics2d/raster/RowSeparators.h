// SPDX-License-Identifier: MIT
// The chains of a row that no other chain crosses. Internal.
#pragma once

#include "graphics2d/raster/RowPlacing.h"

namespace KAVO {
namespace Graphics2D {

// Marks the straight ones among neighbours of a sorted row that separate what lies left and right
// of them all the way down the row. False when scratch memory ran out. With the budget spent the
// marks mean nothing.
bool markSeparators(RowPlacing& row, RowPlace* first, RowPlace* end, MMStackContext& stack,
                    StepBudget& budget);

} // namespace Graphics2D
} // namespace KAVO
