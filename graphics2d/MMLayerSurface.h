// SPDX-License-Identifier: MIT
// Where an open layer is drawn.
#pragma once

#include "../math/Fixed.h"
#include "MMMask.h"

// The pixels of a rectangle of the device, which graphics2d/layers/MMLayer.h opens and closes. They
// are cleared when something is about to be drawn there and not before, so that a layer costs what
// is drawn into it. All of it is INNER.
struct MMLayerSurface {
    // The columns of a row from first to end - 1; none where end is not greater.
    struct Columns {
        int16_t first;
        int16_t end;
    };

    int32_t left; // device pixels; left and top inclusive, right and bottom exclusive
    int32_t top;
    int32_t right;
    int32_t bottom;
    KAVO::Pixel* pixels;         // of the rectangle alone, row by row, premultiplied
    Columns* prepared;           // of each row, the columns that are cleared or drawn
    const MMMask* outerMask;     // what clips the layer, or null: inside it only picking asks
    const MMLayerSurface* outer; // the layer around this one, or null
};
