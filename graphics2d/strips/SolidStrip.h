// SPDX-License-Identifier: MIT
// Solid colours by the rules of both modes. Internal.
#pragma once

#include "graphics2d/LevelTable.h"
#include "graphics2d/strips/Blending.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

// A colour by either rule: what pixels are moved toward, and by which weight.
struct ClassicColour {
    using Rule = ClassicBlend;
    Pixel source;

    explicit ClassicColour(Pixel colour) : source(colour) {}
    // The colour's alpha is one of its channels and no more.
    uint32_t weightOf(Coverage coverage) const { return roundedWeight(coverage); }
};

struct RefinedColour {
    using Rule = RefinedBlend;
    Pixel source;
    uint32_t alpha; // 8.8

    explicit RefinedColour(Pixel colour) : source(colour | kOpaque), alpha(colour >> 24 << 8) {}
    uint32_t weightOf(Coverage coverage) const
    {
        return refinedWeight(coarseCoverage(coverage), alpha);
    }
};

// Blends a run by one colour and one weight of a rule.
template <class Rule>
void blendColour(BlendedRun run, Pixel colour, uint32_t weight);

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
