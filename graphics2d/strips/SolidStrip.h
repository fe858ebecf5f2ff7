// SPDX-License-Identifier: MIT
// The fillers of solid colours, chosen by mode before any span is drawn. Internal.
#pragma once

#include "graphics2d/MMContext2D.h"
#include "graphics2d/strips/Blending.h"

namespace KAVO {
namespace Graphics2D {

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

// As MMContext2D::drawSolidStrip and drawSolidTStrip, but for asking for the mode.
void drawClassicColour(MMContext2D& context);
void drawRefinedColour(MMContext2D& context);
void drawTranslucentClassicColour(MMContext2D& context);
void drawTranslucentRefinedColour(MMContext2D& context);

} // namespace Graphics2D
} // namespace KAVO
