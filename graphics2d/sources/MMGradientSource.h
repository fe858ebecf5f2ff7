// SPDX-License-Identifier: MIT
// Gradients beyond those of the core: repeated and reflected, between two circles, and around a
// point.
//
//     MMGradientSource glow;
//     setRadialSource(context.fillPaint, glow, {{70_fx, 60_fx}, 0}, {{100_fx, 100_fx}, 80_fx},
//                     context.transform, {colours, offsets, 3}, kSpreadReflect);
//
// The paint then reads the record, which must stay where it is as long as the paint is drawn with;
// paints of other opacities may share it. paintOpacity is left alone. The stops are read by the
// set-up alone and not needed any more. Offsets outside 0 to 1.0 are clamped, and one smaller than
// its predecessor counts as equal to it; colours are interpolated before they are multiplied with
// their alpha. Any number of stops is laid out in a table of 512 colours, so that a colour is that
// of a place at most 1/1024 of the gradient's length away. Hard edges between two stops (up to 16
// stops less than 1/256 apart) stay at their exact place.
//
// The transform maps the gradient's own space to device pixels: usually the context's, without the
// half-pixel shift that classic drawing adds. Colours are those at pixel centres. No stops (or null
// arrays) draw nothing. Under a singular transform the last stop is painted everywhere.
#pragma once

#include "../PaintSetup.h"
#include "MMSourceAxis.h"

namespace KAVO {
namespace Graphics2D {

// How a gradient goes on before its offset 0 and beyond 1.0.
enum MMSpread : uint8_t {
    kSpreadPad = 0,    // in the colour of the first and of the last stop
    kSpreadRepeat = 1, // from the start again
    kSpreadReflect = 2 // back and forth
};

struct MMSourceCircle {
    MMPoint2D centre;
    Fixed radius; // a negative one counts as 0
};

constexpr uint32_t kSourceRampSteps = 512;
constexpr uint32_t kMostSourceCuts = 16;

// What a gradient's pixels are made of, filled in by the functions below. A place is 0 at the
// ramp's start and 2^24 at its end.
struct MMGradientSource {
    MMSourceAxis axes[3]; // what the kind of gradient follows along rows
    int64_t factors[3];   // what else the kind needs

    // From the gradient's parameter to a place: clamped between two values, shifted and masked.
    int32_t least;
    int32_t greatest;
    uint32_t shift;
    uint32_t mask;

    uint8_t spread;     // MMSpread
    uint8_t isNegative; // of the two solutions at a pixel the smaller one counts
    uint16_t cutCount;
    int32_t cuts[kMostSourceCuts]; // places of further borders between entries, ascending

    // Premultiplied: what lies before the ramp, its steps, each cut in two by every cut within it,
    // and what lies beyond.
    Pixel ramp[kSourceRampSteps + kMostSourceCuts + 2];
};

#pragma GCC visibility push(default)

// From start (offset 0) to end (offset 1.0), perpendicular in its own space. When they coincide the
// last stop is painted everywhere.
void setLinearSource(MMPaint& paint, MMGradientSource& source, MMPoint2D start, MMPoint2D end,
                     const Matrix2D& transform, const GradientStops& stops, MMSpread spread);

// Between two circles, from start (offset 0) to end (offset 1.0): a point has the greatest offset
// whose circle passes through it, the circles between the two and beyond them included as far as
// their radius is not negative. Where no circle passes nothing is drawn: outside of the cone that
// they fill when neither contains the other. Two equal circles, or two of radius 0, draw nothing.
// A focal gradient starts from a circle of radius 0 at the focal point.
void setRadialSource(MMPaint& paint, MMGradientSource& source, const MMSourceCircle& start,
                     const MMSourceCircle& end, const Matrix2D& transform,
                     const GradientStops& stops, MMSpread spread);

// Around a centre, from the direction start (offset 0) to the direction end (offset 1.0), clockwise
// on a y-down target when end is the greater, the other way when it is the smaller. The offset of a
// point is counted from start on up to a full turn, so that the spread matters where end is less
// than a turn away. When they are equal the last stop is painted everywhere.
void setConicSource(MMPaint& paint, MMGradientSource& source, MMPoint2D centre, Degrees start,
                    Degrees end, const Matrix2D& transform, const GradientStops& stops,
                    MMSpread spread);

#pragma GCC visibility pop

} // namespace Graphics2D
} // namespace KAVO
