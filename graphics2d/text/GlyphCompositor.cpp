// SPDX-License-Identifier: MIT
// Drawing one glyph image into the target.
#include "graphics2d/text/GlyphCompositor.h"

#include "graphics2d/OutOfMemory.h"
#include "graphics2d/Redirection.h"
#include "graphics2d/strips/Blending.h"
#include "graphics2d/strips/SourceStrip.h"
#include "graphics2d/strips/StopList.h"
#include "memory/ScratchArray.h"

#include <algorithm>
#include <cstring>

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr int32_t kPiece = 4;          // pixels that are read at once
constexpr int32_t kVector = 8;         // and that any level's fillers write at once
constexpr int32_t kBufferPixels = 256; // of a paint's rows at once, unless one row is longer

} // namespace

bool GlyphCompositor::begin(const MMPaint& record)
{
    context_.currentPaint = record;
    context_.spanStart = 0;
    record_ = &record;
    refined_ = context_.refined != 0;
    const MMPixmap& target = context_.target;
    visible_ = drawableBox(context_);
    redirected_ = isRedirected(context_);
    // A layer's rows are where its rowBytes say, by whatever rules.
    rows_.rowPixels = refined_ || context_.layer != nullptr
                          ? static_cast<ptrdiff_t>(target.rowBytes / sizeof(Pixel))
                          : target.width;
    if (record.paintOpacity == 0) return false;
    if (target.pixels == nullptr && context_.maskTarget == nullptr) return false;
    targetEnd_ = targetRow(target, target.height, rowBytes());
    readEnd_ = targetRow(target, visible_.bottom - 1, rowBytes());
    if (target.pixels != nullptr) readEnd_ += visible_.right;

    const bool isSource = record.paintType == kPaintSource;
    isClassicBlend_ = !refined_ && !isSource;
    const GlyphBlenders& blenders =
        isClassicBlend_ ? context_.level->classicGlyphs : context_.level->refinedGlyphs;
    blender_ = blenders.pixels;
    rows_.opacity = record.paintOpacity;
    rows_.paint = &colour_;
    rows_.paintRow = 0;
    switch (record.paintType) {
    case kPaintSolid:
        blender_ = blenders.colour;
        colour_ = record.paintColour;
        if (isClassicBlend_) return true;
        colour_ |= 0xFF000000;
        rows_.opacity = opacityWith(record.paintOpacity, record.paintColour >> 24);
        return true;
    case kPaintLinearGradient:
    case kPaintRadialGradient:
    case kPaintPattern:
        if (refined_) rows_.opacity = kWholeAlpha; // the row buffer has the paint's
        return true;
    case kPaintSource:
        rows_.opacity = opacityWith(record.paintOpacity, 255);
        return record.sourceFunction != nullptr;
    default:
        return false;
    }
}

bool GlyphCompositor::place(const FS_GrayMap& glyph, const GlyphPlace& place)
{
    const int32_t column = refined_ ? place.column : static_cast<int16_t>(place.column);
    const int32_t row = refined_ ? place.row : static_cast<int16_t>(place.row);
    column_ = std::max(column, visible_.left);
    row_ = std::max(row, visible_.top);
    skippedColumns_ = column_ - column;
    skippedRows_ = row_ - row;
    rows_.width = std::min(column + glyph.width, visible_.right) - column_;
    rows_.height = std::min(row + glyph.height, visible_.bottom) - row_;
    return rows_.width > 0 && rows_.height > 0;
}

void GlyphCompositor::draw(const FS_GrayMap& glyph)
{
    rows_.stride = glyph.stride;
    rows_.startsLow = skippedColumns_ % 2 != 0;
    rows_.levels = glyph.bitmap + skippedRows_ * rows_.stride + skippedColumns_ / 2;
    if constexpr (kHasLayers)
        if (redirected_) return drawRedirected();
    rows_.pixels = targetRow(context_.target, row_, rowBytes()) + column_;
    drawOver();
}

void GlyphCompositor::drawOver()
{
    if (record_->paintType == kPaintSolid)
        blend();
    else
        drawThroughBuffer();
}

// Where the loops would read what cannot be read, or what is no background of the target's last
// pixel, they work in a copy.
void GlyphCompositor::blend() const
{
    const Pixel* lastRow = rows_.pixels + (rows_.height - 1) * rows_.rowPixels;
    const int32_t read = (rows_.width + kPiece - 1) / kPiece * kPiece + (isClassicBlend_ ? 1 : 0);
    if (read <= readEnd_ - lastRow)
        blender_(rows_);
    else
        blendAside();
}

void GlyphCompositor::blendAside() const
{
    GlyphRows piece = rows_;
    piece.height = 1;
    for (int32_t y = 0; y < rows_.height; ++y) {
        Pixel* const pixels = rows_.pixels + y * rows_.rowPixels;
        for (int32_t i = 0; i < rows_.width; i += kPiece) {
            Pixel copy[kPiece + 1] = {};
            const int32_t first = i + (rows_.startsLow ? 1 : 0);
            piece.pixels = copy;
            piece.width = std::min(kPiece, rows_.width - i);
            piece.levels = rows_.levels + y * rows_.stride + first / 2;
            piece.startsLow = first % 2 != 0;
            if (rows_.paint != &colour_) piece.paint = rows_.paint + y * rows_.paintRow + i;
            Pixel* const from = pixels + i;
            const bool hasNeighbour = isClassicBlend_ && from + piece.width < targetEnd_;
            std::copy_n(from, piece.width, copy);
            copy[piece.width] = from[piece.width - (hasNeighbour ? 0 : 1)];
            blender_(piece);
            std::copy_n(copy, piece.width, from);
        }
    }
}

// Lets the row buffer's column 0 see the paint as the target's column does.
void GlyphCompositor::movePaintLeft(int32_t columns)
{
    MMPaint& paint = context_.currentPaint;
    if (paint.paintType == kPaintLinearGradient) {
        paint.gradientOriginX = wrapSub(record_->gradientOriginX, fixFromInt(columns));
    } else if (paint.paintType == kPaintRadialGradient) {
        paint.radialCenterX = wrapSub(record_->radialCenterX, fixFromInt(columns));
    } else {
        const Matrix2D& toTexels = record_->patternTransform;
        paint.patternTransform.e = wrapAdd(toTexels.e, wrapMul(toTexels.a, columns));
        paint.patternTransform.f = wrapAdd(toTexels.f, wrapMul(toTexels.b, columns));
    }
}

void GlyphCompositor::drawThroughBuffer()
{
    const SpanFiller paint = chooseSpanFiller(context_);
    if (paint.filler == nullptr) return;
    // More than the width, for the translucent fillers read the pixel past the last.
    const int32_t rowWords = (rows_.width / kVector + 1) * kVector;
    const int32_t rowsAtOnce = std::clamp(kBufferPixels / rowWords, 1, rows_.height);
    const uint32_t words = static_cast<uint32_t>(rowsAtOnce * rowWords);
    ScratchArray<Pixel> buffer(context_.scratchStack, words);
    if (!buffer) return noteOutOfMemory(context_);
    if (record_->paintType != kPaintSource) movePaintLeft(column_);
    context_.spanEnd = fixFromInt(rows_.width);
    context_.spanRow = row_;
    rows_.paint = buffer.data();
    rows_.paintRow = rowWords;
    const bool hidesAll = isPlainGradient(paint) && !StopList(*record_).isEmpty();
    const int32_t height = rows_.height;
    for (int32_t y = 0; y < height; y += rowsAtOnce) {
        // Translucent fillers blend over what is there, and others may draw nothing.
        if (paint.flatCoverage || (y == 0 && !hidesAll))
            std::memset(buffer.data(), 0, words * sizeof(Pixel));
        rows_.height = std::min(rowsAtOnce, height - y);
        context_.spanPixels = buffer.data();
        drawPaint(paint);
        blend();
        rows_.pixels += rows_.height * rows_.rowPixels;
        rows_.levels += rows_.height * rows_.stride;
    }
}

// Fills rows of the buffer from the span's on.
void GlyphCompositor::drawPaint(const SpanFiller& paint)
{
    if (isPlainGradient(paint)) {
        // Whole vectors are quicker than what is left of one.
        const Fixed end = context_.spanEnd;
        context_.spanEnd = fixFromInt((rows_.width + kVector - 1) / kVector * kVector);
        context_.level->linearGradientRows(context_, {rows_.height, rows_.paintRow});
        context_.spanEnd = end;
        context_.spanRow += rows_.height;
        return;
    }
    for (int32_t k = 0; k < rows_.height; ++k, ++context_.spanRow) {
        if (record_->paintType == kPaintSource)
            readSource(*record_, context_.spanRow, column_, rows_.width, context_.spanPixels);
        else
            drawSpan(context_, paint);
        context_.spanPixels += rows_.paintRow;
    }
}

} // namespace Graphics2D
} // namespace KAVO
