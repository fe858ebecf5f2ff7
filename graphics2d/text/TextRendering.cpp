// SPDX-License-Identifier: MIT
// A run of characters, drawn or measured.
#include "graphics2d/text/TextRendering.h"

#include "graphics2d/text/FontLibrary.h"
#include "graphics2d/text/GlyphCompositor.h"
#include "graphics2d/text/TextPen.h"
#include "graphics2d/text/TextWhitespace.h"
#include "math/FixedMath.h"
#include "math/LinearPart.h"
#include "math/Points.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr Fixed kSlantTangent = 23853; // tan 20 degrees
constexpr uint16_t kSoftHyphen = 0x00AD;

// From the em square, y down, to device pixels, without translation. Classic italics are slanted
// along the rows of pixels, refined ones along their baseline, wherever that leads.
LinearPart glyphMatrixOf(const MMContext2D& context, const Matrix2D& t)
{
    const Fixed size = context.fontSize;
    LinearPart m = {fixMul(size, t.a), fixMul(size, t.b), fixMul(size, t.c), fixMul(size, t.d)};
    if (context.fontStyle != kFontItalic && context.fontStyle != kFontOblique) return m;
    if (context.refined != 0) {
        m.c = wrapSub(m.c, fixMul(m.a, kSlantTangent));
        m.d = wrapSub(m.d, fixMul(m.b, kSlantTangent));
    } else {
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
// again leave nothing behind when their glyphs go. Characters that come again find their entries
// without a walk.
class GlyphSource {
public:
    explicit GlyphSource(MMContext2D& context) : context_(context)
    {
        key_[0] = static_cast<uint32_t>(context.fontSize);
        caching_ = context_.fontCache.PreFetch(key_, kSizeDigits, 1) != 0;
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
        atMatrix_ = false;
        forgetRecent();
        seekMatrix();
    }

    // Null when the font has no such character. An image that is too large for the cache may lack
    // its bitmap, unless it is to be whole. Valid until release.
    const FS_GrayMap* glyph(uint16_t character, bool whole)
    {
        MMCacheContext<48>& cache = context_.fontCache;
        const uint32_t place = character % kRecent;
        if (recentCharacters_[place] == character) {
            cache.Use(recent_[place]);
            return reinterpret_cast<const FS_GrayMap*>(recent_[place]->data);
        }
        key_[5] = character | (fontEmboldening != 0 ? kBoldKey : 0u);
        void* image = caching_ ? cache.Get(key_) : nullptr;
        if (image == nullptr) return static_cast<const FS_GrayMap*>(load(character, whole));
        recentCharacters_[place] = character;
        recent_[place] = cache.mruHead;
        return static_cast<const FS_GrayMap*>(image);
    }

    void release()
    {
        if (context_.currentGlyph != nullptr) context_.releaseFont();
    }

private:
    static constexpr uint32_t kSizeDigits = 8;
    static constexpr uint32_t kMatrixDigits = 40;
    static constexpr uint32_t kBoldKey = 0x10000; // above all characters
    static constexpr uint32_t kRecent = 64;       // all letters of one alphabet

    void forgetRecent() { std::fill_n(recentCharacters_, kRecent, uint16_t{0}); }

    // Puts the cache's cursor behind the matrix if glyphs are there, else behind the size: the
    // cursor may still be at the matrix before.
    void seekMatrix()
    {
        if (!caching_ || atMatrix_) return;
        atMatrix_ = context_.fontCache.PreFetch(key_, kMatrixDigits, 0) != 0;
        if (!atMatrix_) caching_ = context_.fontCache.PreFetch(key_, kSizeDigits, 1) != 0;
    }

    // From the engine, into the cache if it takes it. An image that is not cached stays the
    // context's currentGlyph. Not worth the room that it would take in the walk.
    [[gnu::noinline]] void* load(uint16_t character, bool whole)
    {
        const uint32_t cachedAtMost = context_.fontCache.maxEntrySize;
        forgetRecent(); // what is put into the cache may drive out any of them
        // The engine's y axis points up.
        FS_set_scale(fontEngine, matrix_.a, wrapNeg(matrix_.c), wrapNeg(matrix_.b), matrix_.d);
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
    bool atMatrix_ = false;              // where the cache's cursor is
    bool caching_;                       // until the cache cannot hold the size's nodes
    uint16_t recentCharacters_[kRecent]; // characters, by their low bits, or 0
    MMCacheEntry* recent_[kRecent];      // and where they are in the cache
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

// Draws a glyph that stands at a place, unless nothing of it would show. Only then is the bitmap
// of a large one asked for.
void drawGlyph(GlyphCompositor& compositor, GlyphSource& source, const FS_GrayMap* glyph,
               uint16_t character, const GlyphPlace& place)
{
    if (!compositor.place(*glyph, place)) return;
    if (!FS_has_bitmap(glyph)) {
        source.release();
        glyph = source.glyph(character, true);
        if (glyph == nullptr || !FS_has_bitmap(glyph) || !compositor.place(*glyph, place)) return;
    }
    compositor.draw(*glyph);
}

// One walk. The pen is in device space.
class TextWalk {
public:
    TextWalk(MMContext2D& context, const Matrix2D& transform, const TextOutput& output)
        : context_(context), transform_(transform), output_(output), refined_(context.refined != 0),
          upright_(glyphMatrixOf(context, transform)), source_(context)
    {
    }

    void run(const TextRun& run, TextPen& pen)
    {
        SpaceFilter spaces(context_.preserveSpace != 0);
        const bool hasLists =
            run.usesLists &&
            (context_.charXCount > 1 || context_.charYCount > 1 || context_.charRotate != nullptr);
        source_.setMatrix(upright_);
        uint32_t index = run.firstIndex;
        for (uint32_t i = 0; i < run.length && run.text[i] != 0; ++i) {
            uint16_t character = run.text[i];
            if (run.isRaw && !spaces.keeps(character)) continue;
            if (hasLists) followLists(index, pen);
            if (!refined_ || character != kSoftHyphen) step(character, pen);
            ++index;
        }
    }

private:
    // Passes one character.
    void step(uint16_t character, TextPen& pen)
    {
        const MMPoint2D pixel = pixelOf(pen);
        const bool whole = output_.compositor != nullptr && output_.compositor->covers(pixel);
        const FS_GrayMap* glyph = source_.glyph(character, whole);
        if (glyph == nullptr) return;
        pen = {pen.x + glyph->advanceX, pen.y - glyph->advanceY};
        const GlyphPlace place = {glyph->left + pixel.x, pixel.y - glyph->top};
        if (output_.bounds != nullptr)
            output_.bounds->addBox(fixFromInt(place.column), fixFromInt(place.row),
                                   fixFromInt(place.column + glyph->width),
                                   fixFromInt(place.row + glyph->height));
        if (output_.compositor != nullptr)
            drawGlyph(*output_.compositor, source_, glyph, character, place);
        source_.release();
    }

    // Places and turns a character.
    void followLists(uint32_t index, TextPen& pen)
    {
        placePen(index, pen);
        Degrees angle;
        const bool turned = rotationOf(context_, index, angle);
        source_.setMatrix(turned ? rotated(upright_, angle) : upright_);
    }

    // The pixel that glyphs stand at; far outside of what any target holds, any pixel there.
    MMPoint2D pixelOf(const TextPen& pen) const
    {
        constexpr int64_t kFar = 0x10000;
        if (!refined_) return {fixFloor(pen.wrapped().x), fixFloor(pen.wrapped().y)};
        const TextPen nearest = {(pen.x + kFixedHalf) >> 16, (pen.y + kFixedHalf) >> 16};
        return {static_cast<int32_t>(std::clamp(nearest.x, -kFar, kFar)),
                static_cast<int32_t>(std::clamp(nearest.y, -kFar, kFar))};
    }

    // Moves the pen to the place that the lists have for a character. By the classic rules, the
    // other coordinate takes part in the mapping as it is in device space.
    void placePen(uint32_t index, TextPen& pen) const
    {
        const bool hasX =
            context_.charXCount > 1 && context_.charXCount > index && context_.charX != nullptr;
        const bool hasY =
            context_.charYCount > 1 && context_.charYCount > index && context_.charY != nullptr;
        if (!hasX && !hasY) return;
        if (refined_) {
            MMPoint2D place = {0, 0};
            unmappedExactly(transform_, pen, place);
            if (hasX) place.x = context_.charX[index];
            if (hasY) place.y = context_.charY[index];
            pen = mappedExactly(transform_, place);
            return;
        }
        MMPoint2D place = pen.wrapped();
        if (hasX) place.x = mapped(transform_, context_.charX[index], place.y).x;
        if (hasY) place.y = mapped(transform_, place.x, context_.charY[index]).y;
        pen = {place.x, place.y};
    }

    MMContext2D& context_;
    const Matrix2D& transform_;
    const TextOutput& output_;
    const bool refined_;
    const LinearPart upright_;
    GlyphSource source_;
};

bool canWalk(const MMContext2D& context, const TextRun& run)
{
    return fontEngine != nullptr && context.fontMetrics != nullptr && run.text != nullptr;
}

// The pen behind a run, in device space.
TextPen penBehind(MMContext2D& context, const Matrix2D& transform, const TextRun& run,
                  const MMPoint2D& start, const TextOutput& output)
{
    TextPen pen = mappedExactly(transform, start);
    if (context.refined == 0) {
        const MMPoint2D place = mapped(transform, start.x, start.y);
        pen = {place.x, place.y};
    }
    TextWalk(context, transform, output).run(run, pen);
    return pen;
}

// The classic way back, with an inverse of 16 bits behind the point.
MMPoint2D unmapped(const Matrix2D& transform, const MMPoint2D& pen)
{
    Matrix2D toUser = transform;
    toUser.invert();
    return mapped(toUser, pen.x, pen.y);
}

} // namespace

MMPoint2D walkText(MMContext2D& context, const Matrix2D& transform, const TextRun& run,
                   MMPoint2D pen, const TextOutput& output)
{
    if (!canWalk(context, run)) return pen;
    const TextPen behind = penBehind(context, transform, run, pen, output);
    if (context.refined == 0) return unmapped(transform, behind.wrapped());
    unmappedExactly(transform, behind, pen);
    return pen;
}

Fixed widthOf(MMContext2D& context, const TextRun& run)
{
    const MMPoint2D start = {context.penX, context.penY};
    if (!canWalk(context, run)) return 0;
    const Matrix2D& transform = context.transform;
    const TextPen behind = penBehind(context, transform, run, start, {nullptr, nullptr});
    MMPoint2D pen = start;
    if (context.refined == 0 && behind.fits())
        pen = unmapped(transform, behind.wrapped());
    else
        unmappedExactly(transform, behind, pen);
    return wrapSub(pen.x, start.x);
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
        walkText(*this, transform, {text, length, firstIndex, true, false}, {penX, penY}, output);
    if (accumulateBounds != 0) bounds.storeTo(*this);
    penX = pen.x;
    penY = pen.y;
}

} // namespace Graphics2D
} // namespace KAVO
