// SPDX-License-Identifier: MIT
// Filling and scrolling a pixmap directly, without a drawing context.
#include "graphics2d/RegionFlush.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

using namespace KAVO;

namespace {

Pixel* rowOf(const MMPixmap& pixmap, uint32_t y)
{
    uint8_t* base = reinterpret_cast<uint8_t*>(pixmap.pixels);
    return reinterpret_cast<Pixel*>(base + size_t{y} * pixmap.rowBytes);
}

// Row destination := row source moved right by dx, the uncovered pixels in the background colour.
// The rows may be the same one.
void panRow(const MMPixmap& pixmap, uint32_t destination, uint32_t source, int32_t dx)
{
    const uint32_t uncovered = static_cast<uint32_t>(std::abs(dx));
    const uint32_t kept = pixmap.width - uncovered;
    Pixel* to = rowOf(pixmap, destination);
    const Pixel* from = rowOf(pixmap, source);
    if (dx > 0) {
        std::memmove(to + uncovered, from, kept * sizeof(Pixel));
        std::fill_n(to, uncovered, pixmap.backgroundColour);
    } else {
        std::memmove(to, from + uncovered, kept * sizeof(Pixel));
        std::fill_n(to + kept, uncovered, pixmap.backgroundColour);
    }
}

} // namespace

void MMG_flushRegion(MMPixmap* pixmap, uint32_t x, uint32_t y, uint32_t w, uint16_t h, Pixel colour)
{
    if (pixmap == nullptr || pixmap->pixels == nullptr || x > pixmap->width || y > pixmap->height)
        return;
    const uint32_t columns = std::min(w, pixmap->width - x);
    const uint32_t rows = std::min<uint32_t>(h, pixmap->height - y);
    for (uint32_t row = 0; row < rows; ++row)
        std::fill_n(rowOf(*pixmap, y + row) + x, columns, colour);
}

void panPixmap(MMPixmap* pixmap, int16_t dx, int16_t dy)
{
    if (pixmap == nullptr || pixmap->pixels == nullptr) return;
    const uint32_t height = pixmap->height;
    const uint32_t distance = static_cast<uint32_t>(std::abs(int32_t{dy}));
    if (distance > height || std::abs(int32_t{dx}) > pixmap->width) {
        MMG_flushRegion(pixmap, 0, 0, pixmap->width, pixmap->height, pixmap->backgroundColour);
        return;
    }
    // Rows go in the order that reads each one before it is written.
    const uint32_t kept = height - distance;
    for (uint32_t i = 0; i < kept; ++i) {
        if (dy >= 0)
            panRow(*pixmap, height - 1 - i, height - 1 - i - distance, dx);
        else
            panRow(*pixmap, i, i + distance, dx);
    }
    MMG_flushRegion(pixmap, 0, dy >= 0 ? 0 : kept, pixmap->width, static_cast<uint16_t>(distance),
                    pixmap->backgroundColour);
}
