// SPDX-License-Identifier: MIT
// What the library hands to its stroker, recorded instead of drawn.
#pragma once

#include "graphics2d/strokes/Stroker.h"

#include <vector>

// Takes the stroker's place while it lives. One at a time. The bounds it leaves are those of the
// points.
class StrokeRecorder {
public:
    struct Stroke {
        std::vector<MMPoint2D> points; // of all records
        uint32_t records;
        bool closed;
        uint8_t joinStyle;
        uint32_t paintColour;
    };

    StrokeRecorder();
    ~StrokeRecorder();
    StrokeRecorder(const StrokeRecorder&) = delete;
    StrokeRecorder& operator=(const StrokeRecorder&) = delete;

    std::vector<Stroke> strokes;
};
