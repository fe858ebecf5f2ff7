// SPDX-License-Identifier: MIT
// One segment of a decoded subpath.
#pragma once

#include "../math/MMPoint2D.h"

// A subpath is an array of consecutive segments: runs of points in user space, joined by straight
// lines from each point to the next, also across segments.
struct MMLinkPath {
    MMPoint2D* points;
    uint32_t count;
};
