// SPDX-License-Identifier: MIT
// Render targets and images.
#pragma once

#include "../math/Fixed.h"

// Describes 32-bit pixels (0xAARRGGBB) that somebody else owns. Copied by value.
struct MMPixmap {
    uint16_t width;    // pixels
    uint16_t height;   // rows
    uint32_t rowBytes; // from the start of one row to the next, a multiple of 4. Images are read by
                       // width * 4 instead, and so is text drawn by the classic rules
    KAVO::Pixel backgroundColour; // what panPixmap leaves in uncovered areas
    KAVO::Pixel* pixels;          // row 0, column 0
    uint32_t pixmapExtra; // low byte: the image has alpha (drawImage, setPattern); otherwise free
                          // for callers
};
