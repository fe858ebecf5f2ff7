// SPDX-License-Identifier: MIT
// Drawing one glyph image into the target. Internal.
#pragma once

#include "graphics2d/PixelBox.h"
#include "graphics2d/strips/StripDispatch.h"
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
// A solid colour is blended straight into the target. Any other paint first draws the rows of the
// glyph's box into a buffer for one or a few of them, as it would fill a rectangle at that place,
// and the buffer is then composited through the glyph.
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

    // Cuts a glyph's rectangle to what can be seen. False when nothing of it is left.
    bool place(const FS_GrayMap& glyph, const GlyphPlace& place);

    // Draws what is left of the glyph placed last, which must have its bitmap. Sets outOfMemory and
    // draws nothing when there is no row buffer.
    void draw(const FS_GrayMap& glyph);

private:
    bool isPlainGradient(const SpanFiller& paint) const
    {
        return paint.filler == context_.level->linearGradient.opaque;
    }
    size_t rowBytes() const { return static_cast<size_t>(rows_.rowPixels) * sizeof(Pixel); }
    void drawOver();
    void drawRedirected();
    void drawIntoMask();
    void drawThroughMask();
    void drawThroughBuffer();
    void drawPaint(const SpanFiller& paint);
    void blend() const;
    void blendAside() const;
    void movePaintLeft(int32_t columns);

    MMContext2D& context_;
    const MMPaint* record_; // with the paint's origin as the caller set it

    PixelBox visible_; // where pixels may be drawn
    Pixel* targetEnd_; // classic: the pixel before has no right-hand neighbour
    Pixel* readEnd_;   // up to where pixels can be read
    GlyphBlender blender_;
    bool refined_;
    bool isClassicBlend_;
    bool redirected_;
    Pixel colour_;

    // Of the glyph placed last.
    GlyphRows rows_;
    int32_t column_; // of the first visible pixel
    int32_t row_;
    int32_t skippedColumns_; // of the glyph, to the left
    int32_t skippedRows_;    // above
};

} // namespace Graphics2D
} // namespace KAVO
