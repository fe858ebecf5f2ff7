// SPDX-License-Identifier: MIT
// The stroker's entry with 32-bit counts, for paths and shapes. Internal.
#pragma once

#include "graphics2d/BoundsUnion.h"
#include "graphics2d/strokes/Subpath.h"

namespace KAVO {
namespace Graphics2D {

class GatheredOutlines;

// The pen of the context's stroke style, and how it comes out on the device. Made once for all
// lines that one call strokes.
struct DevicePen {
    uint8_t joinStyle; // MMJoinStyle; miter for unknown styles
    uint8_t capStyle;  // MMCapStyle; butt for unknown styles
    int64_t greatest;  // half width where the pen is widest, in 16.16 pixels
    int64_t smallest;  // and where it is narrowest
    Degrees step;      // the greatest turn between points of round joins and caps
    // Of a line without length that has a direction all the same, as dashes do.
    UnitVector direction = {kOne30, 0};
    GatheredOutlines* gathered = nullptr; // takes the outlines; null: each is filled at once

    explicit DevicePen(const MMContext2D& context) : DevicePen(context, context.joinStyle) {}
    DevicePen(const MMContext2D& context, uint8_t joins);

    // The step, or a coarser one where that many half turns would make too many points.
    Degrees stepFor(uint64_t count) const;

    // How far a stroke reaches from its line at most, miters and caps included, 16.16 pixels.
    int64_t reach(const MMContext2D& context) const;
};

// The count of a caller's records; none when one of them has no points to be read.
uint32_t readableRecords(const MMLinkPath* records, int32_t count);

// As MMContext2D::drawPolyline: strokes one subpath with the current paint. Returns the bounds of
// the outline, whatever of it is visible.
BoundsUnion strokeSubpath(MMContext2D& context, const DevicePen& pen, const Subpath& subpath);

} // namespace Graphics2D
} // namespace KAVO
