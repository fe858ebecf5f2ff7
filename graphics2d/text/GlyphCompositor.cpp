// SPDX-License-Identifier: MIT
// Drawing one glyph image into the target.
#include "graphics2d/text/GlyphCompositor.h"

#include "graphics2d/OutOfMemory.h"
#include "graphics2d/Redirection.h"
#include "graphics2d/strips/Blending.h"
#include "graphics2d/strips/SourceStrip.h"
#include "graphics2d/strips/Span.h"
#include "graphics2d/strips/StripDispatch.h"
#include "memory/ScratchArray.h"

#include <algorithm>
#include <cstring>

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr int32_t kPiece = 4; // pixels composited at a time

// a * b / 255 rounded, for lanes whose products are at most 255 * 255.
inline U16x8 byteProduct(U16x8 a, U16x8 b)
{
    const U16x8 product = a * b + 0x81;
    return (product + (product >> 8)) >> 8;
}

// How a paint's pixels go over their background through the glyph. The lanes are the channels of
// two pixels, with each pixel's coverage on all of its channels; the results are the high bytes.
// Classic coverage is 0 to 255; refined weights are 0 to 256.

struct SolidBlend {
    static U16x8 two(U16x8 background, U16x8 colour, U16x8 coverage)
    {
        return moveToward(background, colour, coverage);
    }
};

// Channels times 0 to 255, where 255 stands for 256: the top bit of the channel counts twice.
inline U16x8 scaleChannels(U16x8 channels, U16x8 factor)
{
    return ((channels + (channels >> 7)) * factor) >> 8;
}

// The paint's pixel scaled by the coverage, over the background scaled by what its alpha leaves.
// Sums above 255 become 255.
struct BufferBlend {
    static U16x8 two(U16x8 background, U16x8 colour, U16x8 coverage)
    {
        const U16x8 rest = 255 - byteProduct(alphasOf(colour), coverage);
        const U16x8 sum = scaleChannels(colour, coverage) + scaleChannels(background, rest);
        return (sum | (U16x8)(sum > 255)) << 8;
    }
};

// An opaque colour.
struct RefinedSolidBlend {
    static U16x8 two(U16x8 background, U16x8 colour, U16x8 weight)
    {
        return moveRounded(background, colour, weight);
    }
};

// A premultiplied pixel.
struct RefinedBufferBlend {
    static U16x8 two(U16x8 background, U16x8 colour, U16x8 weight)
    {
        return movePremultiplied(background, colour, weight);
    }
};

// The four bytes from there, 0 from end on.
inline uint32_t fourBytes(const uint8_t* bytes, const uint8_t* end)
{
    uint32_t word = 0;
    if (end - bytes >= 4) {
        std::memcpy(&word, bytes, sizeof word);
    } else {
        for (ptrdiff_t i = end - bytes; i-- > 0;)
            word = word << 8 | bytes[i];
    }
    return word;
}

// The levels of eight pixels, 0 to 15. Of the two pixels in a byte, the left one is in the upper
// half. Nothing is read from end on.
inline U16x8 eightLevels(const uint8_t* bytes, const uint8_t* end, bool startsLow)
{
    uint32_t word = fourBytes(bytes, end);
    if (startsLow) {
        const uint32_t next = end - bytes > 4 ? bytes[4] : 0u;
        word = (word & 0x0F0F0F0Fu) << 4 | (word >> 12 & 0x000F0F0Fu) | next >> 4 << 24;
    }
    const U16x8 pairs = widenLow(U32x4{word, 0, 0, 0});
    return __builtin_shufflevector(pairs >> 4, pairs & 15, 0, 8, 1, 9, 2, 10, 3, 11);
}

// The right-hand neighbours of the last pixels of the target, up to four. The very last one has
// itself.
inline U32x4 lastNeighbours(const Pixel* pixels, ptrdiff_t count)
{
    U32x4 neighbours;
    for (ptrdiff_t i = 0; i < 4; ++i)
        neighbours[i] = pixels[std::min(i + 1, count - 1)];
    return neighbours;
}

// count: 1 to 4.
inline void storeFirst(Pixel* to, U32x4 pixels, int32_t count)
{
    if (count >= 4) {
        store4(to, pixels);
        return;
    }
    if ((count & 2) != 0) {
        std::memcpy(to, &pixels, 2 * sizeof *to);
        to += 2;
        pixels = __builtin_shufflevector(pixels, pixels, 2, 3, 2, 3);
    }
    if ((count & 1) != 0) *to = pixels[0];
}

// count: 1 to 4; lanes behind are 0.
inline U32x4 loadFirst(const Pixel* from, int32_t count)
{
    if (count >= 4) return load4(from);
    U32x4 pixels = {};
    std::memcpy(&pixels, from, static_cast<size_t>(count) * sizeof *from);
    return pixels;
}

// How a glyph meets the target: what lies behind the first count of four pixels, and how much of
// the paint their levels let through.

struct ClassicMeeting {
    const Pixel* targetEnd;
    uint8_t opacity;

    U32x4 backgroundOf(const Pixel* pixels, int32_t) const
    {
        const ptrdiff_t room = targetEnd - pixels;
        return room > kPiece ? load4(pixels + 1) : lastNeighbours(pixels, room);
    }
    U16x8 coverageOf(U16x8 levels) const { return byteProduct(U16x8{} + opacity, levels * 17); }
};

struct RefinedMeeting {
    uint16_t opacity; // of a whole glyph, 8.8
    int32_t beside;   // columns of the target right of the box

    // What is not the glyph's own may be read, as long as it is the target's.
    U32x4 backgroundOf(const Pixel* pixels, int32_t count) const
    {
        return count + beside >= kPiece ? load4(pixels) : loadFirst(pixels, count);
    }
    U16x8 coverageOf(U16x8 levels) const
    {
        return refinedWeights(levels * (17 << 8), U16x8{} + opacity);
    }
};

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
    rowPixels_ =
        refined_ || context_.layer != nullptr ? target.rowBytes / sizeof(Pixel) : target.width;
    if (record.paintOpacity == 0) return false;
    if (target.pixels == nullptr && context_.maskTarget == nullptr) return false;
    targetEnd_ = targetRow(target, target.height, rowBytes());
    switch (record.paintType) {
    case kPaintSolid:
        opacity_ = opacityWith(record.paintOpacity, record.paintColour >> 24);
        return true;
    case kPaintLinearGradient:
    case kPaintRadialGradient:
    case kPaintPattern:
        opacity_ = kWholeAlpha; // the row buffer has the paint's
        return true;
    case kPaintSource:
        opacity_ = opacityWith(record.paintOpacity, 255);
        return record.sourceFunction != nullptr;
    default:
        return false;
    }
}

GlyphCompositor::Box GlyphCompositor::visible(const FS_GrayMap& glyph,
                                              const GlyphPlace& place) const
{
    const int32_t column = refined_ ? place.column : static_cast<int16_t>(place.column);
    const int32_t row = refined_ ? place.row : static_cast<int16_t>(place.row);
    Box box = {};
    box.x = std::max(column, visible_.left);
    box.y = std::max(row, visible_.top);
    box.width = std::min(column + glyph.width, visible_.right) - box.x;
    box.height = std::min(row + glyph.height, visible_.bottom) - box.y;
    box.skippedColumns = box.x - column;
    box.skippedRows = box.y - row;
    return box;
}

void GlyphCompositor::draw(const FS_GrayMap& glyph, Box box)
{
    box.stride = glyph.stride;
    box.startsLow = box.skippedColumns % 2 != 0;
    box.levels = glyph.bitmap + box.skippedRows * box.stride + box.skippedColumns / 2;
    box.levelsEnd = glyph.bitmap + glyph.height * box.stride;
    if constexpr (kHasLayers)
        if (redirected_) return drawRedirected(box);
    box.pixels = targetRow(context_.target, box.y, rowBytes()) + box.x;
    drawOver(box, context_.target.width - box.x - box.width);
}

// beside: how many pixels right of the box may be read.
void GlyphCompositor::drawOver(const Box& box, int32_t beside)
{
    if (refined_ || record_->paintType == kPaintSource)
        drawBox<RefinedSolidBlend, RefinedBufferBlend>(box, record_->paintColour | 0xFF000000,
                                                       RefinedMeeting{opacity_, beside});
    else
        drawBox<SolidBlend, BufferBlend>(box, record_->paintColour,
                                         ClassicMeeting{targetEnd_, record_->paintOpacity});
}

template <class SolidBlend, class BufferBlend, class Meeting>
void GlyphCompositor::drawBox(const Box& box, Pixel colour, const Meeting& meeting)
{
    if (record_->paintType != kPaintSolid) {
        drawThroughBuffer<BufferBlend>(box, meeting);
        return;
    }
    const U32x4 colours = all4(colour);
    for (int32_t y = 0; y < box.height; ++y)
        compositeRow<SolidBlend>(box, y, meeting, [=](int32_t) { return colours; });
}

// Composites row y of the box.
template <class Blend, class Meeting, class ColoursAt>
inline void GlyphCompositor::compositeRow(const Box& box, int32_t y, const Meeting& meeting,
                                          ColoursAt coloursAt) const
{
    Pixel* pixels = box.pixels + y * rowPixels_;
    const uint8_t* levels = box.levels + y * box.stride;
    U16x8 coverage = {}; // of the piece, in the lower lanes
    for (int32_t i = 0; i < box.width; i += kPiece) {
        const int32_t count = box.width - i;
        const U32x4 background = meeting.backgroundOf(pixels, count);
        if (i % (2 * kPiece) == 0) {
            coverage = meeting.coverageOf(eightLevels(levels, box.levelsEnd, box.startsLow));
            levels += kPiece;
        } else {
            coverage = __builtin_shufflevector(coverage, coverage, 4, 5, 6, 7, 4, 5, 6, 7);
        }
        const U32x4 pairs = zipLow(coverage, coverage);
        const auto over = [](U16x8 from, U16x8 to, U16x8 by) { return Blend::two(from, to, by); };
        storeFirst(pixels, blendByPairs(background, coloursAt(i), pairs, over), count);
        pixels += kPiece;
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

template <class Blend, class Meeting>
void GlyphCompositor::drawThroughBuffer(const Box& box, const Meeting& meeting)
{
    const bool isSource = record_->paintType == kPaintSource;
    const SpanFiller paint = chooseSpanFiller(context_);
    if (paint.filler == nullptr) return;
    // In whole pieces, with the pixel past the last that the translucent fillers read.
    const uint32_t words = static_cast<uint32_t>(box.width) + kPiece;
    ScratchArray<Pixel> buffer(context_.scratchStack, words);
    if (!buffer) {
        noteOutOfMemory(context_);
        return;
    }
    if (!isSource) movePaintLeft(box.x);
    context_.spanEnd = fixFromInt(box.width);
    context_.spanPixels = buffer.data();
    context_.spanRow = box.y;
    const Pixel* colours = buffer.data();
    for (int32_t y = 0; y < box.height; ++y, ++context_.spanRow) {
        // Translucent fillers blend over what is there.
        if (y == 0 || paint.flatCoverage) fillPixels(buffer.data(), static_cast<int32_t>(words), 0);
        if (isSource)
            readSource(*record_, context_.spanRow, box.x, box.width, buffer.data());
        else
            drawSpan(context_, paint);
        compositeRow<Blend>(box, y, meeting, [=](int32_t i) { return load4(colours + i); });
    }
}

} // namespace Graphics2D
} // namespace KAVO
