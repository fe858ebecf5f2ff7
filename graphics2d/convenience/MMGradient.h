// SPDX-License-Identifier: MIT
// A gradient that owns the arrays its paint points into.
#pragma once

#include "../PaintSetup.h"

namespace KAVO {
namespace Graphics2D {

// offset: from 0 to 1.0.
struct MMGradientStop {
    Fixed offset;
    Pixel colour;
};

// Made from its stops, and put into a paint:
//
//     MMGradient sky({{0, 0xFF2060C0}, {0.7_fx, 0xFF90C0F0}, {1_fx, 0xFFFFFFFF}});
//     sky.setLinear(context, context.fillPaint, {0, 0}, {0, 200_fx});
//
// The paint points into the gradient, which must stay where it is as long as the paint is drawn
// with; and into the ramp that was laid out last, so that one gradient serves one paint at a time.
template <uint32_t kStops>
class MMGradient {
public:
    MMGradient(const MMGradientStop (&stops)[kStops])
    {
        for (uint32_t i = 0; i < kStops; ++i) {
            colours_[i] = stops[i].colour;
            offsets_[i] = stops[i].offset;
        }
    }
    MMGradient(const MMGradient&) = delete;
    MMGradient& operator=(const MMGradient&) = delete;

    // Points and radius are in the context's user space as it is now, and the gradient is for the
    // rules, classic or refined, that the context draws by now. The paint's opacity is best set
    // before, see PaintSetup.h, where everything else is told too.
    void setLinear(const MMContext2D& context, MMPaint& paint, MMPoint2D start, MMPoint2D end)
    {
        setLinearGradient(paint, start, end, context.transform, stops(), ramp(),
                          context.refined != 0);
    }
    void setRadial(const MMContext2D& context, MMPaint& paint, MMPoint2D centre, Fixed radius)
    {
        setRadialGradient(paint, centre, radius, context.transform, stops(), ramp(),
                          context.refined != 0);
    }

private:
    GradientStops stops() const { return {colours_, offsets_, kStops}; }
    GradientRamp ramp() { return {rampColours_, rampOffsets_}; }

    Pixel colours_[kStops];
    Fixed offsets_[kStops];
    Pixel rampColours_[gradientRampRoom(kStops)];
    Fixed rampOffsets_[gradientRampRoom(kStops)];
};

} // namespace Graphics2D
} // namespace KAVO
