// SPDX-License-Identifier: MIT
// Filling a paint in from what a person knows about it: end points, radii, stops, an image, and the
// transform they live under.
//
// The transform of all three maps the paint's own space to device pixels, so it is usually the
// gradient's or image's transform followed by the context's. With anti-aliasing and the half-pixel
// shift that goes with it (see MMContext2D.h) the shift belongs into the transform of a gradient
// and must be left out of that of a pattern. By the refined rules, which sample both at pixel
// centres, it is left out of either.
//
// refined is what the context's field of that name will be when the paint is drawn: the refined
// rules follow gradients more finely than the classic ones can.
//
// paintOpacity is left alone, and is best set before: a translucent linear ramp is laid out for it.
// Everything else that the paint type reads is set. The paint then points into the caller's arrays,
// which must live as long as the paint is drawn with.
#pragma once

#include "MMContext2D.h"
#include "MMPaint.h"

namespace KAVO {
namespace Graphics2D {

// Colour stops as documents give them: offsets from 0 to 1.0. Offsets outside are clamped, and one
// smaller than its predecessor counts as equal to it. No stops (or null arrays) draw nothing; one
// stop paints its colour everywhere.
struct GradientStops {
    const Pixel* colours;
    const Fixed* offsets; // 16.16
    uint32_t count;
};

// Where a gradient's stops go after scaling: two arrays that the caller supplies, each with room
// for gradientRampRoom(count) items. They must not be the arrays that the stops came in.
struct GradientRamp {
    Pixel* colours;
    Fixed* offsets;
};

// The room that a ramp of this many stops needs: between two stops a linear ramp is cut up to eight
// times, once with a stop on either side of the cut.
constexpr uint32_t gradientRampRoom(uint32_t stopCount)
{
    return 10 * stopCount;
}

#pragma GCC visibility push(default)

// A linear gradient from start (offset 0) to end (offset 1.0), perpendicular in its own space, so
// that a skewing transform tilts its lines of equal colour. When start and end coincide, or the
// transform is singular, the last stop is painted everywhere.
void setLinearGradient(MMPaint& paint, MMPoint2D start, MMPoint2D end, const Matrix2D& transform,
                       const GradientStops& stops, const GradientRamp& ramp, bool refined = false);

// A radial gradient from the centre (offset 0) to the circle of the radius (offset 1.0). With a
// radius of 0 or less, or a singular transform, the last stop is painted everywhere.
void setRadialGradient(MMPaint& paint, MMPoint2D centre, Fixed radius, const Matrix2D& transform,
                       const GradientStops& stops, const GradientRamp& ramp, bool refined = false);

// An image whose texel (i, j) covers the square from (i, j) to (i + 1, j + 1) of its own space;
// beyond its edges the outermost texels repeat. filter is the patternFilter that the paint will be
// drawn with: the sampling points differ, and with the right one the image lies at the same place
// under each, when the shape is filled with anti-aliasing: without it the smoothing filters sample
// from where each span starts, which blurs an image and bends it along slanted edges; drawImage
// with the nearest filter keeps its texels sharp. Whether the image has alpha is taken from the low
// byte of its pixmapExtra. An image without texels, or a singular transform, draws nothing.
void setPattern(MMPaint& paint, const MMPixmap& image, const Matrix2D& transform,
                MMPatternFilter filter, bool refined = false);

#pragma GCC visibility pop

} // namespace Graphics2D
} // namespace KAVO
