// Drawing one glyph image into the target.
#include "graphics2d/GlyphCompositor.h"

#include "graphics2d/StripDispatch.h"
#include "graphics2d/StripMachinery.h"
#include "memory/ScratchArray.h"

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr uint32_t kRoundingBias = 0x81;

// a * b / 255 rounded, for bytes.
constexpr uint32_t byteProduct(uint32_t a, uint32_t b)
{
    const uint32_t t = a * b + kRoundingBias;
    return ((t + (t >> 8)) >> 8) & 0xFFu;
}

// Coverage of the next pixels of a glyph's row.
class LevelReader {
public:
    LevelReader(const uint8_t* levels, bool startsLow, const uint32_t* coverageOfLevel)
        : levels_(levels), low_(startsLow), coverageOfLevel_(coverageOfLevel)
    {
    }

    void read(uint32_t* coverage, int32_t count)
    {
        int32_t i = 0;
        if (low_ && count > 0) {
            coverage[i++] = coverageOfLevel_[*levels_++ & 15u];
            low_ = false;
        }
        for (; i + 2 <= count; i += 2) {
            const uint8_t pair = *levels_++;
            coverage[i] = coverageOfLevel_[pair >> 4];
            coverage[i + 1] = coverageOfLevel_[pair & 15u];
        }
        if (i < count) {
            coverage[i] = coverageOfLevel_[*levels_ >> 4];
            low_ = true;
        }
    }

private:
    const uint8_t* levels_;
    bool low_;
    const uint32_t* coverageOfLevel_;
};

// How a pixel of the paint goes over its background through the glyph.
struct SolidBlend {
    static U32x4 four(U32x4 background, U32x4 colour, U32x4 coverage)
    {
        return blend4(background, colour, coverage);
    }
};

// Eight channels times 0 to 255, where 255 stands for 256: the top bit of the channel counts twice.
inline U16x8 scaleChannels(U16x8 channels, U16x8 factor)
{
    return ((channels + (channels >> 7)) * factor) >> 8;
}

inline U16x8 saturatedSum(U16x8 a, U16x8 b)
{
    const U16x8 sum = a + b;
    const U16x8 over = (U16x8)(sum > 255);
    return (sum | over) & 255;
}

// The paint's pixel scaled by the coverage, over the background scaled by what its alpha leaves.
struct BufferBlend {
    static U32x4 four(U32x4 background, U32x4 colour, U32x4 coverage)
    {
        const U32x4 product = (colour >> 24) * coverage + kRoundingBias;
        const U32x4 rest = 255 - (((product + (product >> 8)) >> 8) & 0xFFu);
        const U32x4 coverages = coverage | (coverage << 16);
        const U32x4 rests = rest | (rest << 16);
        const U16x8 low = saturatedSum(
            scaleChannels(widenLow(colour),
                          (U16x8)__builtin_shufflevector(coverages, coverages, 0, 0, 1, 1)),
            scaleChannels(widenLow(background),
                          (U16x8)__builtin_shufflevector(rests, rests, 0, 0, 1, 1)));
        const U16x8 high = saturatedSum(
            scaleChannels(widenHigh(colour),
                          (U16x8)__builtin_shufflevector(coverages, coverages, 2, 2, 3, 3)),
            scaleChannels(widenHigh(background),
                          (U16x8)__builtin_shufflevector(rests, rests, 2, 2, 3, 3)));
        return narrowHighBytes(low << 8, high << 8);
    }
};

// Colours of a run of pixels.
struct OneColour {
    Pixel colour;
    U32x4 four(int32_t) const { return all4(colour); }
    Pixel one(int32_t) const { return colour; }
};

struct ColourRow {
    const Pixel* colours;
    U32x4 four(int32_t i) const { return load4(colours + i); }
    Pixel one(int32_t i) const { return colours[i]; }
};

template <class Blend>
inline Pixel blendOne(Pixel background, Pixel colour, uint32_t coverage)
{
    return Blend::four(all4(background), all4(colour), all4(coverage))[0];
}

// Composites a row of count pixels. atEnd: there is no word behind the last one.
template <class Blend, class Colours>
void compositeRow(Pixel* pixels, const Colours& colours, LevelReader levels, int32_t count,
                  bool atEnd)
{
    uint32_t coverage[kPieceLength];
    for (int32_t done = 0; done < count; done += kPieceLength) {
        const int32_t piece = count - done < kPieceLength ? count - done : kPieceLength;
        const int32_t pairs = atEnd && done + piece == count ? piece - 1 : piece;
        levels.read(coverage, piece);
        Pixel* out = pixels + done;
        int32_t i = 0;
        for (; i + 4 <= pairs; i += 4)
            store4(out + i,
                   Blend::four(load4(out + i + 1), colours.four(done + i), load4(coverage + i)));
        for (; i < pairs; ++i)
            out[i] = blendOne<Blend>(out[i + 1], colours.one(done + i), coverage[i]);
        for (; i < piece; ++i)
            out[i] = blendOne<Blend>(out[i], colours.one(done + i), coverage[i]);
    }
}

int32_t larger(int32_t a, int32_t b)
{
    return a > b ? a : b;
}

int32_t smaller(int32_t a, int32_t b)
{
    return a < b ? a : b;
}

} // namespace

GlyphCompositor::GlyphCompositor(MMContext2D& context, const MMPaint& record)
    : context_(context), record_(record)
{
    context.currentPaint = record;
    context.spanStart = 0;
    for (uint32_t level = 0; level < 16; ++level)
        coverageOfLevel_[level] = byteProduct(record.paintOpacity, level * 17);
}

bool GlyphCompositor::isVisible() const
{
    if (record_.paintOpacity == 0) return false;
    switch (record_.paintType) {
    case kPaintSolid:
    case kPaintLinearGradient:
    case kPaintRadialGradient:
    case kPaintPattern:
        return true;
    default:
        return false;
    }
}

void GlyphCompositor::draw(const FS_GrayMap& glyph, int32_t column, int32_t row)
{
    Box box;
    if (!cut(glyph, column, row, box)) return;
    if (record_.paintType == kPaintSolid)
        drawSolid(box);
    else
        drawThroughBuffer(box);
}

bool GlyphCompositor::cut(const FS_GrayMap& glyph, int32_t column, int32_t row, Box& box) const
{
    const MMPixmap& target = context_.target;
    if (target.pixels == nullptr) return false;
    box.x = larger(column, larger(context_.clipLeft, 0));
    box.y = larger(row, larger(context_.clipTop, 0));
    box.width = smaller(column + glyph.width, smaller(context_.clipRight, target.width)) - box.x;
    box.height = smaller(row + glyph.height, smaller(context_.clipBottom, target.height)) - box.y;
    if (box.width <= 0 || box.height <= 0) return false;

    const int32_t skippedColumns = box.x - column;
    box.stride = glyph.stride;
    box.startsLow = skippedColumns % 2 != 0;
    box.levels =
        glyph.bitmap + static_cast<ptrdiff_t>(box.y - row) * glyph.stride + skippedColumns / 2;
    return true;
}

Pixel* GlyphCompositor::pixelAt(int32_t x, int32_t y) const
{
    return context_.target.pixels + static_cast<ptrdiff_t>(y) * context_.target.width + x;
}

// Whether the last pixel of a row of the box is the last of the target.
bool GlyphCompositor::endsTarget(const Box& box, int32_t row) const
{
    return row + 1 == context_.target.height && box.x + box.width == context_.target.width;
}

void GlyphCompositor::drawSolid(const Box& box)
{
    const OneColour colour = {record_.paintColour};
    const uint8_t* levels = box.levels;
    Pixel* pixels = pixelAt(box.x, box.y);
    for (int32_t y = box.y; y < box.y + box.height; ++y) {
        compositeRow<SolidBlend>(pixels, colour,
                                 LevelReader(levels, box.startsLow, coverageOfLevel_), box.width,
                                 endsTarget(box, y));
        levels += box.stride;
        pixels += context_.target.width;
    }
}

// Lets the row buffer's column 0 see the paint as the target's column does.
void GlyphCompositor::movePaintLeft(int32_t columns)
{
    MMPaint& paint = context_.currentPaint;
    if (paint.paintType == kPaintLinearGradient) {
        paint.gradientOriginX = wrapSub(record_.gradientOriginX, fixFromInt(columns));
    } else if (paint.paintType == kPaintRadialGradient) {
        paint.radialCenterX = wrapSub(record_.radialCenterX, fixFromInt(columns));
    } else {
        const Matrix2D& toTexels = record_.patternTransform;
        paint.patternTransform.e = wrapAdd(toTexels.e, wrapMul(toTexels.a, columns));
        paint.patternTransform.f = wrapAdd(toTexels.f, wrapMul(toTexels.b, columns));
    }
}

void GlyphCompositor::drawThroughBuffer(const Box& box)
{
    const SpanFiller paint = chooseSpanFiller(context_);
    if (paint.filler == nullptr) return;
    // The translucent fillers read one pixel past the last.
    const uint32_t words = static_cast<uint32_t>(box.width) + 1;
    ScratchArray<Pixel> buffer(context_.scratchStack, words);
    if (!buffer) {
        context_.outOfMemory |= kScratchExhausted;
        return;
    }
    movePaintLeft(box.x);
    context_.spanEnd = fixFromInt(box.width);
    context_.spanPixels = buffer.data();
    const ColourRow colours = {buffer.data()};
    const uint8_t* levels = box.levels;
    Pixel* pixels = pixelAt(box.x, box.y);
    for (int32_t y = box.y; y < box.y + box.height; ++y) {
        context_.spanRow = y;
        fillPixels(buffer.data(), static_cast<int32_t>(words), 0);
        drawSpan(context_, paint);
        compositeRow<BufferBlend>(pixels, colours,
                                  LevelReader(levels, box.startsLow, coverageOfLevel_), box.width,
                                  endsTarget(box, y));
        levels += box.stride;
        pixels += context_.target.width;
    }
}

} // namespace Graphics2D
} // namespace KAVO
