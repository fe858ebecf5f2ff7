// The cursor of MMContext2D::getPathPos.
#pragma once

#include "math/MMPoint2D.h"

// Set path and leave everything else 0 to start a walk; the rest is the walk's state.
struct MMPathPos {
    const uint32_t* path;    // the stored path: one word that is skipped, the header, the commands
    const uint32_t* command; // the current command word
    MMPoint2D current;       // where the walk is, user space
    MMPoint2D previous;      // the point before it: the start of the edge being walked
    int16_t itemIndex;       // current point or curve within the command
    int16_t subpathsLeft;    // subpaths still to walk; 0 starts a new walk
    Fixed walked;            // path length from the start to the current point
    Fixed edgeWalked;        // path length from the start to the end of the last whole edge
};
