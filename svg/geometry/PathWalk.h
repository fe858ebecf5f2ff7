// SPDX-License-Identifier: MIT
// Places along a path by their distance from its start.
#pragma once

#include "svg/geometry/Outline.h"

#include <vector>

namespace KAVO {
namespace Svg {

class PathWalk {
public:
    // Curves are walked along chords. Jumps between subpaths have no length.
    explicit PathWalk(const Outline& outline);

    double length() const { return chords_.empty() ? 0 : chords_.back().end; }

    struct Place {
        Point point;
        double direction = 0; // degrees
    };
    // Nothing beyond either end.
    std::optional<Place> at(double distance) const;

private:
    struct Chord {
        Point from;
        Point to;
        double end; // distance from the start of the path
    };
    void addChord(Point from, Point to);

    std::vector<Chord> chords_; // all of some length
};

} // namespace Svg
} // namespace KAVO
