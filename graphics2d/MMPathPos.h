// SPDX-License-Identifier: MIT
// The cursor of MMContext2D::getPathPos.
#pragma once

#include "../math/MMPoint2D.h"

// Set path and leave everything else 0 to start a walk; the rest is the walk's state. The cursor
// stands where the last point or curve before the current point ends, so that a walk goes on from
// there with the same sums as a walk from the start.
struct MMPathPos {
    const uint32_t* path;    // the stored path: one word that is skipped, the header, the commands
    const uint32_t* command; // the command word of the cursor
    MMPoint2D current;       // where the walk is, user space
    MMPoint2D previous;      // the point at the cursor: the start of the edge or curve being walked
    int16_t itemIndex;       // the low 16 bits of item
    int16_t subpathsLeft;    // subpaths still to walk; 0 at the path's end and to start a new walk
    KAVO::Fixed walked;      // path length from the start to the current point
    KAVO::Fixed edgeWalked;  // path length from the start to the cursor
    MMPoint2D subpathStart;  // where closing the subpath leads
    uint32_t item;           // points or curves of the command before the cursor
};
