// SPDX-License-Identifier: MIT
// Drawing one glyph image into the target. Internal.
#pragma once

#include "graphics2d/PixelBox.h"
#include "platform/FontEngine.h"

namespace KAVO {
namespace Graphics2D {

// Where a glyph's bitmap stands in the target: its left column and top row.
struct GlyphPlace {
    int32_t column;
    int32_t row;
};

// Composites the glyphs of a run of text, all in one paint.
//
// A solid colour is blended straight into the target. Any other paint first draws each row of the
// glyph's box into a row buffer, as it would fill a rectangle at that place, and the buffer is then
// composited through the glyph.
//
// Classic: the background of a pixel is its right-hand neighbour, also where the glyph is empty:
// within the glyph's box the background moves left by one pixel. Only the very last pixel of the
// target, which has no neighbour, reads itself. Rows of the target are taken to be exactly width
// pixels apart. The opacity of a buffered paint acts in the buffer and in the coverage, the alpha
// of a solid colour is blended like a channel, and places count in 16 bits.
//
// Refined: every pixel is its own background, rows are rowBytes apart, and opacity, alpha and
// coverage make one weight.
class GlyphCompositor {
public:
    explicit GlyphCompositor(MMContext2D& context) : context_(context) {}

    // Makes the record, which must stay, the current paint. False when it draws no text.
    bool begin(const MMPaint& record);

    // Whether the pixel may be drawn.
    bool covers(const MMPoint2D& pixel) const
    {
        return pixel.x >= visible_.left && pixel.x < visible_.right && pixel.y >= visible_.top &&
               pixel.y < visible_.bottom;
    }

    // What is visible of a glyph.
    struct Box {
        const uint8_t* levels;    // the byte with the first visible pixel of the first visible row
        const uint8_t* levelsEnd; // of the glyph's bitmap
        ptrdiff_t stride;         // bytes per row
        bool startsLow;           // that pixel is in the low half of its byte
        Pixel* pixels;            // that pixel in the target
        int32_t x;                // of that pixel
        int32_t y;
        int32_t width;
        int32_t height;
        int32_t skippedColumns; // of the glyph, to the left
        int32_t skippedRows;    // above

        bool empty() const { return width <= 0 || height <= 0; }
    };

    // The glyph's rectangle cut to the clip rectangle and the target; all but its pixels and
    // levels.
    Box visible(const FS_GrayMap& glyph, const GlyphPlace& place) const;

    // Draws what is visible of the image, which must have its bitmap: of a box that is not empty.
    // Sets outOfMemory and draws nothing when there is no row buffer.
    void draw(const FS_GrayMap& glyph, Box box);

private:
    size_t rowBytes() const { return static_cast<size_t>(rowPixels_) * sizeof(Pixel); }
    void drawOver(const Box& box, int32_t beside);
    void drawRedirected(Box box);
    void drawIntoMask(const Box& box);
    void drawThroughMask(const Box& box);
    template <class SolidBlend, class BufferBlend, class Meeting>
    void drawBox(const Box& box, Pixel colour, const Meeting& meeting);
    template <class Blend, class Meeting, class ColoursAt>
    void compositeRow(const Box& box, int32_t y, const Meeting& meeting, ColoursAt coloursAt) const;
    template <class Blend, class Meeting>
    void drawThroughBuffer(const Box& box, const Meeting& meeting);
    void movePaintLeft(int32_t columns);

    MMContext2D& context_;
    const MMPaint* record_; // with the paint's origin as the caller set it

    PixelBox visible_;    // where pixels may be drawn
    ptrdiff_t rowPixels_; // from one row to the next
    Pixel* targetEnd_;
    bool refined_;
    bool redirected_;
    uint16_t opacity_; // refined: of a whole glyph, 8.8
};

} // namespace Graphics2D
} // namespace KAVO
