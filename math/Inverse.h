// SPDX-License-Identifier: MIT
// Inverses rounded to nearest. Internal.
#pragma once

#include "math/Matrix2D.h"

namespace KAVO {

// Unlike by Matrix2D::invert, the identity is its own inverse. False, and nothing is written, for a
// matrix whose inverse does not exist or fit: its linear elements may reach 16,384. A translation
// beyond that ends there, where an image is off any target.
bool invertRounded(const Matrix2D& m, Matrix2D& inverse);

} // namespace KAVO
