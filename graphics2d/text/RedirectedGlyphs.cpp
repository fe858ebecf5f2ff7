// SPDX-License-Identifier: MIT
// Glyphs drawn into a layer, into a mask, or through one.
#include "graphics2d/text/GlyphCompositor.h"

#include "graphics2d/OutOfMemory.h"
#include "graphics2d/masks/LevelBlending.h"
#include "graphics2d/masks/MaskedGlyph.h"
#include "graphics2d/masks/MaskedStrip.h"
#include "graphics2d/strips/Blending.h"
#include "memory/ScratchArray.h"

#include <cstring>

namespace KAVO {
namespace Graphics2D {

void GlyphCompositor::drawRedirected()
{
    prepareTarget(context_, {column_, row_, column_ + rows_.width, row_ + rows_.height});
    if (context_.maskTarget != nullptr) return drawIntoMask();
    if (context_.clipMask != nullptr) return drawThroughMask();
    rows_.pixels = targetRow(context_.target, row_, rowBytes()) + column_;
    drawOver();
}

void GlyphCompositor::drawIntoMask()
{
    // The alpha of a solid colour is an opacity by the refined rules alone.
    const uint16_t opacity = refined_ && record_->paintType == kPaintSolid
                                 ? rows_.opacity
                                 : opacityWith(record_->paintOpacity, 255);
    for (int32_t y = 0; y < rows_.height; ++y)
        drawGlyphIntoMask(
            context_,
            {rows_.levels + y * rows_.stride, rows_.startsLow, column_, row_ + y, rows_.width},
            opacity);
}

// Each row is drawn over a copy of the target, which the target is then moved to by the levels.
void GlyphCompositor::drawThroughMask()
{
    const uint32_t width = static_cast<uint32_t>(rows_.width);
    ScratchArray<Pixel> copy(context_.scratchStack, width + 1);
    if (!copy) return noteOutOfMemory(context_);
    // The neighbour of the last pixel, too, unless it is the target's last.
    const uint32_t neighbours = column_ + rows_.width < context_.target.width ? 1 : 0;
    Pixel* const targetEnd = targetEnd_;
    Pixel* const readEnd = readEnd_;
    targetEnd_ = readEnd_ = copy.data() + width + neighbours;
    const uint8_t* levels = rows_.levels;
    const int32_t end = row_ + rows_.height;
    for (rows_.height = 1; row_ < end; ++row_) {
        Pixel* const pixels = targetRow(context_.target, row_, rowBytes()) + column_;
        std::memcpy(copy.data(), pixels, (width + neighbours) * sizeof(Pixel));
        rows_.pixels = copy.data();
        rows_.levels = levels;
        drawOver();
        context_.level->moveByLevels(pixels, copy.data(),
                                     maskRow(*context_.clipMask, row_) + column_, rows_.width);
        levels += rows_.stride;
    }
    targetEnd_ = targetEnd;
    readEnd_ = readEnd;
}

} // namespace Graphics2D
} // namespace KAVO
