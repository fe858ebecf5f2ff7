// SPDX-License-Identifier: MIT
// Builds the words that MMContext2D::drawPath reads.
//
//     MMPathBuilder heart;
//     heart.moveTo(100_fx, 60_fx)
//         .cubicTo(120_fx, 0, 240_fx, 60_fx, 100_fx, 180_fx)
//         .cubicTo(-40_fx, 60_fx, 80_fx, 0, 100_fx, 60_fx)
//         .close();
//     context.drawPath(heart.words());
//
// Calls mean what they mean in SVG path data: a segment starts at the current point; after close,
// that is where the closed subpath began; a moveTo that no segment follows leaves nothing behind.
// At first the current point is (0, 0). The ...By forms take points relative to the current one.
// Coordinates are 16.16; sums beyond the range are held at its ends.
//
// Nothing throws. When memory runs out the path becomes empty, so that drawing it draws nothing,
// and outOfMemory says so until clear. A path holds 65,535 subpaths; what is added beyond them is
// left out.
#pragma once

#include "../../math/FixedLiteral.h"
#include "../../math/MMPoint2D.h"
#include "../MMPathWords.h"

#include <cstddef>
#include <cstdint>

namespace KAVO {
namespace Graphics2D {

struct ArcCurves;

#pragma GCC visibility push(default)

class MMPathBuilder {
public:
    MMPathBuilder() = default;
    ~MMPathBuilder();
    MMPathBuilder(MMPathBuilder&& other) noexcept;
    MMPathBuilder& operator=(MMPathBuilder&& other) noexcept;

    MMPathBuilder& moveTo(Fixed x, Fixed y);
    MMPathBuilder& lineTo(Fixed x, Fixed y);
    MMPathBuilder& quadTo(Fixed cx, Fixed cy, Fixed x, Fixed y);
    MMPathBuilder& cubicTo(Fixed cx1, Fixed cy1, Fixed cx2, Fixed cy2, Fixed x, Fixed y);

    // A part of the ellipse with the given radii, its x axis turned by rotation: of the four arcs
    // that join the current point to (x, y), the one of more or less than half the ellipse, with
    // increasing angles (clockwise, where y points down) or decreasing ones. Radii that are too
    // short are enlarged together until they reach; a radius of 0 gives a line, no distance gives
    // nothing. Right to a few 1/65536 and some five millionths of the radius.
    MMPathBuilder& arcTo(Fixed rx, Fixed ry, Degrees rotation, bool large, bool increasing, Fixed x,
                         Fixed y);

    MMPathBuilder& moveBy(Fixed dx, Fixed dy);
    MMPathBuilder& lineBy(Fixed dx, Fixed dy);
    MMPathBuilder& quadBy(Fixed cdx, Fixed cdy, Fixed dx, Fixed dy);
    MMPathBuilder& cubicBy(Fixed cdx1, Fixed cdy1, Fixed cdx2, Fixed cdy2, Fixed dx, Fixed dy);
    MMPathBuilder& arcBy(Fixed rx, Fixed ry, Degrees rotation, bool large, bool increasing,
                         Fixed dx, Fixed dy);

    // Closes the subpath; nothing when there is none. A subpath of a point alone is a dot when it
    // is stroked with round or square caps.
    MMPathBuilder& close();

    // Closed subpaths of their own, clockwise where y points down: from the corner (x, y), and from
    // the rightmost point of the circle. The current point is where they began. A radius of 0 or
    // less adds nothing.
    MMPathBuilder& rect(Fixed x, Fixed y, Fixed width, Fixed height);
    MMPathBuilder& circle(Fixed cx, Fixed cy, Fixed radius);

    // The path as it stands, complete at any time and never null; valid until the next change.
    // storedPath has the word before it that getPathPos and getPathKeyPointCount skip.
    const uint32_t* words() const { return storedPath() + 1; }
    const uint32_t* storedPath() const;

    // Words of words(), the header included.
    size_t wordCount() const { return words_ != nullptr ? count_ - 1 : 1; }
    bool empty() const { return subpaths_ == 0; }
    MMPoint2D currentPoint() const { return current_; }

    bool outOfMemory() const { return outOfMemory_; }

    // Forgets path and failure, keeps the memory.
    void clear();

private:
    bool reserve(size_t words);
    void writePoint(MMPoint2D p);
    void writeHeader();
    bool beginSubpath();
    void add(uint32_t kind, const MMPoint2D* points);
    void addCurves(const ArcCurves& curves);
    MMPoint2D relative(Fixed dx, Fixed dy) const;

    uint32_t* words_ = nullptr; // a word to skip, the header, commands; null while there are none
    size_t count_ = 0;
    size_t capacity_ = 0;
    size_t command_ = 0; // index of the last command
    uint32_t subpaths_ = 0;
    uint32_t segments_ = 0;
    MMPoint2D start_ = {0, 0}; // of the subpath
    MMPoint2D current_ = {0, 0};
    bool open_ = false;  // the last subpath in words_ goes on
    bool moved_ = false; // moveTo was called since then
    bool outOfMemory_ = false;
};

#pragma GCC visibility pop

} // namespace Graphics2D
} // namespace KAVO
