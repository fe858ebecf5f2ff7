// SPDX-License-Identifier: MIT
// A run of characters, drawn or measured.
#include "graphics2d/text/TextRendering.h"

#include "graphics2d/text/FontLibrary.h"
#include "graphics2d/text/GlyphCompositor.h"
#include "math/FixedMath.h"
#include "math/LinearPart.h"
#include "math/Points.h"

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr Fixed kSlantTangent = 23853; // tan 20 degrees

// From the em square, y down, to device pixels, without translation.
LinearPart glyphMatrixOf(const MMContext2D& context, const Matrix2D& t)
{
    const Fixed size = context.fontSize;
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

// An image of the character, without its bitmap when it would take more bytes than that, from an
// engine that knows how to.
void* graymapWithin(void* engine, uint32_t character, uint32_t bytes)
{
    return FS_get_graymap_within != nullptr ? FS_get_graymap_within(engine, character, bytes)
                                            : FS_get_graymap(engine, character);
}

// Glyph images from the context's cache or from the engine.
//
// The key is the font size, the glyph's matrix and the character. The cache walks through the size
// once for a run, and through the matrix once for all glyphs that follow with the same one; but it
// makes nodes for a matrix only when a glyph is put under it, so that matrices which never come
// again leave nothing behind when their glyphs go.
class GlyphSource {
public:
    explicit GlyphSource(MMContext2D& context) : context_(context)
    {
        key_[0] = static_cast<uint32_t>(context.fontSize);
        caching_ = context_.fontCache.PreFetch(key_, kSizeDigits, 1) != 0;
    }

    void setMatrix(const LinearPart& m)
    {
        // The engine's y axis points up.
        FS_set_scale(fontEngine, m.a, wrapNeg(m.c), wrapNeg(m.b), m.d);
        if (hasMatrix_ && m == matrix_) return;
        matrix_ = m;
        hasMatrix_ = true;
        key_[1] = static_cast<uint32_t>(m.a);
        key_[2] = static_cast<uint32_t>(m.d);
        key_[3] = static_cast<uint32_t>(m.b);
        key_[4] = static_cast<uint32_t>(m.c);
        atMatrix_ = false;
        seekMatrix();
    }

    // Null when the font has no such character. An image that is too large for the cache may lack
    // its bitmap, unless it is to be whole. Valid until release.
    const FS_GrayMap* glyph(uint16_t character, bool whole)
    {
        key_[5] = character | (fontEmboldening != 0 ? kBoldKey : 0u);
        void* image = caching_ ? context_.fontCache.Get(key_) : nullptr;
        if (image == nullptr) image = load(character, whole);
        return static_cast<const FS_GrayMap*>(image);
    }

    void release() { context_.releaseFont(); }

private:
    static constexpr uint32_t kSizeDigits = 8;
    static constexpr uint32_t kMatrixDigits = 40;
    static constexpr uint32_t kBoldKey = 0x10000; // above all characters

    // Puts the cache's cursor behind the matrix if glyphs are there, else behind the size: the
    // cursor may still be at the matrix before.
    void seekMatrix()
    {
        if (!caching_ || atMatrix_) return;
        atMatrix_ = context_.fontCache.PreFetch(key_, kMatrixDigits, 0) != 0;
        if (!atMatrix_) caching_ = context_.fontCache.PreFetch(key_, kSizeDigits, 1) != 0;
    }

    // From the engine, into the cache if it takes it. An image that is not cached stays the
    // context's currentGlyph.
    void* load(uint16_t character, bool whole)
    {
        const uint32_t cachedAtMost = context_.fontCache.maxEntrySize;
        void* image = whole ? FS_get_graymap(fontEngine, character)
                            : graymapWithin(fontEngine, character, cachedAtMost);
        context_.currentGlyph = image;
        if (image == nullptr || !caching_ || !FS_has_bitmap(static_cast<FS_GrayMap*>(image)))
            return image;
        void* cached = context_.fontCache.Add(image, key_, static_cast<FS_GrayMap*>(image)->size);
        if (cached == nullptr) return image;
        release();
        seekMatrix();
        return cached;
    }

    MMContext2D& context_;
    uint32_t key_[6];
    LinearPart matrix_ = {};
    bool hasMatrix_ = false;
    bool atMatrix_ = false; // where the cache's cursor is
    bool caching_;          // until the cache cannot hold the size's nodes
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
void placePen(const MMContext2D& context, const Matrix2D& transform, uint32_t index, MMPoint2D& pen)
{
    if (context.charXCount > 1 && context.charXCount > index && context.charX != nullptr)
        pen.x = mapped(transform, context.charX[index], pen.y).x;
    if (context.charYCount > 1 && context.charYCount > index && context.charY != nullptr)
        pen.y = mapped(transform, pen.x, context.charY[index]).y;
}

// Draws a glyph with its pen at a place, unless nothing of it would show. Only then is the bitmap
// of a large one asked for.
void drawGlyph(GlyphCompositor& compositor, GlyphSource& source, const FS_GrayMap* glyph,
               uint16_t character, const GlyphPlace& place)
{
    if (!compositor.shows(*glyph, place)) return;
    if (!FS_has_bitmap(glyph)) {
        source.release();
        glyph = source.glyph(character, true);
    }
    if (glyph != nullptr && FS_has_bitmap(glyph)) compositor.draw(*glyph, place);
}

} // namespace

MMPoint2D walkText(MMContext2D& context, const Matrix2D& transform, const TextRun& run,
                   MMPoint2D pen, const TextOutput& output)
{
    if (fontEngine == nullptr || context.fontMetrics == nullptr || run.text == nullptr) return pen;
    const LinearPart upright = glyphMatrixOf(context, transform);
    GlyphSource source(context);
    pen = mapped(transform, pen.x, pen.y); // in device space until the end
    for (uint32_t taken = 0; taken < run.length && run.text[taken] != 0; ++taken) {
        const uint16_t character = run.text[taken];
        const uint32_t index = run.firstIndex + taken;
        Degrees angle;
        if (run.usesLists) placePen(context, transform, index, pen);
        const bool turned = run.usesLists && rotationOf(context, index, angle);
        source.setMatrix(turned ? rotated(upright, angle) : upright);
        const MMPoint2D pixel = {fixFloor(pen.x), fixFloor(pen.y)};
        const bool whole = output.compositor != nullptr && output.compositor->covers(pixel);
        const FS_GrayMap* glyph = source.glyph(character, whole);
        if (glyph == nullptr) continue;
        const Fixed advanceX = glyph->advanceX, advanceY = glyph->advanceY;
        const GlyphPlace place = {glyph->left + pixel.x, pixel.y - glyph->top};
        if (output.bounds != nullptr)
            output.bounds->addBox(fixFromInt(place.column), fixFromInt(place.row),
                                  fixFromInt(place.column + glyph->width),
                                  fixFromInt(place.row + glyph->height));
        if (output.compositor != nullptr)
            drawGlyph(*output.compositor, source, glyph, character, place);
        pen = {wrapAdd(pen.x, advanceX), wrapSub(pen.y, advanceY)};
        source.release();
    }
    Matrix2D toUser = transform;
    toUser.invert();
    return mapped(toUser, pen.x, pen.y);
}

Fixed widthOf(MMContext2D& context, const TextRun& run)
{
    const MMPoint2D pen = {context.penX, context.penY};
    return wrapSub(walkText(context, context.transform, run, pen, {nullptr, nullptr}).x, pen.x);
}

void MMContext2D::renderText(const uint16_t* text, uint16_t length, uint8_t draw,
                             uint32_t firstIndex)
{
    if (fontMetrics == nullptr || text == nullptr || fontEngine == nullptr) return;
    GlyphCompositor compositor(*this);
    const bool draws =
        draw != 0 && compositor.begin(fillPaint.paintType != kPaintNone ? fillPaint : strokePaint);
    BoundsUnion bounds = {boundsMinX, boundsMinY, boundsMaxX, boundsMaxY};
    const TextOutput output = {draws ? &compositor : nullptr,
                               accumulateBounds != 0 ? &bounds : nullptr};
    const MMPoint2D pen =
        walkText(*this, transform, {text, length, firstIndex, true}, {penX, penY}, output);
    if (accumulateBounds != 0) bounds.storeTo(*this);
    penX = pen.x;
    penY = pen.y;
}

} // namespace Graphics2D
} // namespace KAVO
