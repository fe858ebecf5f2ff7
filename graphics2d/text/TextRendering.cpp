// SPDX-License-Identifier: MIT
// A run of characters, drawn or measured: the one loop behind all text operations.
#include "graphics2d/MMContext2D.h"
#include "graphics2d/text/FontLibrary.h"
#include "graphics2d/text/GlyphCompositor.h"
#include "math/FixedMath.h"
#include "math/LinearPart.h"
#include "math/Points.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr Fixed kSlantTangent = 23853; // tan 20 degrees

// From the em square, y down, to device pixels, without translation.
LinearPart glyphMatrixOf(const MMContext2D& context)
{
    const Fixed size = context.fontSize;
    const Matrix2D& t = context.transform;
    LinearPart m = {fixMul(size, t.a), fixMul(size, t.b), fixMul(size, t.c), fixMul(size, t.d)};
    if (context.fontStyle == kFontItalic || context.fontStyle == kFontOblique) {
        m.a = wrapSub(m.a, fixMul(m.b, kSlantTangent));
        m.c = wrapSub(m.c, fixMul(m.d, kSlantTangent));
    }
    return m;
}

LinearPart rotated(const LinearPart& m, Degrees angle)
{
    const Fixed sine = fixSin(reducedAngle(angle));
    const Fixed cosine = fixCos(reducedAngle(angle));
    return {wrapSub(fixMul(cosine, m.a), fixMul(sine, m.b)),
            wrapAdd(fixMul(sine, m.a), fixMul(cosine, m.b)),
            wrapSub(fixMul(cosine, m.c), fixMul(sine, m.d)),
            wrapAdd(fixMul(sine, m.c), fixMul(cosine, m.d))};
}

// Glyph images from the context's cache or from the engine.
//
// The key is the font size, the glyph's matrix and the character. All but the character stay the
// same through most texts, so the cache walks that part of its tree only when it changes.
class GlyphSource {
public:
    explicit GlyphSource(MMContext2D& context) : context_(context)
    {
        key_[0] = static_cast<uint32_t>(context.fontSize);
    }

    void setMatrix(const LinearPart& m)
    {
        if (hasMatrix_ && m == matrix_) return;
        matrix_ = m;
        hasMatrix_ = true;
        key_[1] = static_cast<uint32_t>(m.a);
        key_[2] = static_cast<uint32_t>(m.d);
        key_[3] = static_cast<uint32_t>(m.b);
        key_[4] = static_cast<uint32_t>(m.c);
        // The engine's y axis points up.
        FS_set_scale(fontEngine, m.a, wrapNeg(m.c), wrapNeg(m.b), m.d);
        if (caching_) caching_ = context_.fontCache.PreFetch(key_, kPrefixNibbles, 1) != 0;
    }

    // Null when the font has no such character. Valid until release.
    const FS_GrayMap* glyph(uint16_t character)
    {
        key_[5] = character | (fontEmboldening != 0 ? kBoldKey : 0u);
        void* image = caching_ ? context_.fontCache.Get(key_) : nullptr;
        if (image == nullptr) image = load(character);
        return static_cast<const FS_GrayMap*>(image);
    }

    void release() { context_.releaseFont(); }

private:
    static constexpr uint32_t kPrefixNibbles = 40;
    static constexpr uint32_t kBoldKey = 0x10000; // above all characters

    // From the engine, into the cache if it takes it. An image that is not cached stays the
    // context's currentGlyph.
    void* load(uint16_t character)
    {
        void* image = FS_get_graymap(fontEngine, character);
        context_.currentGlyph = image;
        if (image == nullptr || !caching_) return image;
        void* cached = context_.fontCache.Add(image, key_, static_cast<FS_GrayMap*>(image)->size);
        if (cached == nullptr) return image;
        release();
        return cached;
    }

    MMContext2D& context_;
    uint32_t key_[6];
    LinearPart matrix_ = {};
    bool hasMatrix_ = false;
    bool caching_ = true; // until the cache cannot hold the key's prefix
};

// Whether the text has a rotation for the character, and which.
bool rotationOf(const MMContext2D& context, uint32_t index, Degrees& angle)
{
    if (context.charRotate == nullptr) return false;
    if (context.charRotateCount == 1)
        angle = context.charRotate[0];
    else if (context.charRotateCount > index)
        angle = context.charRotate[index];
    else
        return false;
    return true;
}

// Moves the pen, which is in device space, to the place that the lists have for a character. The
// pen's y takes part in mapping x as it is.
void placePen(const MMContext2D& context, uint32_t index, MMPoint2D& pen)
{
    if (context.charXCount > 1 && context.charXCount > index && context.charX != nullptr)
        pen.x = mapped(context.transform, context.charX[index], pen.y).x;
    if (context.charYCount > 1 && context.charYCount > index && context.charY != nullptr)
        pen.y = mapped(context.transform, pen.x, context.charY[index]).y;
}

// Adds a glyph's box, in whole pixels.
void addToBounds(MMContext2D& context, const FS_GrayMap& glyph, int32_t column, int32_t row)
{
    context.boundsMinX = std::min(context.boundsMinX, fixFromInt(column));
    context.boundsMinY = std::min(context.boundsMinY, fixFromInt(row));
    context.boundsMaxX = std::max(context.boundsMaxX, fixFromInt(column + glyph.width));
    context.boundsMaxY = std::max(context.boundsMaxY, fixFromInt(row + glyph.height));
}

} // namespace

void MMContext2D::renderText(const uint16_t* text, uint16_t length, uint8_t draw,
                             uint32_t firstIndex)
{
    if (text == nullptr || fontEngine == nullptr) return;
    GlyphCompositor compositor(*this);
    const bool draws =
        draw != 0 && compositor.begin(fillPaint.paintType != kPaintNone ? fillPaint : strokePaint);
    const LinearPart upright = glyphMatrixOf(*this);
    GlyphSource source(*this);
    MMPoint2D pen = mapped(transform, penX, penY); // in device space until the end
    for (uint32_t taken = 0; taken < length && text[taken] != 0; ++taken) {
        const uint32_t index = firstIndex + taken;
        placePen(*this, index, pen);
        Degrees angle;
        source.setMatrix(rotationOf(*this, index, angle) ? rotated(upright, angle) : upright);
        const FS_GrayMap* glyph = source.glyph(text[taken]);
        if (glyph == nullptr) continue;
        const int32_t column = glyph->left + fixFloor(pen.x);
        const int32_t row = fixFloor(pen.y) - glyph->top;
        if (accumulateBounds != 0) addToBounds(*this, *glyph, column, row);
        if (draws) compositor.draw(*glyph, static_cast<int16_t>(column), static_cast<int16_t>(row));
        pen.x = wrapAdd(pen.x, glyph->advanceX);
        pen.y = wrapSub(pen.y, glyph->advanceY);
        source.release();
    }
    Matrix2D toUser = transform;
    toUser.invert();
    pen = mapped(toUser, pen.x, pen.y);
    penX = pen.x;
    penY = pen.y;
}

} // namespace Graphics2D
} // namespace KAVO
