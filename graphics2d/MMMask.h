// SPDX-License-Identifier: MIT
// Coverage of single pixels: what shows through a clip of any shape.
#pragma once

#include <cstdint>

// A rectangle of device pixels with a level each, 0 (hidden) to 255 (visible), that somebody else
// owns; everything outside of it is hidden. Copied by value. graphics2d/masks/MMMaskSetup.h makes,
// clears, combines and converts masks.
//
// Drawing fills one while MMContext2D::maskTarget names it, and is clipped by one while
// MMContext2D::clipMask does.
struct MMMask {
    int16_t left; // device pixels; left and top inclusive, right and bottom exclusive
    int16_t top;
    int16_t right;
    int16_t bottom;
    uint32_t rowBytes; // from the start of one row to the next
    uint8_t* levels;   // of the pixel (left, top); null: nothing shows
};
