// SPDX-License-Identifier: MIT
// Runs of pixels blended by one of the rules of Blending.h. Internal.
//
// These loops are all that TranslucentRun.h and what draws with it need of a level. What they read
// for the last few pixels reaches to the end of a vector of few.
#pragma once

#include "graphics2d/LevelTable.h"
#include "graphics2d/strips/Blending.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

template <class Rule>
void blendByWeights(BlendedRun run, const Pixel* colours, const uint32_t* weights);

// Colours that are not multiplied with their alpha, by an opacity of 0 to 255, or of 8.8 by the
// refined rule.
template <class Rule>
void blendByAlpha(BlendedRun run, const Pixel* colours, uint32_t opacity);

// Colours that are multiplied with their alpha, over themselves by the weights of their coverage.
void blendPremultipliedRun(BlendedRun run, const Pixel* colours, const uint32_t* weights);

// Turns 8.8 alphas into the refined rule's weights, by an opacity of 8.8. Takes whole vectors.
void weighAlphaRun(uint32_t* alphas, uint32_t opacity, int32_t count);

// Whether all of one colour or more have this alpha.
bool haveAlpha(const Pixel* colours, int32_t count, uint32_t alpha);

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
