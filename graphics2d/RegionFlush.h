// SPDX-License-Identifier: MIT
// Filling and scrolling a pixmap directly, without a drawing context. A null pixmap, or one without
// pixels, is left alone.
#pragma once

#include "MMPixmap.h"

#pragma GCC visibility push(default)

// Fills the rectangle of w by h pixels at (x, y), cut to the pixmap, with one colour.
void MMG_flushRegion(MMPixmap* pixmap, uint32_t x, uint32_t y, uint32_t w, uint16_t h,
                     KAVO::Pixel colour);

// Scrolls the content right by dx and down by dy whole pixels and fills what is uncovered with the
// pixmap's backgroundColour. A motion larger than the pixmap clears it. Padding after the rows is
// left alone.
void panPixmap(MMPixmap* pixmap, int16_t dx, int16_t dy);

#pragma GCC visibility pop
