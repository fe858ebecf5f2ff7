// SPDX-License-Identifier: MIT
// Pieces of pixels with an alpha of their own, blended by the refined rule. Internal.
#pragma once

#include "graphics2d/strips/TranslucentRun.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

// What becomes of the texels' alpha. Where texels are mixed, colours of little alpha must count for
// as little: they are premultiplied before.
enum class TexelAlpha { kKept, kPremultiplied, kMadeWhole };

// Blends colours that are not multiplied with their alpha by the run's coverage, which is flat and
// moves on. They are read to the end of the last few.
void blendByAlpha(TranslucentRun<RefinedBlend>& run, const Pixel* colours, int32_t count);

// Blends the first count pixels of a piece by the run's coverage, which moves on. Colours are read
// to the end of the last vector.
void blendRefined(TranslucentRun<RefinedBlend>& run, TexelAlpha alpha, PaintPiece& piece,
                  int32_t count);

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
