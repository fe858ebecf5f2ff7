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

void GlyphCompositor::drawRedirected(Box box)
{
    const PixelBox drawn = {box.x, box.y, box.x + box.width, box.y + box.height};
    prepareTarget(context_, drawn);
    if (context_.maskTarget != nullptr) return drawIntoMask(box);
    if (context_.clipMask != nullptr) return drawThroughMask(box);
    box.pixels = targetRow(context_.target, box.y, rowBytes()) + box.x;
    drawOver(box, context_.layer->right - drawn.right);
}

void GlyphCompositor::drawIntoMask(const Box& box)
{
    // The alpha of a solid colour is an opacity by the refined rules alone.
    const uint16_t opacity = refined_ && record_->paintType == kPaintSolid
                                 ? opacity_
                                 : opacityWith(record_->paintOpacity, 255);
    for (int32_t y = 0; y < box.height; ++y)
        drawGlyphIntoMask(context_,
                          {box.levels + y * box.stride, box.startsLow, box.x, box.y + y, box.width},
                          opacity);
}

// Each row is drawn over a copy of the target, which the target is then moved to by the levels.
void GlyphCompositor::drawThroughMask(const Box& box)
{
    const uint32_t width = static_cast<uint32_t>(box.width);
    ScratchArray<Pixel> copy(context_.scratchStack, width + 1);
    if (!copy) return noteOutOfMemory(context_);
    // The neighbour of the last pixel, too, unless it is the target's last.
    const uint32_t neighbours = box.x + box.width < context_.target.width ? 1 : 0;
    Pixel* const targetEnd = targetEnd_;
    targetEnd_ = copy.data() + width + neighbours;
    Box row = box;
    row.pixels = copy.data();
    row.height = 1;
    for (int32_t y = 0; y < box.height; ++y) {
        Pixel* const pixels = targetRow(context_.target, box.y + y, rowBytes()) + box.x;
        std::memcpy(copy.data(), pixels, (width + neighbours) * sizeof(Pixel));
        row.y = box.y + y;
        row.levels = box.levels + y * box.stride;
        drawOver(row, 0);
        context_.level->moveByLevels(pixels, copy.data(),
                                     maskRow(*context_.clipMask, row.y) + box.x, box.width);
    }
    targetEnd_ = targetEnd;
}

} // namespace Graphics2D
} // namespace KAVO
