// SPDX-License-Identifier: MIT
// From double precision to what the library reads: 16.16 numbers, matrices and encoded paths.
#pragma once

#include "graphics2d/convenience/MMPathBuilder.h"
#include "math/Matrix2D.h"
#include "svg/geometry/Outline.h"

namespace KAVO {
namespace Svg {

// Rounded to the nearest 1/65536, values beyond the range to its ends.
Fixed toFixed(double value);

inline double toDouble(Fixed value)
{
    return value / 65536.0;
}

// A user space for the library that is near to device pixels: the drawing's own user space, moved
// so that the middle of the picture is the origin and scaled by a power of two so that one unit is
// between half a pixel and one. Coordinates then have all the precision that 16.16 offers, whatever
// unit the file is written in, and overflow only for points thousands of pixels away, which are
// held at kReach.
struct PathSpace {
    static constexpr double kReach = 15000;

    Matrix2D transform;   // to device pixels, for MMContext2D::transform
    Point origin;         // in the drawing's user space
    double scale = 1;     // of lengths in the drawing's user space
    double pixelSize = 1; // largest device length of a unit in the drawing's user space

    // Nothing when the transform flattens everything onto a line.
    static std::optional<PathSpace> make(const Affine& userToDevice, Point pictureCentre);

    Fixed length(double userLength) const;
    MMPoint2D point(Point user) const;
    bool reaches(Point user) const; // so that it is not held nearer
};

// An outline as the library draws it.
Graphics2D::MMPathBuilder encodePath(const Outline& outline, const PathSpace& space);

} // namespace Svg
} // namespace KAVO
